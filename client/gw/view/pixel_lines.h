#pragma once

#include <QColor>
#include <QRect>

class QPainter;

namespace GW {

// Lines at the inner edge of a rectangle, as thin as one pixel at a scale of 100 % and always on whole device pixels.

void drawLineRight(QPainter& painter, const QRect& rect, const QColor& color);
void drawLineBelow(QPainter& painter, const QRect& rect, const QColor& color);
void drawLineAround(QPainter& painter, const QRect& rect, const QColor& color);

}  // namespace GW
