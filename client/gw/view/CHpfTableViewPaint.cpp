// Painting of the rows.

#include "gw/view/CHpfTableView.h"

#include "gw/view/CHpfTableViewPrivate.h"
#include "gw/view/pixel_lines.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace GW {

namespace {

/// Rows painted at a time, so that their pixels are still at hand when texts go over the background.
constexpr int STRIP = 4;

}  // namespace

void CHpfTableView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.setFont(font());
  m_d->paint(painter, event->region());
}

void CHpfTableView::Private::paint(QPainter& painter, const QRegion& region) {
  texts.setFont(q->font(), q->devicePixelRatioF());
  const auto [first, last] = q->visibleRows();
  if (screen.firstRow() != std::max(first, 0) || screen.lastRow() != last) screen.scrollTo(first, last);

  const QRect area = region.boundingRect();
  const auto columns = columnsBetween(area.left(), area.right());
  const int right = header->length() - header->offset();
  const int below = lineY(rows.rowCount());
  if (right <= area.right()) painter.fillRect(QRect(QPoint(right, area.top()), area.bottomRight()), colors.background);
  if (below <= area.bottom())
    painter.fillRect(QRect(QPoint(area.left(), below), area.bottomRight()), colors.background);
  if (first < 0) return;

  markCells(region, columns);
  for (int strip = markedFirst; strip <= markedLast; strip += STRIP) {
    const int end = std::min(strip + STRIP, markedLast + 1);
    paintBackground(painter, columns, strip, end);
    paintGrid(painter, columns, strip, end);
    paintCells(painter, columns, strip, end);
  }
  paintCurrent(painter);
}

/// The cells that the region touches. The painter is clipped to it, but a cell must be painted once only: text drawn
/// twice is bolder.
void CHpfTableView::Private::markCells(const QRegion& region, const std::vector<CColumnPlace>& columns) {
  const QRect area = region.boundingRect();
  const auto rowAt = [this](int y) { return (y + scrollY()) / rowHeight; };
  markedFirst = std::max(rowAt(area.top()), screen.firstRow());
  markedLast = std::min(rowAt(area.bottom()), screen.lastRow());
  marks.assign(columns.size() * static_cast<std::size_t>(std::max(0, markedLast - markedFirst + 1)), 0);
  for (const QRect& rect : region) {
    const int first = std::max(rowAt(rect.top()), markedFirst);
    const int last = std::min(rowAt(rect.bottom()), markedLast);
    for (std::size_t c = 0; c < columns.size(); ++c) {
      if (columns[c].x > rect.right() || columns[c].x + columns[c].width <= rect.left()) continue;
      for (int row = first; row <= last; ++row)
        marks[static_cast<std::size_t>(row - markedFirst) * columns.size() + c] = 1;
    }
  }
}

void CHpfTableView::Private::paintBackground(QPainter& painter, const std::vector<CColumnPlace>& columns, int first,
                                             int end) {
  for (int row = first; row < end; ++row) {
    CScreenLine& line = screen.line(row);
    line.look = lookOf(row, line.slot);
    line.isPainted = true;
    const QColor& color = line.look.isSelected ? colors.selected
                          : line.look.isOdd    ? colors.alternate
                                               : colors.background;
    const std::uint8_t* marked = marksOf(row, columns);
    for (std::size_t from = 0; from < columns.size(); ++from) {
      if (marked[from] == 0) continue;
      std::size_t to = from;
      while (to + 1 < columns.size() && marked[to + 1] != 0) ++to;
      const QRect rect(columns[from].x, lineY(row), columns[to].x + columns[to].width - columns[from].x, rowHeight);
      painter.fillRect(rect, color);
      drawLineBelow(painter, rect, colors.grid);
      from = to;
    }
  }
}

void CHpfTableView::Private::paintGrid(QPainter& painter, const std::vector<CColumnPlace>& columns, int first,
                                       int end) {
  for (std::size_t c = 0; c < columns.size(); ++c) {
    const auto isMarked = [&](int row) { return marksOf(row, columns)[c] != 0; };
    for (int from = first; from < end; ++from) {
      if (!isMarked(from)) continue;
      int to = from;
      while (to + 1 < end && isMarked(to + 1)) ++to;
      drawLineRight(painter, QRect(columns[c].x, lineY(from), columns[c].width, (to - from + 1) * rowHeight),
                    colors.grid);
      from = to;
    }
  }
}

void CHpfTableView::Private::paintCells(QPainter& painter, const std::vector<CColumnPlace>& columns, int first,
                                        int end) {
  const bool isEnabled = q->isEnabled();
  controlColors.setCurrentColorGroup(isEnabled ? QPalette::Active : QPalette::Disabled);
  const std::uint8_t* marked = marksOf(first, columns);
  for (int row = first; row < end; ++row) {
    CScreenLine& line = screen.line(row);
    const int y = lineY(row);
    for (const CColumnPlace& place : columns) {
      if (*marked++ == 0) continue;
      const CScreenCell& cell = screen.cell(line, place.id);
      const QRect rect(place.x, y, place.width, rowHeight);
      if (place.isControl)
        controls->paint(painter, rect, line.slot, place.id, controlColors);
      else
        texts.add(textRect(rect), place.column->alignment, cell.text,
                  isEnabled && cell.isEnabled ? colors.text : colors.disabledText);
    }
  }
  texts.draw(painter);
}

void CHpfTableView::Private::paintCurrent(QPainter& painter) {
  const int row = currentRow();
  if (row < markedFirst || row > markedLast) return;
  QRect line = lineRect(row);
  line.setWidth(std::min(line.width(), header->length() - header->offset()));
  drawLineBelow(painter, line, colors.currentRow);
  drawLineBelow(painter, line.translated(0, -rowHeight + 1), colors.currentRow);
  // Without the focus it is paler: what the find bar has found is this cell.
  if (currentColumn >= 0 && !header->isSectionHidden(currentColumn))
    drawLineAround(painter, q->cellRect(row, currentColumn), q->hasFocus() ? colors.current : colors.currentRow);
}

}  // namespace GW
