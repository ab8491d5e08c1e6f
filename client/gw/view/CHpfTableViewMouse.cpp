// Mouse, wheel, menu and tool tips.

#include "gw/view/CHpfTableView.h"

#include "gw/view/CHpfTableViewPrivate.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTimerEvent>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

namespace GW {

namespace {

constexpr int DRAG_INTERVAL = 30;  ///< milliseconds between two steps while the mouse is held outside
constexpr int DRAG_SPEED = 4;      ///< a step is so many times shorter than the mouse's distance

}  // namespace

bool CHpfTableView::Private::isControlAt(int columnId) const {
  const CTableColumn* column = rows.column(columnId);
  return column != nullptr && CCellControls::isControl(*column);
}

void CHpfTableView::mousePressEvent(QMouseEvent* event) {
  const int row = rowAt(event->pos().y());
  const int columnId = columnAt(event->pos().x());
  const bool isCell = row >= 0 && columnId >= 0;
  if (event->button() == Qt::RightButton) {
    const int slot = m_d->rows.slotAt(row);
    if (!isCell) return;
    if (!isSelected(slot)) m_d->selection.begin(row, false);
    m_d->setCurrentSlot(slot, columnId);
    m_d->selectionDone();
    return;
  }
  if (event->button() != Qt::LeftButton) return;
  if (m_d->pressControl(row, columnId, event->pos())) return;
  // What was told of a commit may have changed the rows; the press means what the user saw, or nothing.
  if (!isCell) {
    if ((event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) == 0) m_d->selection.clear();
    m_d->selectionDone();
    return;
  }
  m_d->setCurrent(row, columnId);
  m_d->pressRow(row, event->modifiers());
  m_d->isDragging = true;
  m_d->dragPosition = event->pos();
  m_d->selectionDone();
}

bool CHpfTableView::Private::pressControl(int row, int columnId, const QPoint& position) {
  const QPointer<CHpfTableView> self(q);
  const int slot = rows.slotAt(row);
  if (!isControlAt(columnId) || slot < 0) {
    const std::string key = rows.key(slot);
    controls->finish();
    return self.isNull() || rows.key(rows.slotAt(row)) != key;
  }
  const QRect cell = q->cellRect(row, columnId);
  if (!controls->press(slot, columnId, cell, position)) return self.isNull();
  if (self.isNull()) return true;
  if (rows.rowOf(slot) >= 0) setCurrentSlot(slot, columnId);
  selectionDone();
  return true;
}

void CHpfTableView::Private::pressRow(int row, Qt::KeyboardModifiers modifiers) {
  const bool ctrl = (modifiers & Qt::ControlModifier) != 0;
  dragKeepsOthers = ctrl;
  if ((modifiers & Qt::ShiftModifier) != 0)
    selection.extend(row, ctrl);
  else
    selection.begin(row, ctrl);
}

void CHpfTableView::mouseMoveEvent(QMouseEvent* event) {
  if (!m_d->isDragging || (event->buttons() & Qt::LeftButton) == 0) return;
  m_d->drag(event->pos());
}

void CHpfTableView::Private::drag(const QPoint& position) {
  dragPosition = position;
  const int height = q->viewport()->height();
  const bool isOutside = position.y() < 0 || position.y() >= height;
  if (isOutside && !dragTimer.isActive())
    dragTimer.start(DRAG_INTERVAL, q);
  else if (!isOutside)
    dragTimer.stop();
  if (rows.rowCount() == 0) return;
  int row = q->rowAt(std::clamp(position.y(), 0, std::max(0, height - 1)));
  if (row < 0) row = rows.rowCount() - 1;
  if (row == currentRow()) return;
  setCurrent(row, currentColumn);
  selection.extend(row, dragKeepsOthers);
  selectionDone();
}

void CHpfTableView::Private::scrollByDrag() {
  const int y = dragPosition.y();
  const int distance = y < 0 ? y : y - q->viewport()->height() + 1;
  const int step = distance / DRAG_SPEED + (distance < 0 ? -1 : 1);
  q->verticalScrollBar()->setValue(scrollY() + step);
  drag(dragPosition);
}

void CHpfTableView::timerEvent(QTimerEvent* event) {
  if (event->timerId() == m_d->dragTimer.timerId())
    m_d->scrollByDrag();
  else
    QAbstractScrollArea::timerEvent(event);
}

void CHpfTableView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  m_d->isDragging = false;
  m_d->dragTimer.stop();
}

void CHpfTableView::mouseDoubleClickEvent(QMouseEvent* event) {
  const int row = rowAt(event->pos().y());
  const int columnId = columnAt(event->pos().x());
  if (event->button() != Qt::LeftButton || m_d->isControlAt(columnId)) {
    mousePressEvent(event);  // two quick clicks are two
    return;
  }
  if (row >= 0 && columnId >= 0) Q_EMIT sigRowDoubleClicked(row);
}

void CHpfTableView::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ShiftModifier) == 0 || event->angleDelta().x() != 0) {
    QAbstractScrollArea::wheelEvent(event);
    return;
  }
  // Without the modifier, which would make the bar scroll by pages.
  QWheelEvent sideways(event->position(), event->globalPosition(), event->pixelDelta().transposed(),
                       event->angleDelta().transposed(), event->buttons(), Qt::NoModifier, event->phase(),
                       event->inverted(), event->source());
  QCoreApplication::sendEvent(horizontalScrollBar(), &sideways);
  event->setAccepted(true);
}

void CHpfTableView::contextMenuEvent(QContextMenuEvent* event) {
  QPoint place = viewport()->mapFromGlobal(event->globalPos());  // also when it comes from the sums
  if (event->reason() == QContextMenuEvent::Keyboard) {
    const QRect cell = cellRect(currentRow(), currentColumn());
    place = cell.intersects(viewport()->rect()) ? cell.center() : viewport()->rect().center();
  }
  event->accept();
  Q_EMIT sigMenuRequested(place);
}

bool CHpfTableView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    return m_d->showToolTip(help->pos(), help->globalPos());
  }
  return QAbstractScrollArea::viewportEvent(event);
}

bool CHpfTableView::Private::showToolTip(const QPoint& position, const QPoint& global) const {
  const int row = q->rowAt(position.y());
  const int columnId = q->columnAt(position.x());
  const QString text = rows.text(rows.slotAt(row), columnId);
  const QRect cell = q->cellRect(row, columnId);
  const bool isCut = !text.isEmpty() && q->textWidth(text) > cell.width();
  QToolTip::showText(global, isCut ? text : QString(), q->viewport(), cell);
  return true;
}

}  // namespace GW
