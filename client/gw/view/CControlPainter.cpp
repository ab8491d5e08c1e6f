#include "gw/view/CControlPainter.h"

#include <QFontMetrics>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <algorithm>
#include <array>

namespace GW {

namespace {

constexpr int GRID = 1;  ///< pixels of the grid at a cell's right and lower edge
constexpr int MIN_SIDE = 10;
constexpr int CELL_GAP = 2;  ///< pixels between a box and the cell's upper and lower edge, at least
constexpr int FIELD_GAP = 2;
constexpr int TEXT_GAP = 3;  ///< between a field's frame and its text
constexpr qreal ROUNDING = 2.5;

// The tick and the dot in a box whose side is 1.
constexpr std::array<QPointF, 3> TICK = {QPointF(0.23, 0.52), QPointF(0.42, 0.71), QPointF(0.78, 0.30)};
constexpr qreal TICK_WIDTH = 0.13;
constexpr qreal DOT_MARGIN = 0.29;

QColor themeColor(const char* key) { return CUiResource::getColor(QString::fromLatin1(key)); }

}  // namespace

CControlPainter::CControlPainter() : m_colors(themeColors()) {}

CControlPainter::~CControlPainter() = default;

CControlPainter::CColors CControlPainter::themeColors() {
  CColors colors;
  colors.border = themeColor("clr_table_control_border");
  colors.fieldBorder = themeColor("clr_btn_border");
  colors.background = themeColor("clr_table_control_background");
  colors.accent = themeColor("clr_table_control_accent");
  colors.mark = themeColor("clr_table_control_mark");
  colors.disabledBorder = themeColor("clr_table_control_disabled_border");
  colors.disabledBackground = themeColor("clr_table_control_disabled_background");
  colors.disabledText = themeColor("clr_table_disabled_text");
  return colors;
}

void CControlPainter::onUiResourceChanged() {
  m_colors = themeColors();
  m_side = 0;
}

QRect CControlPainter::boxRect(const QRect& cell, const QFontMetrics& metrics) {
  const QRect inside = cell.adjusted(0, 0, -GRID, -GRID);
  int side = std::max(MIN_SIDE, metrics.height() * 3 / 4);
  side = std::min({side, inside.width() - 2 * CELL_GAP, inside.height() - 2 * CELL_GAP});
  if ((inside.height() - side) % 2 != 0) --side;  // otherwise it would stand half a pixel off the middle
  return {inside.x() + (inside.width() - side) / 2, inside.y() + (inside.height() - side) / 2, side, side};
}

QRect CControlPainter::frameRect(const QRect& cell) {
  return cell.adjusted(FIELD_GAP, FIELD_GAP, -FIELD_GAP - GRID, -FIELD_GAP - GRID);
}

void CControlPainter::paintBox(QPainter& painter, const QRect& cell, ECellControl kind, bool checked, bool enabled) {
  paintBoxAt(painter, boxRect(cell, painter.fontMetrics()), kind, checked, enabled);
}

void CControlPainter::paintBoxAt(QPainter& painter, const QRect& box, ECellControl kind, bool checked, bool enabled) {
  if (box.width() <= 0) return;
  const qreal ratio = painter.device()->devicePixelRatioF();
  if (box.width() != m_side || !qFuzzyCompare(ratio, m_ratio)) {
    for (auto& ofKind : m_boxes) {
      for (auto& ofState : ofKind) std::fill(std::begin(ofState), std::end(ofState), QPixmap());
    }
    m_side = box.width();
    m_ratio = ratio;
  }
  QPixmap& image = m_boxes[kind == ECellControl::RadioButton][checked][enabled];
  if (image.isNull()) image = makeBox(m_side, m_ratio, kind, checked, enabled);
  painter.drawPixmap(box.topLeft(), image);
}

QPixmap CControlPainter::makeBox(int side, qreal ratio, ECellControl kind, bool checked, bool enabled) const {
  QPixmap image((QSizeF(side, side) * ratio).toSize());
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);

  const QColor border = enabled ? (checked ? m_colors.accent : m_colors.border) : m_colors.disabledBorder;
  const QColor background = enabled ? m_colors.background : m_colors.disabledBackground;
  const QColor mark = enabled ? m_colors.mark : m_colors.disabledText;
  const bool isRound = kind == ECellControl::RadioButton;
  // Shapes are filled inside one another: edges on whole pixels stay sharp, which a drawn line's would not.
  const auto fill = [&](qreal margin, const QColor& color) {
    const QRectF area = QRectF(0, 0, side, side).adjusted(margin, margin, -margin, -margin);
    QPainterPath path;
    if (isRound)
      path.addEllipse(area);
    else
      path.addRoundedRect(area, ROUNDING - margin, ROUNDING - margin);
    painter.fillPath(path, color);
  };
  fill(0, border);
  if (!checked || !enabled) fill(1, background);
  if (!checked) return image;
  if (isRound) {
    if (enabled) fill(1, m_colors.accent);
    fill(side * DOT_MARGIN, mark);
    return image;
  }
  QPainterPath tick(TICK[0] * side);
  tick.lineTo(TICK[1] * side);
  tick.lineTo(TICK[2] * side);
  painter.strokePath(tick, QPen(mark, side * TICK_WIDTH, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  return image;
}

void CControlPainter::paintField(QPainter& painter, const QRect& cell, const QString& text, Qt::Alignment alignment,
                                 bool enabled, const QPalette& colors) {
  const QRect frame = frameRect(cell);
  if (frame.width() <= 2 || frame.height() <= 2) return;
  painter.fillRect(frame, enabled ? m_colors.fieldBorder : m_colors.disabledBorder);
  painter.fillRect(frame.adjusted(1, 1, -1, -1), enabled ? m_colors.background : m_colors.disabledBackground);
  if (text.isEmpty()) return;
  // As high as the cell, so that it stands on one line with the texts beside it.
  const QRect area(frame.x() + TEXT_GAP, cell.y(), frame.width() - 2 * TEXT_GAP, cell.height());
  m_text.setFont(painter.font(), painter.device()->devicePixelRatioF());
  m_text.add(area, alignment, text, enabled ? colors.color(QPalette::Text) : m_colors.disabledText);
  m_text.draw(painter);
}

}  // namespace GW
