#include "gw/view/CTableAccessible.h"

#include "gw/view/CCellAccessible.h"
#include "gw/view/CHpfTableView.h"

#include "utils/threads.h"

#include <QHeaderView>

#include <algorithm>

namespace GW {

namespace {

/// Cells kept; beyond them those out of sight are deleted.
constexpr std::size_t MAX_CELLS = 4096;

std::vector<CTableAccessible*>& tables() {
  static std::vector<CTableAccessible*> all;
  return all;
}

std::uint64_t cellKey(int slot, int columnId) {
  return std::uint64_t{static_cast<std::uint32_t>(slot)} << 32 | static_cast<std::uint32_t>(columnId);
}

CCellAccessible* cellOf(QAccessible::Id id) {
  return static_cast<CCellAccessible*>(QAccessible::accessibleInterface(id));
}

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
  if (className != QLatin1String(CHpfTableView::staticMetaObject.className())) return nullptr;
  auto* view = qobject_cast<CHpfTableView*>(object);
  return view == nullptr ? nullptr : new CTableAccessible(*view);
}

}  // namespace

void installTableAccessibility() {
  utils::assertGui();
  QAccessible::installFactory(makeAccessible);  // again: nothing
}

void updateTableAccessibility(CHpfTableView& view, const CRowsChange& change) {
  for (CTableAccessible* table : tables()) {
    if (table->view() != &view) continue;
    table->rowsChanged(change);
    return;
  }
}

CTableAccessible::CTableAccessible(CHpfTableView& view) : QAccessibleWidget(&view, QAccessible::Table) {
  tables().push_back(this);
  QObject::connect(&view, &CHpfTableView::sigCurrentCellChanged, &m_context, [this] {
    CCellAccessible* current = this->view()->hasFocus() ? currentCell() : nullptr;
    if (current == nullptr) return;
    QAccessibleEvent event(current, QAccessible::Focus);
    announce(&event);
  });
  const auto columnsChanged = [this] { announceReset(); };
  QObject::connect(view.header(), &QHeaderView::sectionMoved, &m_context, columnsChanged);
  QObject::connect(view.header(), &QHeaderView::sectionCountChanged, &m_context, columnsChanged);
}

CTableAccessible::~CTableAccessible() {
  auto& all = tables();
  all.erase(std::find(all.begin(), all.end(), this));
  for (const auto& [key, id] : m_cells) QAccessible::deleteAccessibleInterface(id);
  for (const QAccessible::Id id : m_gone) QAccessible::deleteAccessibleInterface(id);
}

CHpfTableView* CTableAccessible::view() const { return qobject_cast<CHpfTableView*>(object()); }

void* CTableAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TableInterface) return static_cast<QAccessibleTableInterface*>(this);
  return QAccessibleWidget::interface_cast(type);
}

QAccessible::State CTableAccessible::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.multiSelectable = true;
  return state;
}

// --- cells ---

QAccessibleInterface* CTableAccessible::cell(int slot, int columnId) const {
  if (view() == nullptr) return nullptr;
  QAccessible::Id& id = m_cells[cellKey(slot, columnId)];
  if (id != 0) {
    if (QAccessibleInterface* known = QAccessible::accessibleInterface(id)) return known;
  }
  auto* made = new CCellAccessible(*this, slot, columnId);
  id = QAccessible::registerAccessibleInterface(made);
  if (m_cells.size() > MAX_CELLS) dropCells();
  return made;
}

/// Not at once: the caller, or one of its callers, may hold cells.
void CTableAccessible::dropCells() const {
  if (m_isDropping) return;
  m_isDropping = true;
  QMetaObject::invokeMethod(
      const_cast<QObject*>(&m_context),
      [this] {
        m_isDropping = false;
        for (const QAccessible::Id id : m_gone) QAccessible::deleteAccessibleInterface(id);
        m_gone.clear();
        if (m_cells.size() <= MAX_CELLS || view() == nullptr) return;
        const auto [first, last] = view()->visibleRows();
        for (auto it = m_cells.begin(); it != m_cells.end();) {
          const CCellAccessible* cell = cellOf(it->second);
          const int row = cell == nullptr ? -1 : cell->rowIndex();
          const bool isKept = cell != nullptr && (cell->slot() < 0 || (row >= first && row <= last));
          if (!isKept) QAccessible::deleteAccessibleInterface(it->second);
          it = isKept ? std::next(it) : m_cells.erase(it);
        }
      },
      Qt::QueuedConnection);
}

CCellAccessible* CTableAccessible::currentCell() const {
  const CHpfTableView* table = view();
  if (table == nullptr) return nullptr;
  const int slot = table->rows().slotAt(table->currentRow());
  if (slot < 0 || positionOf(table->currentColumn()) < 0) return nullptr;
  return static_cast<CCellAccessible*>(cell(slot, table->currentColumn()));
}

void CTableAccessible::rowsChanged(const CRowsChange& change) {
  if (change.newSlots != nullptr) {
    std::unordered_map<std::uint64_t, QAccessible::Id> cells;
    for (const auto& [key, id] : m_cells) {
      CCellAccessible* cell = cellOf(id);
      if (cell == nullptr) continue;
      const std::size_t slot = static_cast<std::size_t>(cell->slot());
      const int newSlot = cell->slot() < 0 ? -1 : slot < change.newSlots->size() ? (*change.newSlots)[slot] : -1;
      if (cell->slot() >= 0 && newSlot < 0) {
        cell->setGone();
        m_gone.push_back(id);
        continue;
      }
      cell->setSlot(newSlot);
      cells.emplace(cellKey(newSlot, cell->columnId()), id);
    }
    m_cells = std::move(cells);
    if (!m_gone.empty()) dropCells();
  }
  if (change.kind == CRowsChange::Order || change.kind == CRowsChange::Reset) announceReset();
  if (change.kind == CRowsChange::Append) {
    QAccessibleTableModelChangeEvent event(object(), QAccessibleTableModelChangeEvent::RowsInserted);
    event.setFirstRow(change.firstAdded);
    event.setLastRow(change.firstAdded + change.added - 1);
    announce(&event);
  }
}

void CTableAccessible::announceReset() {
  QAccessibleTableModelChangeEvent event(object(), QAccessibleTableModelChangeEvent::ModelReset);
  announce(&event);
}

/// The cells follow by `rowsChanged`.
void CTableAccessible::modelChange(QAccessibleTableModelChangeEvent*) {}

// --- hierarchy ---

int CTableAccessible::positionOf(int columnId) const {
  if (view() == nullptr) return -1;
  const std::vector<int> columns = view()->shownColumns();
  const auto it = std::find(columns.begin(), columns.end(), columnId);
  return it == columns.end() ? -1 : static_cast<int>(it - columns.begin());
}

int CTableAccessible::childCount() const { return (rowCount() + 1) * columnCount(); }

QAccessibleInterface* CTableAccessible::child(int index) const {
  const int columns = columnCount();
  if (index < 0 || columns == 0) return nullptr;
  if (index >= columns) return cellAt(index / columns - 1, index % columns);
  return cell(-1, view()->shownColumns()[static_cast<std::size_t>(index)]);
}

int CTableAccessible::indexOfChild(const QAccessibleInterface* child) const {
  const auto* known = dynamic_cast<const CCellAccessible*>(child);
  if (known == nullptr || &known->owner() != this || !known->isValid()) return -1;
  return (known->rowIndex() + 1) * columnCount() + known->columnIndex();
}

QAccessibleInterface* CTableAccessible::childAt(int x, int y) const {
  CHpfTableView* table = view();
  if (table == nullptr) return nullptr;
  const QPoint place = table->viewport()->mapFromGlobal(QPoint(x, y));
  const int columnId = table->columnAt(place.x());
  if (columnId < 0) return nullptr;
  const QWidget* header = table->header();
  if (header->rect().contains(header->mapFromGlobal(QPoint(x, y)))) return cell(-1, columnId);
  if (!table->viewport()->rect().contains(place)) return nullptr;
  const int slot = table->rows().slotAt(table->rowAt(place.y()));
  return slot < 0 ? nullptr : cell(slot, columnId);
}

QAccessibleInterface* CTableAccessible::focusChild() const {
  if (view() != nullptr && view()->hasFocus()) {
    if (CCellAccessible* current = currentCell()) return current;
  }
  return QAccessibleWidget::focusChild();
}

// --- table ---

QAccessibleInterface* CTableAccessible::caption() const { return nullptr; }

QAccessibleInterface* CTableAccessible::summary() const { return nullptr; }

QAccessibleInterface* CTableAccessible::cellAt(int row, int column) const {
  if (view() == nullptr) return nullptr;
  const int slot = view()->rows().slotAt(row);
  const std::vector<int> columns = view()->shownColumns();
  if (slot < 0 || column < 0 || column >= static_cast<int>(columns.size())) return nullptr;
  return cell(slot, columns[static_cast<std::size_t>(column)]);
}

QString CTableAccessible::columnDescription(int column) const {
  QAccessibleInterface* header = column >= 0 && column < columnCount() ? child(column) : nullptr;
  return header == nullptr ? QString() : header->text(QAccessible::Name);
}

QString CTableAccessible::rowDescription(int) const { return {}; }

int CTableAccessible::columnCount() const {
  return view() == nullptr ? 0 : static_cast<int>(view()->shownColumns().size());
}

int CTableAccessible::rowCount() const { return view() == nullptr ? 0 : view()->rows().rowCount(); }

// --- selection: of rows only ---

int CTableAccessible::selectedCellCount() const { return selectedRowCount() * columnCount(); }

QList<QAccessibleInterface*> CTableAccessible::selectedCells() const {
  QList<QAccessibleInterface*> cells;
  const int columns = columnCount();
  for (const int row : selectedRows()) {
    if (static_cast<std::size_t>(cells.size()) + static_cast<std::size_t>(columns) > MAX_CELLS) break;
    for (int column = 0; column < columns; ++column) cells.push_back(cellAt(row, column));
  }
  return cells;
}

int CTableAccessible::selectedColumnCount() const { return 0; }

int CTableAccessible::selectedRowCount() const { return view() == nullptr ? 0 : view()->selectedCount(); }

QList<int> CTableAccessible::selectedColumns() const { return {}; }

QList<int> CTableAccessible::selectedRows() const {
  if (view() == nullptr) return {};
  const std::vector<int> rows = view()->selectedRows();
  return QList<int>(rows.begin(), rows.end());
}

bool CTableAccessible::isColumnSelected(int) const { return false; }

bool CTableAccessible::isRowSelected(int row) const {
  const int slot = view() == nullptr ? -1 : view()->rows().slotAt(row);
  return slot >= 0 && view()->isSelected(slot);
}

bool CTableAccessible::selectRow(int row) {
  if (row < 0 || row >= rowCount()) return false;
  view()->addToSelection(row, true);
  return true;
}

bool CTableAccessible::unselectRow(int row) {
  if (row < 0 || row >= rowCount()) return false;
  view()->addToSelection(row, false);
  return true;
}

bool CTableAccessible::selectColumn(int) { return false; }

bool CTableAccessible::unselectColumn(int) { return false; }

}  // namespace GW
