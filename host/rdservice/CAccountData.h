#pragma once

#include "host_api.h"
#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"
#include "utils/CSubscription.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace rdservice {

/// The data centre's store of one account: its records by type and key, in order of arrival. Any thread.
///
/// Storing publishes: the store stamps the record with the next version and nobody may write to it afterwards. A
/// record that is already published, or already held with the same values, is never stamped again.
class HOST_API CAccountData {
 public:
  struct Private;
  using CDataCallback = std::function<void(const std::vector<IDataPtr>& changed)>;
  using CClearCallback = std::function<void(const std::string& accountKey, int typeId)>;

  explicit CAccountData(std::unique_ptr<Private> d);
  ~CAccountData();

  CAccountInfoPtr getAccountInfo() const;

  /// Every record of the type, in order of arrival; a replaced record keeps its place.
  std::vector<IDataPtr> getData(int typeId) const;
  /// Null when there is none.
  IDataPtr getData(int typeId, const std::string& key) const;

  /// Inserts or replaces one record and returns what is held now: `record`, or the record held before when it has the
  /// same values (then nothing changes and nobody is told), or a stamped copy when `record` was published before.
  /// `keepNewer`: a record whose version is below the held one's is dropped and the held one returned.
  IDataPtr updateData(const IDataPtr& record, bool keepNewer);

  /// Inserts or replaces records of one or several types and tells each subscriber once, of those that differ. Returns
  /// what is held now, in the order given; null entries stay null.
  std::vector<IDataPtr> updateDatas(const std::vector<IDataPtr>& records);

  /// Replaces the whole set of a type; records that are not in `records` are gone. Subscribers hear of new and
  /// changed records. When `records` came with replies to compact queries, what was pushed or modified since their
  /// requests is newer and stays.
  void updateCompacts(int typeId, const std::vector<IDataPtr>& records);

  /// Drops all records of a type. Subscribers hear that they are gone, not which.
  void removeMetaData(int typeId);

  /// Changes the record stored now under `key`: copies it, lets `edit` change the copy, and publishes that, so that no
  /// later push is reverted. `edit` runs under the store's lock and must not call back. Returns the record held
  /// afterwards, null when the key is not stored.
  IDataPtr modifyData(int typeId, const std::string& key, const std::function<void(IData&)>& edit);

  /// Calls `callback` with the records of the type that are inserted or changed from now on, or only with the record of
  /// `key` when that is not empty: once for each change of the store, however many records it concerns. It is called on
  /// the thread that stores, outside the store's lock; calls may overtake each other, and a record's version tells
  /// which is newer. `cleared`, when there is one, is called in the same way after all records of the type were
  /// dropped.
  [[nodiscard]] utils::CSubscriptionPtr subscribe(int typeId, const std::string& key, CDataCallback callback,
                                                  CClearCallback cleared = nullptr);

 private:
  std::unique_ptr<Private> m_d;
};

using CAccountDataPtr = boost::shared_ptr<CAccountData>;

}  // namespace rdservice
