#include "gw/view/CCellAccessible.h"

#include "gw/view/CCellControls.h"
#include "gw/view/CHpfTableView.h"
#include "gw/view/CTableAccessible.h"
#include "gw/view/CTableFace.h"

#include <QHeaderView>

namespace GW {

CCellAccessible::CCellAccessible(const CTableAccessible& table, int slot, int columnId)
    : m_table(table), m_slot(slot), m_columnId(columnId) {}

CCellAccessible::~CCellAccessible() = default;

CHpfTableView* CCellAccessible::view() const { return m_table.view(); }

const CTableColumn* CCellAccessible::column() const {
  if (m_isGone || view() == nullptr || m_table.positionOf(m_columnId) < 0) return nullptr;
  const CShownRows& rows = view()->rows();
  return isHeader() || rows.rowOf(m_slot) >= 0 ? rows.column(m_columnId) : nullptr;
}

bool CCellAccessible::isValid() const { return column() != nullptr; }

QObject* CCellAccessible::object() const { return nullptr; }

QWindow* CCellAccessible::window() const { return m_table.window(); }

void* CCellAccessible::interface_cast(QAccessible::InterfaceType type) {
  if (type == QAccessible::TableCellInterface) return static_cast<QAccessibleTableCellInterface*>(this);
  if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
  return nullptr;
}

// --- hierarchy ---

QAccessibleInterface* CCellAccessible::childAt(int, int) const { return nullptr; }

QAccessibleInterface* CCellAccessible::parent() const { return table(); }

QAccessibleInterface* CCellAccessible::child(int) const { return nullptr; }

int CCellAccessible::childCount() const { return 0; }

int CCellAccessible::indexOfChild(const QAccessibleInterface*) const { return -1; }

// --- content ---

QString CCellAccessible::text(QAccessible::Text kind) const {
  const CTableColumn* known = kind == QAccessible::Name ? column() : nullptr;
  if (known == nullptr) return {};
  return isHeader() ? known->title : view()->rows().text(m_slot, m_columnId);
}

void CCellAccessible::setText(QAccessible::Text, const QString&) {}

QRect CCellAccessible::rect() const {
  if (!isValid()) return {};
  QRect place;
  const QWidget* area = view()->viewport();
  if (isHeader()) {
    const QHeaderView* header = view()->header();
    area = header->viewport();
    place = QRect(header->sectionViewportPosition(m_columnId), 0, header->sectionSize(m_columnId), area->height());
  } else {
    place = view()->cellRect(rowIndex(), m_columnId);
  }
  return place.translated(area->mapToGlobal(QPoint(0, 0)));
}

QAccessible::Role CCellAccessible::role() const { return isHeader() ? QAccessible::ColumnHeader : QAccessible::Cell; }

QAccessible::State CCellAccessible::state() const {
  QAccessible::State state;
  const CTableColumn* known = column();
  if (known == nullptr) {
    state.invalid = true;
    return state;
  }
  const QWidget* area = isHeader() ? view()->header()->viewport() : view()->viewport();
  const QRect visible(area->mapToGlobal(QPoint(0, 0)), area->size());
  state.invisible = !view()->isVisible();
  state.offscreen = !visible.intersects(rect());
  state.disabled = !view()->isEnabled();
  if (isHeader()) return state;

  const CItemColumn* items = view()->rows().items(m_columnId);
  state.focusable = true;
  state.selectable = true;
  state.selected = isSelected();
  state.focused = view()->hasFocus() && view()->currentRow() == rowIndex() && view()->currentColumn() == m_columnId;
  state.editable = CCellControls::isEditable(*known);
  state.readOnly = !state.editable;
  if (items != nullptr && !items->isEnabled(m_slot)) state.disabled = true;
  if (CTableFace::isBox(*known) && (items == nullptr || items->isVisible(m_slot))) {
    state.checkable = true;
    state.checked = items != nullptr && items->isChecked(m_slot);
  }
  return state;
}

// --- table cell ---

bool CCellAccessible::isSelected() const { return isValid() && !isHeader() && view()->isSelected(m_slot); }

QList<QAccessibleInterface*> CCellAccessible::columnHeaderCells() const {
  if (!isValid() || isHeader()) return {};
  return {m_table.cell(-1, m_columnId)};
}

QList<QAccessibleInterface*> CCellAccessible::rowHeaderCells() const { return {}; }

int CCellAccessible::columnIndex() const { return m_table.positionOf(m_columnId); }

int CCellAccessible::rowIndex() const {
  return isHeader() || m_isGone || view() == nullptr ? -1 : view()->rows().rowOf(m_slot);
}

int CCellAccessible::columnExtent() const { return 1; }

int CCellAccessible::rowExtent() const { return 1; }

QAccessibleInterface* CCellAccessible::table() const { return const_cast<CTableAccessible*>(&m_table); }

// --- actions ---

QStringList CCellAccessible::actionNames() const {
  QStringList names;
  const QAccessible::State now = state();
  if (isHeader() || now.invalid || now.disabled) return names;
  names.push_back(setFocusAction());
  if (now.checkable) names.push_back(toggleAction());
  return names;
}

void CCellAccessible::doAction(const QString& name) {
  if (!actionNames().contains(name)) return;
  // Either may delete the cell.
  if (name == toggleAction()) {
    view()->controls().toggle(m_slot, m_columnId);
    return;
  }
  CHpfTableView* table = view();
  table->setCurrentCell(rowIndex(), m_columnId);
  table->setFocus(Qt::OtherFocusReason);
}

QStringList CCellAccessible::keyBindingsForAction(const QString&) const { return {}; }

}  // namespace GW
