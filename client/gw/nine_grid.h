#pragma once

#include <QPixmap>
#include <QRect>

class QPainter;

namespace GW {

/// Draws an image of three by three equal parts so that it fills `rect`: its corners keep their size, the rest is
/// stretched. An image that is not there draws nothing.
void drawNineGrid(QPainter& painter, const QRect& rect, const QPixmap& image);

}  // namespace GW
