#pragma once

#include "gw/CRowSorter.h"
#include "gw/CTableColumn.h"
#include "gw/CTableStore.h"

#include <QAbstractTableModel>

#include <vector>

namespace GW {

/// The GUI thread's side of a table: rows taken from the store, in the order of sorting. Model columns are column ids.
/// It takes no lock, except in a delegate's sort key function. Rows keep their persistent indexes while they live.
class CTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit CTableModel(QObject* parent = nullptr);
  ~CTableModel() override;

  /// Returns its id.
  int addColumn(CTableColumn column);
  /// Null for an unknown id.
  CTableColumn* column(int columnId);
  const CTableColumn* column(int columnId) const;
  void setDelegate(int columnId, std::unique_ptr<CBaseTableColumnWidgetDelegate> delegate);

  /// Makes the sort keys of the drain's rows that were added since the last call; the costly part of `apply`, so that
  /// it can be done in steps.
  void prepare(const CTableDrain& drain);
  /// Emits at most one insertion and one change of order; old records are freed elsewhere.
  void apply(CTableDrain&& drain);
  void clear();

  /// -1: order of arrival.
  void setSort(int columnId, Qt::SortOrder order);
  int sortColumn() const { return m_sortColumn; }
  Qt::SortOrder sortOrder() const { return m_sortOrder; }

  /// Null and empty for rows and columns that do not exist.
  rdservice::IDataPtr record(int row) const;
  QString text(int row, int columnId) const;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 Q_SIGNALS:
  /// The rows from `first` on are about to be removed because their records are gone.
  void sigRowsDropping(int first);

 private:
  bool isKnown(int row) const { return row >= 0 && static_cast<std::size_t>(row) < m_rows.size(); }
  const CShownRow& shownAt(int row) const;
  void dropRows(const std::vector<int>& newSlots);
  void reorder(std::vector<int> movedSlots);
  void setOrder(std::vector<int> rows);
  void emitChanged(std::vector<int> rows);

  std::vector<CTableColumn> m_columns;  ///< by id
  std::vector<CShownRow> m_shown;       ///< by slot
  std::vector<int> m_rows;              ///< by row: the slot
  std::vector<int> m_rowOf;             ///< by slot: the row
  CRowSorter m_sorter;
  std::vector<CRowSorter::CKey> m_preparedKeys;  ///< of the rows of the drain to be applied
  int m_sortColumn = -1;
  Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

}  // namespace GW
