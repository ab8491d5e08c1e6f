#include "gw/view/CCellControlsPrivate.h"

#include "gw/widget_events.h"

#include <QApplication>
#include <QKeyEvent>

#include <utility>

namespace GW {

namespace {

int renumbered(int slot, const CRowsChange& change) {
  if (slot < 0 || change.newSlots == nullptr) return slot;
  return static_cast<std::size_t>(slot) < change.newSlots->size() ? (*change.newSlots)[static_cast<std::size_t>(slot)]
                                                                  : -1;
}

/// Keys that end the editing.
bool isEndKey(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape: return (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return (event.modifiers() & ~Qt::ShiftModifier) == Qt::NoModifier;
    default: return false;
  }
}

}  // namespace

bool CCellControls::Private::begin(int slot, int columnId, const QString& typed) {
  CBaseTableColumnWidgetDelegate* const target = delegate(columnId);
  const CTableColumn* column = rows.column(columnId);
  if (editing || target == nullptr || !isEditable(*column) || rows.rowOf(slot) < 0) return false;
  const std::string key = rows.key(slot);
  const CDelegateControl& control = CDelegateControl::of(*target);
  if (!isOpen(control.rows->item(columnId, key))) return false;

  view.setCurrentCell(rows.rowOf(slot), columnId);
  editing.emplace(CEditing{slot, columnId, key, target, nullptr});
  const int type = control.kind == ECellControl::IntSpinBox ? EventSpinBegin : EventLineEditBegin;
  if (!deliver(columnId, type, 0, QString::fromStdString(key), nullptr) || !editing) return true;

  // Whoever was told may have disabled the cell, or shown a box while rows went on changing.
  const bool isThere = editing->slot >= 0 && delegate(columnId) == target;
  const CItemState state = isThere ? control.rows->item(columnId, key) : CItemState();
  if (isThere && isOpen(state))
    open(control, state.text, typed);
  else
    editing.reset();
  Q_EMIT q->sigStored();
  return true;
}

void CCellControls::Private::open(const CDelegateControl& control, const QString& text, const QString& typed) {
  const CTableColumn& column = *rows.column(editing->columnId);
  editing->editor = std::make_unique<CCellEditor>(control, column.alignment, text, typed, view.viewport());
  QWidget* const widget = editing->editor->widget();
  CDelegateControl::of(*editing->delegate).editor = widget;
  widget->setAccessibleName(column.title);
  widget->installEventFilter(q);
  view.scrollToCell(rows.rowOf(editing->slot), editing->columnId);
  q->place();
  widget->show();
  widget->setFocus(Qt::OtherFocusReason);
}

void CCellControls::Private::close(bool isLast) {
  if (!editing) return;
  const CEditing closed = std::move(*editing);
  editing.reset();
  CBaseTableColumnWidgetDelegate* const owner = delegate(closed.columnId);
  if (owner != nullptr && owner == closed.delegate) CDelegateControl::of(*owner).editor = nullptr;
  QWidget* const widget = closed.editor ? closed.editor->widget() : nullptr;
  if (widget == nullptr) return;
  widget->removeEventFilter(q);
  QWidget* const focused = QApplication::focusWidget();
  if (focused == nullptr ? view.window()->focusWidget() != widget : focused != widget) return;
  // A hidden widget would hand the focus on by itself, to a view that is perhaps half destroyed.
  if (isLast)
    widget->clearFocus();
  else
    view.setFocus(Qt::OtherFocusReason);
}

bool CCellControls::Private::commit() {
  if (!editing || !editing->editor || editing->isCommitting) return true;
  editing->isCommitting = true;
  const std::optional<QString> text = editing->editor->changedText();
  if (text && !report(*text)) return false;
  close(false);
  return true;
}

bool CCellControls::Private::report(const QString& text) {
  const int columnId = editing->columnId;
  CBaseTableColumnWidgetDelegate* const target = delegate(columnId);
  if (target == nullptr || target != editing->delegate) return true;
  const CDelegateControl& control = CDelegateControl::of(*target);
  rdservice::IDataPtr record = control.rows->find(editing->key);
  if (!record || !isOpen(control.rows->item(columnId, editing->key))) return true;

  const bool isNumber = control.kind == ECellControl::IntSpinBox;
  const QString key = QString::fromStdString(editing->key);
  CItemChange item;
  item.part = EItemPart::Text;
  item.column = columnId;
  item.key = editing->key;
  item.text = text;
  if (!store(control, item)) return false;
  const bool isAlive = isNumber ? deliver(columnId, EventSpinChanged, text.toInt(), key, nullptr)
                                : deliver(columnId, EventCellEdited, 0, text, &record);
  if (!isAlive) return false;
  const QPointer<CCellControls> self(q);
  Q_EMIT q->sigStored();
  return !self.isNull();
}

std::optional<int> CCellControls::Private::commitBefore(int slot) {
  targetSlot = slot;
  if (!commit()) return std::nullopt;
  return std::exchange(targetSlot, -1);
}

std::pair<int, int> CCellControls::Private::nextOpen(std::pair<int, int> cell, bool backwards) const {
  do {
    cell = view.nextCell(cell.first, cell.second, backwards, &CCellControls::isEditable);
    const CItemColumn* items = cell.first < 0 ? nullptr : rows.items(cell.second);
    const int slot = rows.slotAt(cell.first);
    if (items == nullptr || (items->isVisible(slot) && items->isEnabled(slot))) break;
  } while (cell.first >= 0);
  return cell;
}

void CCellControls::Private::step(bool backwards) {
  // Looked for before the commit, which may sort the row to another place.
  const int row = rows.rowOf(editing->slot);
  const auto next = row < 0 ? std::pair(-1, -1) : nextOpen({row, editing->columnId}, backwards);
  const std::optional<int> slot = commitBefore(rows.slotAt(next.first));
  if (!slot || *slot < 0) return;
  std::pair cell(rows.rowOf(*slot), next.second);
  while (cell.first >= 0 && !begin(rows.slotAt(cell.first), cell.second, QString())) cell = nextOpen(cell, backwards);
}

void CCellControls::Private::showEditor() {
  const int row = rows.rowOf(editing->slot);
  const bool isInSight = editing->editor->widget()->geometry().intersects(view.viewport()->rect());
  if (row >= 0 && !isInSight) view.scrollToCell(row, editing->columnId);
}

void CCellControls::Private::keyPressed(int key) {
  switch (key) {
    case Qt::Key_Escape: close(false); break;
    case Qt::Key_Tab: step(false); break;
    case Qt::Key_Backtab: step(true); break;
    default: commit(); break;
  }
}

bool CCellControls::Private::focusLost() {
  QWidget* const focused = QApplication::focusWidget();
  if (focused == nullptr || (focused != &view && !view.isAncestorOf(focused))) {
    commit();
    return true;
  }
  // Inside the view it is a click that the view has yet to handle: with the rows where the user saw them.
  const QPointer<QWidget> widget = editing->editor->widget();
  QMetaObject::invokeMethod(
      q,
      [this, widget] {
        if (widget && !widget->hasFocus() && editing && editing->editor && editing->editor->widget() == widget)
          commit();
      },
      Qt::QueuedConnection);
  return false;
}

bool CCellControls::edit(int slot, int columnId, const QString& typed) {
  const CTableColumn* column = m_d->rows.column(columnId);
  if (column == nullptr || !isEditable(*column)) return false;
  if (isEditing() && m_d->editing->slot == slot && m_d->editing->columnId == columnId) return true;
  const std::optional<int> present = m_d->commitBefore(slot);
  return !present || (m_d->hasSlot(*present) && m_d->begin(*present, columnId, typed));
}

bool CCellControls::isEditing() const { return m_d->editing && m_d->editing->editor; }

void CCellControls::finish() { m_d->commit(); }

void CCellControls::cancel() {
  if (!m_d->editing || m_d->editing->isCommitting) return;
  if (isEditing())
    m_d->close(false);
  else
    m_d->editing->slot = -1;  // whoever is told of the beginning is still at it
}

void CCellControls::place() {
  if (!isEditing()) return;
  auto& editing = *m_d->editing;
  if (!editing.isCommitting && m_d->delegate(editing.columnId) != editing.delegate) return cancel();
  QWidget* const widget = editing.editor->widget();
  if (widget == nullptr) return;
  const int row = m_d->rows.rowOf(editing.slot);
  QRect cell = row < 0 ? QRect() : m_d->view.cellRect(row, editing.columnId);
  // Not hidden when out of sight: that would take the focus from what is being typed.
  if (!cell.intersects(m_d->view.viewport()->rect()))
    cell = QRect(QPoint(-widget->width(), -widget->height()), widget->size());
  widget->setGeometry(cell);
}

void CCellControls::rowsChanged(const CRowsChange& change) {
  m_d->targetSlot = renumbered(m_d->targetSlot, change);
  if (!m_d->editing) return;
  auto& editing = *m_d->editing;
  editing.slot = renumbered(editing.slot, change);
  if (!m_d->hasSlot(editing.slot) || m_d->rows.key(editing.slot) != editing.key) editing.slot = -1;
  if (!editing.editor || editing.isCommitting) return;
  const CItemColumn* items = m_d->rows.items(editing.columnId);
  const bool isClosed = items != nullptr && !(items->isVisible(editing.slot) && items->isEnabled(editing.slot));
  if (editing.slot < 0 || isClosed)
    cancel();
  else
    place();
}

bool CCellControls::eventFilter(QObject* watched, QEvent* event) {
  if (!isEditing() || watched != m_d->editing->editor->widget()) return QObject::eventFilter(watched, event);
  // Once something was committed, view and editor may be gone: then the event must go no further.
  switch (event->type()) {
    case QEvent::ShortcutOverride:
      if (!isEndKey(*static_cast<QKeyEvent*>(event))) return false;
      event->accept();
      return true;
    case QEvent::KeyPress: {
      const auto* pressed = static_cast<QKeyEvent*>(event);
      if (!isEndKey(*pressed)) {
        m_d->showEditor();
        return false;
      }
      const bool isBack = pressed->key() == Qt::Key_Tab && pressed->modifiers().testFlag(Qt::ShiftModifier);
      m_d->keyPressed(isBack ? Qt::Key_Backtab : pressed->key());
      return true;
    }
    case QEvent::FocusOut:
      if (m_d->editing->isCommitting || static_cast<QFocusEvent*>(event)->reason() == Qt::PopupFocusReason)
        return false;
      return m_d->focusLost();
    default: return false;
  }
}

}  // namespace GW
