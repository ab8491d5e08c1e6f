#pragma once

#include "rdservice/CAccountData.h"
#include "rdservice/CCompactStatistics.h"
#include "rdservice/CTypeStore.h"
#include "utils/CCallbackList.h"
#include "utils/CMutex.h"

#include <map>

#include <atomic>
#include <limits>
#include <memory>

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

  /// What a set of a type says of the others.
  enum class ESet : std::uint8_t {
    Any,
    AllCompacts  ///< every unclosed compact of the account, so that the statistics follow from them
  };
  /// See CAccountData::updateCompacts; records that are newer than `mark`, or than the mark noted with the record that
  /// would replace them, stay.
  void replaceAll(int typeId, const std::vector<IDataPtr>& records, std::uint64_t mark, ESet set);

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
  /// The set of a type is dropped, or replaced by one of which it is not known whether it is whole.
  void forgetStatistics(int typeId) TS_REQUIRES(mutex);
  static std::unique_ptr<CCompactStatistics> statisticsOf(const std::vector<IDataPtr>& compacts);
  /// Brings the stored statistics up to date with what was counted.
  void storeStatistics(CChanges& changes) TS_REQUIRES(mutex);

  void tell(int typeId, const CChanges& changes);

  static Private& of(CAccountData& account) { return *account.m_d; }

  const CAccountInfoPtr accountInfo;
  mutable utils::CSharedMutex mutex;
  std::map<int, CTypeEntry> types TS_GUARDED_BY(mutex);
  /// Since every unclosed compact is known. Until then the statistics stay as they were told.
  std::unique_ptr<CCompactStatistics> statistics TS_GUARDED_BY(mutex);
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
