#include "gw/nine_grid.h"

#include <QPainter>

#include <algorithm>
#include <array>

namespace GW {

void drawNineGrid(QPainter& painter, const QRect& rect, const QPixmap& image) {
  if (image.isNull()) return;
  const qreal scale = image.devicePixelRatio();
  const qreal cornerWidth = std::min(image.width() / scale / 3, rect.width() / 2.0);
  const qreal cornerHeight = std::min(image.height() / scale / 3, rect.height() / 2.0);
  const std::array<qreal, 4> xs{0, cornerWidth, rect.width() - cornerWidth, qreal(rect.width())};
  const std::array<qreal, 4> ys{0, cornerHeight, rect.height() - cornerHeight, qreal(rect.height())};
  const QSizeF part(image.width() / 3.0, image.height() / 3.0);  // in the image's own pixels
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      const QRectF target(QPointF(xs[column], ys[row]), QPointF(xs[column + 1], ys[row + 1]));
      const QPointF source(part.width() * static_cast<qreal>(column), part.height() * static_cast<qreal>(row));
      painter.drawPixmap(target.translated(rect.topLeft()), image, QRectF(source, part));
    }
  }
}

}  // namespace GW
