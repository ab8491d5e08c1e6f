// Keyboard, input method and focus.

#include "gw/view/CHpfTableView.h"

#include "gw/view/CHpfTableViewPrivate.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QPointer>

#include <algorithm>

namespace GW {

namespace {

/// The text that a key types; empty for keys that type none.
QString typedText(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers =
      event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  const bool isCommand = modifiers != Qt::NoModifier && modifiers != (Qt::ControlModifier | Qt::AltModifier);  // AltGr
  const QString text = event.text();
  return isCommand || text.isEmpty() || !text.front().isPrint() ? QString() : text;
}

}  // namespace

void CHpfTableView::keyPressEvent(QKeyEvent* event) {
  event->accept();
  if (event->matches(QKeySequence::Copy)) return m_d->copy();
  if (event->matches(QKeySequence::SelectAll)) return selectAll();
  if (event->matches(QKeySequence::Find)) {
    Q_EMIT sigFindRequested();
    return;
  }
  if (m_d->moveCurrent(event->key(), event->modifiers())) return;

  const QPointer<CHpfTableView> self(this);
  bool isUsed = false;
  if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
    isUsed = m_d->toggleCurrent();
  } else if (event->key() == Qt::Key_Escape) {
    isUsed = m_d->controls->isEditing();
    if (isUsed) m_d->controls->cancel();
  } else {
    const QString typed = typedText(*event);
    if (event->key() == Qt::Key_F2 || !typed.isEmpty())
      isUsed = m_d->controls->edit(m_d->selection.current(), m_d->currentColumn, typed);
  }
  if (!self.isNull() && !isUsed) event->ignore();
}

bool CHpfTableView::Private::toggleCurrent() {
  const int slot = selection.current();
  if (slot < 0) return false;
  const QPointer<CHpfTableView> self(q);
  std::vector<int> columns = q->shownColumns();
  columns.insert(columns.begin(), currentColumn);
  for (const int columnId : columns) {
    if (isControlAt(columnId) && (controls->toggle(slot, columnId) || self.isNull())) return true;
  }
  return false;
}

void CHpfTableView::Private::copy() const {
  if (selection.count() > 0) QApplication::clipboard()->setText(q->selectedText(true));
}

int CHpfTableView::Private::nextColumn(int columnId, int step) const {
  const std::vector<int> shown = q->shownColumns();
  if (shown.empty()) return -1;
  const auto at = std::find(shown.begin(), shown.end(), columnId);
  if (at == shown.end()) return shown.front();
  const auto position = static_cast<int>(at - shown.begin()) + step;
  return shown[static_cast<std::size_t>(std::clamp(position, 0, static_cast<int>(shown.size()) - 1))];
}

bool CHpfTableView::Private::moveCurrent(int key, Qt::KeyboardModifiers modifiers) {
  const bool ctrl = (modifiers & Qt::ControlModifier) != 0;
  const bool shift = (modifiers & Qt::ShiftModifier) != 0;
  const int last = rows.rowCount() - 1;
  const int page = std::max(1, q->viewport()->height() / rowHeight - 1);
  constexpr int FAR = 1 << 20;
  const int current = currentRow();
  const int from = std::max(0, current >= 0 ? current : q->rowAt(0));
  int row = from;
  int step = 0;  // of the column
  switch (key) {
    case Qt::Key_Up: row -= 1; break;
    case Qt::Key_Down: row += 1; break;
    case Qt::Key_PageUp: row -= page; break;
    case Qt::Key_PageDown: row += page; break;
    case Qt::Key_Left: step = -1; break;
    case Qt::Key_Right: step = 1; break;
    case Qt::Key_Home: ctrl ? void(row = 0) : void(step = -FAR); break;
    case Qt::Key_End: ctrl ? void(row = last) : void(step = FAR); break;
    default: return false;
  }
  if (last < 0) return true;
  const bool isEnd = key == Qt::Key_Home || key == Qt::Key_End;
  if (current < 0 && !(isEnd && ctrl)) row = from;  // the first key only shows where one is
  row = std::clamp(row, 0, last);
  setCurrent(row, step != 0 || currentColumn < 0 ? nextColumn(currentColumn, step) : currentColumn);
  if (step == 0) {
    if (shift)
      selection.extend(row, false);
    else if (!ctrl || isEnd)
      selection.begin(row, false);
  }
  q->scrollToCell(row, step == 0 ? -1 : currentColumn);
  selectionDone();
  return true;
}

void CHpfTableView::inputMethodEvent(QInputMethodEvent* event) {
  const bool isOpened = m_d->controls->edit(m_d->selection.current(), m_d->currentColumn, QString());
  QWidget* editor = isOpened ? QApplication::focusWidget() : nullptr;
  if (editor != nullptr && editor != this)
    QApplication::sendEvent(editor, event);
  else
    event->ignore();
}

QVariant CHpfTableView::inputMethodQuery(Qt::InputMethodQuery query) const {
  if (query == Qt::ImCursorRectangle) {
    const QRect cell = cellRect(currentRow(), currentColumn());
    return cell.translated(viewport()->pos());
  }
  return QAbstractScrollArea::inputMethodQuery(query);
}

void CHpfTableView::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update(m_d->lineRect(currentRow()));
}

void CHpfTableView::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update(m_d->lineRect(currentRow()));
}

bool CHpfTableView::focusNextPrevChild(bool next) {
  const CTableColumn* column = m_d->rows.column(m_d->currentColumn);
  const int row = currentRow();
  if (row >= 0 && column != nullptr && CCellControls::isEditable(*column)) {
    const auto [nextRow, nextColumn] = nextCell(row, m_d->currentColumn, !next, &CCellControls::isEditable);
    if (nextRow >= 0) {
      m_d->setCurrent(nextRow, nextColumn);
      m_d->selection.begin(nextRow, false);
      scrollToCell(nextRow, nextColumn);
      m_d->selectionDone();
      return true;
    }
  }
  return QAbstractScrollArea::focusNextPrevChild(next);
}

}  // namespace GW
