#include "gw/CSimpleTextWidget.h"

#include "gw/CTextAccessible.h"
#include "gw/widget_events.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <limits>

namespace GW {

struct CSimpleTextWidget::Private {
  QString text;
  bool isLink = false;
  int id = 0;
  QString fontKey;
  QString colorKey;
  int widthLimit = std::numeric_limits<int>::max();
  bool isPressed = false;
};

CSimpleTextWidget::CSimpleTextWidget(const QString& text, QWidget* parent) : CBaseWidget(parent), m_d(new Private) {
  installTextAccessibility();
  m_d->text = text;
  setAccessibleName(text);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

CSimpleTextWidget::CSimpleTextWidget(int id, const QString& text, QWidget* parent) : CSimpleTextWidget(text, parent) {
  m_d->isLink = true;
  m_d->id = id;
  m_d->colorKey = QStringLiteral("clr_clickable_simple_text");
  setFocusPolicy(Qt::TabFocus);
  setCursor(Qt::PointingHandCursor);
  setAttribute(Qt::WA_Hover);
}

CSimpleTextWidget::~CSimpleTextWidget() = default;

QString CSimpleTextWidget::text() const { return m_d->text; }

void CSimpleTextWidget::setFontKey(const QString& key) {
  m_d->fontKey = key;
  onUiResourceChanged();
}

void CSimpleTextWidget::setColorKey(const QString& key) {
  m_d->colorKey = key;
  update();
}

void CSimpleTextWidget::setWidthLimit(int pixels) {
  m_d->widthLimit = std::max(0, pixels);
  updateGeometry();
  update();
}

QSize CSimpleTextWidget::sizeHint() const {
  // A pixel on each side for the focus mark.
  const int length = std::min(fontMetrics().horizontalAdvance(m_d->text), m_d->widthLimit);
  return QSize(length + 2, fontMetrics().height() + 2);
}

QSize CSimpleTextWidget::minimumSizeHint() const {
  const int length = fontMetrics().horizontalAdvance(QChar(0x2026));
  return QSize(std::min(length + 2, sizeHint().width()), sizeHint().height());
}

void CSimpleTextWidget::onUiResourceChanged() {
  if (!m_d->fontKey.isEmpty()) setFont(CUiResource::getFont(m_d->fontKey));
  updateGeometry();
  update();
}

void CSimpleTextWidget::paintEvent(QPaintEvent*) {
  const QRect room = rect().adjusted(1, 1, -1, -1);
  const int length = std::min(room.width(), m_d->widthLimit);
  const QString shown = fontMetrics().elidedText(m_d->text, Qt::ElideRight, length);
  if (toolTip().isEmpty() != (shown == m_d->text)) setToolTip(shown == m_d->text ? QString() : m_d->text);
  QColor color = m_d->colorKey.isEmpty() ? palette().color(QPalette::WindowText) : CUiResource::getColor(m_d->colorKey);
  if (!isEnabled()) color = palette().color(QPalette::Disabled, QPalette::WindowText);
  QPainter painter(this);
  QFont font = this->font();
  font.setUnderline(m_d->isLink && isEnabled() && underMouse());
  painter.setFont(font);
  painter.setPen(color);
  painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, shown);
  if (!hasFocus()) return;
  painter.setPen(QPen(color, 1, Qt::DotLine));
  painter.drawRect(QRect(0, 0, std::min(width(), fontMetrics().horizontalAdvance(shown) + 2) - 1, height() - 1));
}

void CSimpleTextWidget::mousePressEvent(QMouseEvent* event) {
  m_d->isPressed = m_d->isLink && event->button() == Qt::LeftButton;
  if (!m_d->isPressed) CBaseWidget::mousePressEvent(event);
}

void CSimpleTextWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (!m_d->isPressed || event->button() != Qt::LeftButton) return CBaseWidget::mouseReleaseEvent(event);
  m_d->isPressed = false;
  if (rect().contains(event->pos())) deliverEvent(EventTextClicked, m_d->id, 0, QString(), nullptr);
}

void CSimpleTextWidget::keyPressEvent(QKeyEvent* event) {
  const bool isKey = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!m_d->isLink || !isKey) return CBaseWidget::keyPressEvent(event);
  if (!event->isAutoRepeat()) deliverEvent(EventTextClicked, m_d->id, 0, QString(), nullptr);
}

}  // namespace GW
