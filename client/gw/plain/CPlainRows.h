#pragma once

#include "gw/COddEvenRowTable.h"

#include <QCollator>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include <map>
#include <optional>
#include <vector>

namespace GW {

/// The rows of a plain table as they are displayed: sorted and filtered when the user asks for it, not when a cell
/// changes. Behind it stand the cells as they were filled. GUI thread.
class CPlainRows : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  explicit CPlainRows(QObject* parent);
  ~CPlainRows() override;

  void setColumns(const std::vector<CPlainColumn>& columns);
  const std::vector<CPlainColumn>& columns() const { return m_columns; }
  const CPlainColumn& column(int column) const { return m_columns[static_cast<std::size_t>(column)]; }
  /// Removes the rows, filters and sort order.
  void clear();
  void setFilledRowCount(int rows) { m_cells.setRowCount(rows); }
  int filledRowCount() const { return m_cells.rowCount(); }

  // A cell that is not there is ignored.

  void setText(const CPlainCell& cell, const QString& text) { set(cell, text, false); }
  void setNumber(const CPlainCell& cell, qint64 number) { set(cell, number, true); }
  /// What the user has entered: in a cell of a number, a number if it is one.
  void setEntered(const CPlainCell& cell, const QString& text);
  /// A qlonglong or a QString; invalid for an empty cell.
  QVariant cell(const CPlainCell& cell) const { return m_cells.index(cell.row, cell.column).data(); }
  CPlainCell filledCell(const QModelIndex& displayed) const;

  /// Numbers stand on the right, also while a text stands in their place.
  Qt::Alignment alignment(const QModelIndex& displayed) const;
  Qt::ItemFlags flags(const QModelIndex& displayed) const override;

  /// Sum of the numbers displayed in the column.
  qint64 sum(int column) const;

  /// Ascending, descending, as filled.
  void sortByNext(int column);
  bool isSortedBy(int column) const { return sortColumn() == column; }

  /// Texts that pass; none: no filter. Applies every filter again.
  void setFilter(int column, const std::optional<QSet<QString>>& texts);
  bool isFiltered(int column) const { return m_filters.count(column) > 0; }
  /// Whether the column's own filter lets the text pass.
  bool accepts(int column, const QString& text) const;
  /// Whether a row as filled passes the filters of all columns but one (-1: of all).
  bool passes(int row, int exceptColumn) const;

  /// Numbers before texts, texts by pinyin.
  bool isBefore(const QVariant& left, const QVariant& right) const;

 Q_SIGNALS:
  /// Rows were displayed or hidden, cells changed, or a filter or the sort column did.
  void sigChanged();

 protected:
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

 private:
  void set(const CPlainCell& cell, const QVariant& value, bool isNumberCell);

  QStandardItemModel m_cells;
  std::vector<CPlainColumn> m_columns;
  std::map<int, QSet<QString>> m_filters;
  QCollator m_collator;
};

}  // namespace GW
