#pragma once

#include <QColor>
#include <QRect>

class QPainter;

namespace GW {

// The marks of a table's header; `place` is a square.

void paintSortMark(QPainter& painter, const QRect& place, Qt::SortOrder order, const QColor& color);
void paintFilterMark(QPainter& painter, const QRect& place, const QColor& color);

}  // namespace GW
