#pragma once

#include "gw/CTableBatch.h"
#include "gw/IBaseTable.h"
#include "host_api.h"
#include "rdservice/CStructDes.h"

#include <memory>
#include <string>
#include <vector>

namespace GW {

class CBaseTableColumnWidgetDelegate;

/// A table of records keyed by `IData::getKey()`.
///
/// Rows are written from any thread, gathered in batches (`CTableBatch`); what was handed over is shown when the GUI
/// thread runs `updateTable`. "Held" are all rows handed over, shown or not; "displayed" are the rows on the screen's
/// side, filtered, sorted, of this page.
class HOST_API CBaseHighPerformanceTable : public IBaseTable {
 public:
  CBaseHighPerformanceTable(int tableId, QWidget* parent);
  ~CBaseHighPerformanceTable() override;

  // --- any thread ---

  /// Inserts or replaces the row of the record's key. A record that is older (by version) than the row's does not
  /// replace it. Inside a batch of this thread it is gathered, otherwise it is a batch of one. `refreshNow` also
  /// schedules `updateTable`. A null record is ignored.
  void updateData(const rdservice::IDataPtr& record, bool refreshNow);
  void updateDatas(const std::vector<rdservice::IDataPtr>& records, bool refreshNow);

  /// The held record of that key; null when there is none.
  rdservice::IDataPtr getDataByKey(const std::string& key) const;
  /// Every held record, in order of arrival.
  std::vector<rdservice::IDataPtr> getAllDatas() const;

  /// What the table shows from now on; batches made for anything else are refused.
  void setScope(const CTableScope& scope);
  CTableScope scope() const;

  // --- GUI thread ---

  /// Empties rows and delegates at once; the old records are freed elsewhere.
  void clear();

  /// Shows what was handed over since the last call, working at most 8 ms and going on in the next turn of the event
  /// loop. Up to about 25,000 changed rows it is complete on return.
  void updateTable();
  /// True when everything handed over is shown.
  bool isUpToDate() const;

  int rowCount() const override;
  /// The record of a displayed row; null outside 0 to rowCount() - 1.
  rdservice::IDataPtr getData(int row) const;
  /// The text shown in a displayed row's cell; empty for an unknown row or column.
  QString cellText(int row, int columnId) const;

  /// Columns by id, which is their order of creation; positions are what the user sees. -1 when there is none.
  int columnCount() const;
  int getColumnIdByFileId(int fileId) const;
  QString columnTitle(int columnId) const;
  void setColumnHidden(int columnId, bool hidden);
  bool isColumnHidden(int columnId) const;
  /// Puts a column at a position counted from the left, hidden columns included.
  void moveColumn(int columnId, int position);
  int columnPosition(int columnId) const;
  void setColumnWidth(int columnId, int pixels);

  /// Sorts by a column; -1 goes back to the order of arrival.
  void setSortColumn(int columnId, Qt::SortOrder order);

  /// The column's cells come from the delegate, which the table owns from now on.
  void setColumnDelegate(int columnId, CBaseTableColumnWidgetDelegate* delegate);
  /// Null when the column has none.
  CBaseTableColumnWidgetDelegate* columnDelegate(int columnId) const;

  QString saveConfigStr() const override;
  bool loadConfigStr(const QString& config) override;
  void adjustVisibleRowsColumnWidth() override;

 protected:
  /// A column without a record field; its cells are a delegate's. `number`, at least 1, is how saved layouts know it.
  /// Returns its id.
  int addPlainColumn(int number, const QString& title, Qt::Alignment alignment);
  /// One column for each field of the record type, in the field table's order.
  void addRecordColumns(const rdservice::CStructDes& des);

 private:
  friend class CTableBatch;
  friend class CBaseTableColumnWidgetDelegate;
  struct Private;
  std::unique_ptr<Private> m_d;
};

/// A high-performance table with its standard view: header, grid, selection, scrolling. GUI thread.
class HOST_API CStandardHpfTable : public CBaseHighPerformanceTable {
 public:
  CStandardHpfTable(int tableId, QWidget* parent);
  ~CStandardHpfTable() override;
};

}  // namespace GW
