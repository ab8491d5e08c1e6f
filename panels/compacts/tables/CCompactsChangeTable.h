#pragma once

#include "bson/BSONObj.h"
#include "compacts/tables/CTableTasks.h"
#include "utils/CMutex.h"
#include "utils/RDError.h"
#include "vn/CHpfDataTable.h"

#include <string>
#include <vector>

namespace GW {
class CBaseTableColumnSimpleTextDelegate;
}

namespace VN {

/// The change details of an account's liabilities, with the security's name beside its code. GUI thread, but for the
/// reply handler.
class CCompactsChangeTable : public CHpfDataTable {
  Q_OBJECT
 public:
  explicit CCompactsChangeTable(QWidget* parent);
  ~CCompactsChangeTable() override;

  /// Shows an account and queries its changes, whatever `query` says. The same one again only notifies, if
  /// `notifyIfSame`.
  void setAccount(const std::string& account, bool query, bool notifyIfSame);
  /// Empties and queries; nothing when `account` is neither empty nor the one shown.
  void refresh(const std::string& account);
  /// Empties, and notifies: the reply that is still to come is dropped in silence.
  void clearData();

 Q_SIGNALS:
  /// An answer has been taken in, or there was nothing to query. Emitted on any thread.
  void sigQueryData();

 public Q_SLOTS:
  void slotQueryData();

 private:
  std::string currentAccount() const;
  /// From now on refuses what was asked before.
  void startOver();
  void query();
  /// Service thread: rows are written there. `madeFor`: what the table showed when it asked.
  void onQueryData(const GW::CTableScope& madeFor, const utils::RDError& error,
                   const std::vector<rdservice::IDataPtr>& records, const bson::BSONObj& extra);
  /// False when the table shows something else by now, or goes.
  bool showRows(const GW::CTableScope& madeFor, const std::vector<rdservice::IDataPtr>& records);
  /// Nothing to tell when only a newer query has been sent.
  void logStale(const std::string& account) const;
  void writeRow(const rdservice::IDataPtr& record);

  const int m_dataType;
  mutable utils::CMutex m_accountLock;
  std::string m_account TS_GUARDED_BY(m_accountLock);
  int m_nameColumn = -1;
  GW::CBaseTableColumnSimpleTextDelegate* m_names = nullptr;  ///< the table owns it
  CTableTasks m_tasks;
};

}  // namespace VN
