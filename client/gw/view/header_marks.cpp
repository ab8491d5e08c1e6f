#include "gw/view/header_marks.h"

#include <QPainter>
#include <QPainterPath>

namespace GW {

namespace {

/// Shapes in a square whose side is 1.
constexpr QPointF RISING[] = {{0.5, 0.25}, {0.95, 0.75}, {0.05, 0.75}};
constexpr QPointF FALLING[] = {{0.5, 0.75}, {0.95, 0.25}, {0.05, 0.25}};
constexpr QPointF FUNNEL[] = {{0.0, 0.08}, {1.0, 0.08}, {0.62, 0.5}, {0.62, 0.95}, {0.38, 0.8}, {0.38, 0.5}};

template <std::size_t N>
void fillShape(QPainter& painter, const QRect& place, const QPointF (&points)[N], const QColor& color) {
  QPolygonF shape;
  for (const QPointF& point : points)
    shape << QPointF(place.x() + point.x() * place.width(), place.y() + point.y() * place.height());
  QPainterPath path;
  path.addPolygon(shape);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(path, color);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace

void paintSortMark(QPainter& painter, const QRect& place, Qt::SortOrder order, const QColor& color) {
  if (order == Qt::AscendingOrder)
    fillShape(painter, place, RISING, color);
  else
    fillShape(painter, place, FALLING, color);
}

void paintFilterMark(QPainter& painter, const QRect& place, const QColor& color) {
  fillShape(painter, place, FUNNEL, color);
}

}  // namespace GW
