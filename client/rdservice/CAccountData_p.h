#pragma once

#include "rdservice/CAccountData.h"
#include "rdservice/CCompactStatistics.h"
#include "rdservice/CTypeStore.h"
#include "utils/CCallbackList.h"
#include "utils/CMutex.h"

#include <map>

#include <atomic>
#include <limits>

namespace rdservice {

struct CAccountData::Private {
  /// Called with keys and records, so that subscribers of one record need not build its key. Without any, all records
  /// of the type are gone.
  using CListeners = utils::CCallbackList<const std::vector<std::string>&, const std::vector<IDataPtr>&>;

  struct CTypeEntry {
    CTypeStore store;
    std::uint64_t generation = 0;  ///< counts the changes of the store and of its bases
  };

  /// A record on its way into the store. Of several with one key in a batch only the last is stored.
  struct CItem {
    const IDataPtr* record = nullptr;  ///< the caller's
    std::string key{};
    std::uint32_t hash = 0;  ///< of the key
    int typeId = 0;
    bool isChanged = false;
    IDataPtr held{};  ///< what the store holds afterwards
  };

  explicit Private(CAccountInfoPtr account) : accountInfo(std::move(account)) {}

  /// The record as it is to be held: stamped in place when nobody has seen it yet, else a stamped copy.
  IDataPtr publish(const IDataPtr& record, bool ofReply) TS_REQUIRES(mutex);

  /// Returns the record that was replaced, for freeing it outside the lock. `guess`: where the item may stand; then the
  /// place behind it.
  IDataPtr storeItem(CTypeEntry& type, CItem& item, bool keepNewer, std::size_t& guess) TS_REQUIRES(mutex);

  /// The records without those that are null or followed by another one of their key; `itemOf` gets for each record the
  /// place of the item that stands for it, NONE for a null one.
  static std::vector<CItem> itemsOf(const IDataPtr* records, std::size_t count, std::vector<std::size_t>& itemOf);

  /// See CAccountData::updateData and updateDatas.
  std::vector<IDataPtr> store(const IDataPtr* records, std::size_t count, bool keepNewer);
  /// Mark of a set that replaces whatever is there.
  static constexpr std::uint64_t ALWAYS = std::numeric_limits<std::uint64_t>::max();

  /// See CAccountData::updateCompacts; records that are newer than `mark`, or than the mark noted with the record that
  /// would replace them, stay.
  void replaceAll(int typeId, const std::vector<IDataPtr>& records, std::uint64_t mark);

  // --- statistics of the unclosed compacts, in CAccountDataStatistics.cpp ---

  /// What listeners are to be told.
  struct CChanges {
    std::vector<std::string> keys{};
    std::vector<IDataPtr> records{};

    void add(std::string key, IDataPtr record) {
      keys.push_back(std::move(key));
      records.push_back(std::move(record));
    }
  };

  /// A record of the type came (`before` null), changed or went (`after` null).
  void countChange(int typeId, const IData* before, const IData* after) TS_REQUIRES(mutex);
  /// The records of a type are others: a whole set, or none at all.
  void countAnew(int typeId, CCompactStatistics&& counted, bool isWholeSet) TS_REQUIRES(mutex);
  static CCompactStatistics countOf(int typeId, const std::vector<IDataPtr>& records);
  /// From now on the stored statistics are made of the compacts.
  void makeStatistics() TS_REQUIRES(mutex);
  /// So many records with the mark have been stored at once.
  void takeReply(std::uint64_t mark, std::size_t stored) TS_REQUIRES(mutex);
  /// Brings the stored statistics up to date with what was counted, when they are made of the compacts.
  void storeStatistics(CChanges& changes) TS_REQUIRES(mutex);

  void tell(int typeId, const CChanges& changes);

  static Private& of(CAccountData& account) { return *account.m_d; }

  const CAccountInfoPtr accountInfo;
  mutable utils::CSharedMutex mutex;
  std::map<int, CTypeEntry> types TS_GUARDED_BY(mutex);
  /// Of the unclosed compacts stored.
  CCompactStatistics statistics TS_GUARDED_BY(mutex);
  /// Whether these are all that there are, so that the stored statistics are made of them.
  bool areStatisticsMade TS_GUARDED_BY(mutex) = false;
  /// Replies with all unclosed compacts that are about to be stored: how many records, by the reply's mark.
  std::map<std::uint64_t, std::size_t> wholeReplies TS_GUARDED_BY(mutex);
  /// Replies to what was asked before say nothing of what is: the account has logged out since.
  std::uint64_t droppedAt TS_GUARDED_BY(mutex) = 0;
  /// The last version or mark given: one count for both, so that they can be compared. Versions are given under the
  /// lock, marks without it, so that asking for one never waits.
  std::atomic<std::uint64_t> lastVersion{0};

  /// Subscribers by type. They have a lock of their own, so that subscribing does not wait for a large set that is
  /// being stored; lists are never erased, and called without any lock.
  CListeners& listenersOf(int typeId);
  utils::CMutex listenersMutex;
  std::map<int, CListeners> listeners TS_GUARDED_BY(listenersMutex);
};

}  // namespace rdservice
