// What the screen shows after rows have changed, scrolled or become visible.

#include "gw/view/CHpfTableView.h"

#include "gw/view/CHpfTableViewPrivate.h"

#include <QEvent>
#include <QScrollBar>

#include <cmath>

namespace GW {

void CHpfTableView::changesBegin() {
  m_d->noteTop();
  m_d->isTopNoted = true;
}

void CHpfTableView::changesEnd() { m_d->isTopNoted = false; }

void CHpfTableView::rowsAboutToChange(const CRowsChange& change) {
  if (change.kind == CRowsChange::Content || change.kind == CRowsChange::Append || m_d->isTopNoted) return;
  m_d->noteTop();
}

void CHpfTableView::Private::noteTop() {
  topRow = q->rowAt(0);
  topSlot = rows.slotAt(topRow);
  topY = scrollY();
  topOffset = topY - topRow * rowHeight;
}

void CHpfTableView::rowsChanged(const CRowsChange& change) {
  const int current = m_d->selection.current();
  m_d->selection.rowsChanged(change);
  // A row that only has another number now is no news.
  if (m_d->toldSlot == current && current >= 0 && m_d->selection.current() >= 0)
    m_d->toldSlot = m_d->selection.current();
  m_d->takeRows(change);
  m_d->controls->rowsChanged(change);
  m_d->selectionDone();
}

void CHpfTableView::Private::takeRows(const CRowsChange& change) {
  const int partBefore = scrollY() % rowHeight;
  isMovedAside = false;
  if (change.kind != CRowsChange::Content) {
    isPlacing = true;
    updateScrollBars();
    if (change.newSlots != nullptr && topSlot >= 0) topSlot = (*change.newSlots)[static_cast<std::size_t>(topSlot)];
    // Among several changes one may have left too few rows for the place, and rows added below give it room again.
    if (change.kind != CRowsChange::Append || isTopNoted) {
      const int top = rows.rowOf(topSlot);
      q->verticalScrollBar()->setValue(top >= 0 ? top * rowHeight + topOffset : topY);
      if (top >= 0) {
        // The rows on screen keep their shades, however many come and go above them.
        areShadesSwapped = areShadesSwapped != ((top - topRow) % 2 != 0);
        topRow = top;
      }
      if (rows.rowCount() == 0) areShadesSwapped = false;
    }
    isPlacing = false;
  }
  if (!isSeen()) {
    screen.forget();
    return;
  }
  const auto [first, last] = q->visibleRows();
  const auto dirty = screen.follow(first, last, change, columnsOnScreen());
  if (isMovedAside || scrollY() % rowHeight != partBefore)
    q->viewport()->update();
  else
    updateDirty(dirty);
  if (sums->isVisible()) sums->refresh();
}

void CHpfTableView::Private::updateDirty(const std::vector<CScreenCells::CDirty>& dirty) {
  if (dirty.empty()) return;
  const std::size_t cells =
      static_cast<std::size_t>(screen.lastRow() - screen.firstRow() + 1) * columnsOnScreen().size();
  if (dirty.size() * 2 > cells) {
    q->viewport()->update();
    return;
  }
  QRegion region;
  for (const auto& [row, columnId] : dirty) {
    if (columnId < 0)
      region += lineRect(row);
    else
      region += QRect(header->sectionViewportPosition(columnId), lineY(row), header->sectionSize(columnId), rowHeight);
  }
  q->viewport()->update(region);
}

CScreenLook CHpfTableView::Private::lookOf(int row, int slot) const {
  CScreenLook look;
  look.isOdd = (row % 2 != 0) != areShadesSwapped;
  look.isSelected = selection.isSelected(slot);
  look.isCurrent = slot >= 0 && slot == selection.current();
  look.currentColumn = look.isCurrent ? currentColumn : -1;
  return look;
}

void CHpfTableView::Private::updateLooks() {
  if (!isSeen()) return;
  for (int row = screen.firstRow(); row <= screen.lastRow(); ++row) {
    CScreenLine& line = screen.line(row);
    const CScreenLook look = lookOf(row, line.slot);
    if (!line.isPainted || line.look == look) continue;
    line.look = look;
    q->viewport()->update(lineRect(row));
  }
}

void CHpfTableView::updateCell(int slot, int columnId) {
  m_d->screen.forgetCell(slot, columnId);
  const int row = m_d->rows.rowOf(slot);
  if (row >= 0 && m_d->isSeen()) viewport()->update(cellRect(row, columnId));
}

void CHpfTableView::updateColumn(int columnId) {
  m_d->screen.forgetColumn(columnId);
  if (m_d->rows.column(columnId) == nullptr || m_d->header->isSectionHidden(columnId)) return;
  viewport()->update(m_d->header->sectionViewportPosition(columnId), 0, m_d->header->sectionSize(columnId),
                     viewport()->height());
}

void CHpfTableView::scrollContentsBy(int dx, int dy) {
  m_d->header->setOffset(m_d->scrollX());
  if (m_d->isPlacing)
    m_d->isMovedAside = m_d->isMovedAside || dx != 0;
  else
    m_d->scrolled(dx, dy);
}

bool CHpfTableView::Private::canMovePixels() const {
  const qreal ratio = q->devicePixelRatioF();
  return qFuzzyCompare(ratio, std::round(ratio));
}

void CHpfTableView::Private::scrolled(int dx, int dy) {
  if (!isSeen()) return;
  if (canMovePixels()) {
    q->viewport()->scroll(dx, dy);
    if (dx != 0) sums->scroll(dx, 0);
  } else {
    q->viewport()->update();
    sums->update();
  }
  const auto [first, last] = q->visibleRows();
  screen.scrollTo(first, last);
  controls->place();
}

void CHpfTableView::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  m_d->updateGeometries();
  if (m_d->isPlacing || !m_d->isSeen()) return;
  const auto [first, last] = visibleRows();
  m_d->screen.scrollTo(first, last);
  m_d->controls->place();
}

void CHpfTableView::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  m_d->updateGeometries();
  m_d->screen.forget();
  m_d->sums->refresh();
  const auto [first, last] = visibleRows();
  m_d->screen.scrollTo(first, last);
}

void CHpfTableView::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::StyleChange: m_d->setFont(); break;
    case QEvent::PaletteChange: m_d->setColors(); break;
    case QEvent::EnabledChange: viewport()->update(); break;
    default: break;
  }
}

}  // namespace GW
