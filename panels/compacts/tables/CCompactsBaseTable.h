#pragma once

#include "compacts/tables/CTableTasks.h"
#include "compacts/tables/compact_records.h"
#include "utils/CMutex.h"
#include "vn/CHpfDataTable.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace GW {
class CBaseTableColumnLineeditDelegate;
}

namespace VN {

/// Common base of the compact tables: the account whose compacts are shown, the rule that drops stale replies, and the
/// strand on which replies become rows.
///
/// Three kinds of threads meet here: the GUI thread (everything not said otherwise), the service threads that call the
/// reply handlers, and the strand "hpfmodel" that converts and writes rows. The view is refreshed only through the
/// concrete table's queued signals.
class CCompactsBaseTable : public CHpfDataTable {
 public:
  /// `secondId` is the record type id of the rows.
  CCompactsBaseTable(int tableId, int secondId, QWidget* parent);
  ~CCompactsBaseTable() override;

  /// Key of the account shown; empty until one is set. Any thread.
  std::string currentAccount() const;

  /// The compact type shown (`rdservice::EKVCompactType`); a change empties the table and queries again.
  virtual void setCompactType(int compactType, int repayType) = 0;
  /// A record that the counter pushed outside any query. Any thread.
  virtual void onPushData(rdservice::IDataPtr data) = 0;
  /// Shows the select column, if there is one, and offers it to the user, or neither.
  virtual void setSelectColumnVisible(bool visible) = 0;
  /// Does nothing in any table.
  virtual void reservedHook() = 0;
  /// Shows an account. The same one again only notifies, if `notifyIfSame`.
  virtual void setAccount(const std::string& account, bool query, bool notifyIfSame) = 0;
  /// Empties rows and delegates, and the record cache too if `dropCache`.
  virtual void clearData(bool dropCache) = 0;
  /// Empties and queries; false, and nothing done, when `account` is neither empty nor the one shown. `fullQuery` asks
  /// a paged table for every page at once.
  virtual bool refresh(const std::string& account, bool dropCache, bool fullQuery) = 0;
  /// Place of the compact in order of arrival, from 1; 0 when the table does not hold it.
  virtual int compactIndex(const QString& key) = 0;
  /// Only compacts of that source (`rdservice::EKVCompactBrushSource`) are displayed; unclosed compacts only.
  virtual void setBrushSourceFilter(int brushSource) = 0;
  /// Empties and rebuilds the table if it shows that account. Any thread.
  virtual void clearTable(const std::string& account) = 0;
  /// Single-select tables: nothing is selected any more.
  virtual void clearRadioSelection() = 0;
  /// Single-select tables: the selected record; null in the others, and when none is selected.
  virtual rdservice::IDataPtr currentCheckedData() = 0;
  /// Multi-select tables: the displayed records that are ticked, in order of the rows; none in the others.
  virtual QList<rdservice::IDataPtr> checkedDatas() = 0;
  /// The edit store of the repay priorities; null without its column.
  virtual GW::CBaseTableColumnLineeditDelegate* priorityEditDelegate() = 0;
  /// What the counter answered to a repay-priority request: `labels` gives the stock key by field A. Strand; does
  /// nothing unless overridden.
  virtual void applyPriorityResults(const std::string& account, const std::vector<rdservice::IDataPtr>& responses,
                                    const std::map<std::string, std::string>& labels);

  /// Single-select tables: selects the compact of that key and brings its row into view; nothing when it is not held.
  void selectCompact(const std::string& key);

  /// Days by which the user wants the compact of that key extended, 0 to 182; 0 without the column.
  int renewalDays(const std::string& key) const;

  /// Has `applyPriorityResults` run on the strand. Any thread.
  void postPriorityResults(const std::string& account, const std::vector<rdservice::IDataPtr>& responses,
                           const std::map<std::string, std::string>& labels);

 protected:
  /// The concrete table's signals, which exist in its meta-object only. Any thread may emit.
  struct CSignals {
    std::function<void()> queryData;
    std::function<void()> updateTable;
    std::function<void()> taskFailed{};  ///< a strand task or reply handler threw; `queryData` follows
  };
  void setSignals(CSignals emitters) { m_signals = std::move(emitters); }
  void emitQueryData() const { m_signals.queryData(); }
  void emitUpdateTable() const { m_signals.updateTable(); }

  /// First line of the final class's destructor: afterwards no callback and no strand task runs, and none begins.
  void close() { m_tasks.close(); }
  bool isClosing() const { return m_tasks.isClosing(); }

  /// Stores the account; false when it is the one shown already.
  bool storeAccount(const std::string& account);
  /// Stores the compact type; false when it is the one shown already.
  bool storeCompactType(int compactType);
  /// Paged tables: what is shown from now on is of that query or page. Any thread.
  void setShownQuery(std::uint64_t query);
  /// Account, compact type and query shown, read together. Any thread.
  GW::CTableScope shownScope() const;

  /// Runs `task` on the strand while the table lives. When it throws, that is logged and the query ends with
  /// `sigQueryData()`, so that the panel's controls come back. Any thread.
  template <class F>
  void postToStrand(F task) {
    m_tasks.post(std::move(task));
  }

  /// A callable for a service's reply that runs `function` while the table lives, with the same barrier.
  template <class F>
  auto guarded(F function) {
    return m_tasks.guarded(std::move(function));
  }

  /// Whether the record is of the type that this table shows; false for null. Any thread.
  bool isOwnRecord(const rdservice::IDataPtr& record) const;
  /// The line of the stale-reply rule. Any thread.
  static void logStale(const CReplyText& text, const GW::CTableScope& madeFor, const GW::CTableScope& present);
  /// The compact of a row that was double-clicked, where that means something; else null.
  rdservice::CStkUnClosedCompactsPtr doubleClickedCompact(const QString& key) const;
  /// See `setBrushSourceFilter`.
  void filterBrushSource(int brushSource);

 private:
  /// The delegate of that kind among the columns; null when there is none.
  template <class CDelegate>
  CDelegate* findDelegate() const;
  void endFailed(const std::string& what) const;

  /// Taken before the mutex of the rows, never inside it.
  mutable utils::CSharedMutex m_accountLock;
  std::string m_account TS_GUARDED_BY(m_accountLock);
  int m_compactType TS_GUARDED_BY(m_accountLock);
  std::uint64_t m_query TS_GUARDED_BY(m_accountLock) = 0;
  CSignals m_signals;
  CTableTasks m_tasks;
};

}  // namespace VN
