#pragma once

#include "gw/table/CShownRows.h"

#include <QAccessibleWidget>
#include <QObject>

#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace GW {

class CCellAccessible;
class CHpfTableView;

/// Lets assistive programs read the tables. Once in a program.
void installTableAccessibility();

/// Told by the owner of a view after a change of its rows.
void updateTableAccessibility(CHpfTableView& view, const CRowsChange& change);

/// A view as assistive programs see it: a table whose columns are the visible ones, counted from the left. Its children
/// are the column headers, then the cells row by row. Qt makes it when somebody asks, and deletes it with the view; it
/// makes its cells when somebody asks for them. A cell follows its record; when the record has gone it is invalid, and
/// soon deleted: whoever keeps a cell keeps its id, as Qt's bridges do. GUI thread.
class CTableAccessible final : public QAccessibleWidget, public QAccessibleTableInterface {
 public:
  explicit CTableAccessible(CHpfTableView& view);
  CTableAccessible(const CTableAccessible&) = delete;
  CTableAccessible& operator=(const CTableAccessible&) = delete;

  /// Null while the view is being destroyed.
  CHpfTableView* view() const;
  /// The header of a column has slot -1.
  QAccessibleInterface* cell(int slot, int columnId) const;
  /// -1 for a hidden column.
  int positionOf(int columnId) const;
  void rowsChanged(const CRowsChange& change);
  std::size_t cellCount() const { return m_cells.size(); }

  /// Where events go; Qt drops them while accessibility is not active.
  std::function<void(QAccessibleEvent* event)> announce = QAccessible::updateAccessibility;

  void* interface_cast(QAccessible::InterfaceType type) override;
  QAccessible::State state() const override;
  int childCount() const override;
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QAccessibleInterface* childAt(int x, int y) const override;
  QAccessibleInterface* focusChild() const override;

  QAccessibleInterface* caption() const override;
  QAccessibleInterface* summary() const override;
  QAccessibleInterface* cellAt(int row, int column) const override;
  QString columnDescription(int column) const override;
  QString rowDescription(int row) const override;
  int columnCount() const override;
  int rowCount() const override;
  int selectedCellCount() const override;
  /// At most as many as are kept.
  QList<QAccessibleInterface*> selectedCells() const override;
  int selectedColumnCount() const override;
  int selectedRowCount() const override;
  QList<int> selectedColumns() const override;
  QList<int> selectedRows() const override;
  bool isColumnSelected(int column) const override;
  bool isRowSelected(int row) const override;
  bool selectRow(int row) override;
  bool selectColumn(int column) override;
  bool unselectRow(int row) override;
  bool unselectColumn(int column) override;
  void modelChange(QAccessibleTableModelChangeEvent* event) override;

 protected:
  ~CTableAccessible() override;

 private:
  CCellAccessible* currentCell() const;
  void announceReset();
  void dropCells() const;

  QObject m_context;                                                   ///< connections and queued calls end with it
  mutable std::unordered_map<std::uint64_t, QAccessible::Id> m_cells;  ///< by slot and column id
  mutable std::vector<QAccessible::Id> m_gone;                         ///< to be deleted in the next turn
  mutable bool m_isDropping = false;                                   ///< in the next turn
};

}  // namespace GW
