#pragma once

#include "gw/CTableBatch.h"
#include "gw/IBaseTable.h"
#include "host_api.h"
#include "rdservice/CStructDes.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace GW {

class CBaseTableColumnWidgetDelegate;
class IBaseHpfTableModel;

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
  /// Place of the held record of that key in order of arrival, from 0; -1 when there is none.
  int arrivalIndex(const std::string& key) const;
  /// Every held record, in order of arrival.
  std::vector<rdservice::IDataPtr> getAllDatas() const;

  /// What the table shows from now on; batches made for anything else are refused.
  void setScope(const CTableScope& scope);
  CTableScope scope() const;

  // --- GUI thread ---

  /// Empties rows and delegates at once; the old records are freed elsewhere.
  void clear();
  /// Empties the rows at once; what the delegates keep for their keys is there when the records come again.
  void clearRows();

  /// Shows what was handed over since the last call, working at most 8 ms and going on in the next turn of the event
  /// loop. Up to about 2,000 changed rows it is complete on return, with more as far as the time allows.
  void updateTable();
  /// True when everything handed over is shown.
  bool isUpToDate() const;

  int rowCount() const override;
  /// The record of a displayed row; null outside 0 to rowCount() - 1.
  rdservice::IDataPtr getData(int row) const;
  /// Displayed row of the held record of that key; -1 when it is not displayed.
  int rowOfKey(const std::string& key) const;
  /// The text shown in a displayed row's cell; empty for an unknown row or column.
  QString cellText(int row, int columnId) const;

  /// The same as an item model, for printing, accessibility and whoever wants to look on.
  IBaseHpfTableModel* getModel() const;

  /// Selected displayed rows, rising; the current one, -1 when there is none.
  std::vector<int> selectedRows() const;
  int currentRow() const;
  /// Selects the row alone, makes it the current one and brings it into view.
  void selectRow(int row);

  /// Columns by id, which is their order of creation; positions are what the user sees. -1 when there is none.
  int columnCount() const;
  int getColumnIdByFileId(int fileId) const;
  QString columnTitle(int columnId) const;
  void setColumnHidden(int columnId, bool hidden);
  bool isColumnHidden(int columnId) const;
  void setColumnVisible(int columnId, bool visible) { setColumnHidden(columnId, !visible); }
  /// Whether the user may choose to see the column; true unless set.
  void setColumnChoosable(int columnId, bool choosable);
  bool isColumnChoosable(int columnId) const;
  /// Puts a column at a position counted from the left, hidden columns included.
  void moveColumn(int columnId, int position);
  /// Puts a column directly behind another, wherever the user has moved that. Nothing happens when one is missing.
  void moveColumnBehind(int columnId, int otherColumnId);
  int columnPosition(int columnId) const;
  void setColumnWidth(int columnId, int pixels);
  int columnWidth(int columnId) const;
  /// Paints the column's cells again.
  void updateColumn(int columnId);

  /// Sorts by a column; -1 goes back to the order of arrival. Equal rows keep the order of their arrival.
  void setSortColumn(int columnId, Qt::SortOrder order);
  /// Sorts rows that are equal so far by one more column; for a column that is among them, changes its direction.
  void addSortColumn(int columnId, Qt::SortOrder order);

  /// Type FilterValues: only rows whose text in the column is one of `texts` are displayed; FilterNone: no filter on
  /// the column. Rows that come later are filtered too.
  void onFilterTrigger(int columnId, int filterType, const QStringList& texts);
  bool isFiltered(int columnId) const;
  /// Applies the filters again; they are always applied in the reference client.
  void updateFilter();

  /// Whether the statistics row shows the sum of the column's displayed cells. Columns of volumes and amounts and added
  /// columns of numbers have sums; others ignore it.
  void setColumnSumVisible(int columnId, bool visible);
  /// The sum as shown; empty without one.
  QString columnSumText(int columnId) const;

  /// Whether the column's header holds a check box. A click reports EventHeaderCheckBox.
  void setColumnCheckBoxVisible(int columnId, bool visible);
  /// Reports nothing.
  void setHeaderCheckBoxState(int columnId, bool checked);
  bool headerCheckBoxState(int columnId) const;

  /// The column's cells come from the delegate, which the table owns from now on.
  void setColumnDelegate(int columnId, CBaseTableColumnWidgetDelegate* delegate);
  /// Null when the column has none.
  CBaseTableColumnWidgetDelegate* columnDelegate(int columnId) const;

  QString saveConfigStr() const override;
  bool loadConfigStr(const QString& config) override;
  void adjustVisibleRowsColumnWidth() override;

  /// Bytes held for the rows beyond their records.
  std::size_t memory() const;

 protected:
  void finishEditing() override;

  /// A column without a record field; its cells are a delegate's. `number`, at least 1, is how saved layouts know it.
  /// Returns its id.
  int addPlainColumn(int number, const QString& title, Qt::Alignment alignment);
  /// One column for each field of the record type, in the field table's order.
  void addRecordColumns(const rdservice::CStructDes& des);

  /// Cells of columns without field and delegate, kept like a delegate's. Any thread.
  void setCellValue(int columnId, const std::string& key, qint64 value);
  void setCellText(int columnId, const std::string& key, const QString& text);

 private:
  friend class CTableBatch;
  friend class CBaseTableColumnWidgetDelegate;
  struct Private;
  std::unique_ptr<Private> m_d;
};

/// A high-performance table with its standard view: header, rows, statistics row, find bar, paging bar. GUI thread.
class HOST_API CStandardHpfTable : public CBaseHighPerformanceTable {
 public:
  CStandardHpfTable(int tableId, QWidget* parent);
  ~CStandardHpfTable() override;
};

}  // namespace GW
