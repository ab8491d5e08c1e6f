#include "gw/view/pixel_lines.h"

#include <QPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace GW {

namespace {

/// Edges of rectangles fall between device pixels when the scale is no whole number; the line is moved onto one.
struct CDevicePixels {
  explicit CDevicePixels(const QPainter& painter) : ratio(painter.device()->devicePixelRatioF()) {
    width = std::max(1.0, std::floor(ratio)) / ratio;
  }

  qreal snapped(qreal edge) const { return std::round(edge * ratio) / ratio; }

  qreal ratio;
  qreal width;  ///< of a line, logical pixels
};

}  // namespace

void drawLineRight(QPainter& painter, const QRect& rect, const QColor& color) {
  const CDevicePixels pixels(painter);
  painter.fillRect(
      QRectF(pixels.snapped(rect.x() + rect.width()) - pixels.width, rect.y(), pixels.width, rect.height()), color);
}

void drawLineBelow(QPainter& painter, const QRect& rect, const QColor& color) {
  const CDevicePixels pixels(painter);
  painter.fillRect(
      QRectF(rect.x(), pixels.snapped(rect.y() + rect.height()) - pixels.width, rect.width(), pixels.width), color);
}

void drawLineAround(QPainter& painter, const QRect& rect, const QColor& color) {
  const CDevicePixels pixels(painter);
  drawLineBelow(painter, rect, color);
  drawLineRight(painter, rect, color);
  painter.fillRect(QRectF(rect.x(), pixels.snapped(rect.y()), rect.width(), pixels.width), color);
  painter.fillRect(QRectF(pixels.snapped(rect.x()), rect.y(), pixels.width, rect.height()), color);
}

}  // namespace GW
