#pragma once

#include "compacts/tables/CTableTasks.h"
#include "rdservice/CAccountData.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "utils/CMutex.h"
#include "vn/CHpfDataTable.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace VN {

class CCompactQueryModel;

/// An account's liabilities per security, compact type and source, folded from its unclosed compacts, with the present
/// holding and the security's name. Its menu turns them into baskets. GUI thread unless a member says otherwise.
class CCompactsStaticsTable : public CHpfDataTable {
  Q_OBJECT
 public:
  using CStatisticMap = std::map<std::string, rdservice::CStkUnClosedCompactsStaticsPtr>;

  explicit CCompactsStaticsTable(QWidget* parent);
  ~CCompactsStaticsTable() override;

  /// Shows an account, and queries it if `query`; otherwise the table is empty. The same one again only notifies, if
  /// `notifyIfSame`.
  void setAccount(const std::string& account, bool query, bool notifyIfSame);
  /// Empties and computes anew; nothing when `account` is neither empty nor the one shown. `force`: from a query of
  /// every compact, else from what the data centre holds.
  void refresh(const std::string& account, bool force);
  /// Empties, and notifies: what is still under way brings no rows.
  void clearData();

  /// Answer to the query of every compact. Service threads.
  void onQueryUnfinishCompact(const std::string& account, bool success, const std::vector<rdservice::IDataPtr>& records,
                              const std::string& errorMessage);
  /// Folds the compacts, of which null and other records are skipped, and shows the statistics. Strand; on the GUI
  /// thread only for compacts of the data centre.
  void doUpdateUnfinishCompactStatics(const std::string& account, const std::vector<rdservice::IDataPtr>& compacts);

  /// Asks how many of the borrowed shares that `statics` owe and the account holds shall be returned, and places the
  /// orders.
  void returnSecurities(const CStatisticMap& statics);
  /// The table's own map; nothing adds to it.
  const CStatisticMap& statisticMap() const { return m_statics; }

 Q_SIGNALS:
  /// An answer has been taken in, or there was nothing to query. Emitted on any thread.
  void sigQueryData();

 public Q_SLOTS:
  void slotQueryData();
  void slotSaveFinBasket(bool checked);
  void slotSaveSpecialFinBasket(bool checked);
  void slotSaveSLOBasket(bool checked);
  void slotSaveSpecialSLOBasket(bool checked);

 private:
  struct CBasketKind;

  std::string currentAccount() const;
  /// Ends the query, and from now on refuses what was made of its answer and of those before.
  void stopQuery();
  void startOver();
  void addMenu();
  void addHoldingColumn();
  void addNameColumn();
  void queryData(bool force);
  // `madeFor`: what the table showed when it asked.
  void takeReply(const GW::CTableScope& madeFor, bool success, const std::vector<rdservice::IDataPtr>& records,
                 const std::string& errorMessage);
  void endStale(const GW::CTableScope& madeFor);
  /// Strand: the statistics that the counter itself has made.
  void showCachedStatics(const GW::CTableScope& madeFor);
  void showFold(const GW::CTableScope& madeFor, const std::vector<rdservice::IDataPtr>& compacts);
  /// Rows of the statistics, all at once; false when the table shows something else by now, or goes.
  bool showRows(const GW::CTableScope& madeFor, const std::vector<rdservice::CStkUnClosedCompactsStaticsPtr>& statics);
  void writeRow(const rdservice::CAccountDataPtr& store, const rdservice::CStkUnClosedCompactsStaticsPtr& statistic);
  void askForBasket(const CBasketKind& kind);
  void saveBasket(const CBasketKind& kind, const QString& name);

  mutable utils::CMutex m_accountLock;
  std::string m_account TS_GUARDED_BY(m_accountLock);
  int m_holdingColumn = -1;
  int m_nameColumn = -1;
  CStatisticMap m_statics;
  std::weak_ptr<CCompactQueryModel> m_query;  ///< the newest one
  CTableTasks m_tasks;
};

}  // namespace VN
