#pragma once

#include "rdservice/CAccountData.h"
#include "rdservice/CTypeStore.h"
#include "utils/CCallbackList.h"
#include "utils/CMutex.h"

#include <map>

namespace rdservice {

struct CAccountData::Private {
  /// Called with the key, so that subscribers of one record need not build it.
  using CListeners = utils::CCallbackList<const std::string&, const IDataPtr&>;

  struct CTypeEntry {
    CTypeStore store;
    std::uint64_t generation = 0;  ///< counts the changes of the store
    CListeners listeners;          ///< has its own lock, and is called outside the store's
  };

  /// A record on its way into the store. Of several with one key in a batch only the last is stored.
  struct CItem {
    IDataPtr record;
    std::string key;
    CTypeEntry* type = nullptr;
    IDataPtr held{};      ///< what the store holds afterwards
    IDataPtr replaced{};  ///< freed after the lock is given up
    bool isChanged = false;
  };

  explicit Private(CAccountInfoPtr account) : accountInfo(std::move(account)) {}

  /// The record as it is to be held: stamped in place when nobody has seen it yet, else a stamped copy.
  IDataPtr publish(const IDataPtr& record) TS_REQUIRES(mutex);

  void storeItem(CItem& item, bool keepNewer) TS_REQUIRES(mutex);

  /// See CAccountData::updateData and updateDatas.
  std::vector<IDataPtr> store(const IDataPtr* records, std::size_t count, bool keepNewer);
  /// See CAccountData::updateCompacts.
  void replaceAll(int typeId, const std::vector<IDataPtr>& records);

  const CAccountInfoPtr accountInfo;
  mutable utils::CSharedMutex mutex;
  /// Entries are never erased, so that their listeners can be called without the lock.
  std::map<int, CTypeEntry> types TS_GUARDED_BY(mutex);
  std::uint64_t lastVersion TS_GUARDED_BY(mutex) = 0;
};

}  // namespace rdservice
