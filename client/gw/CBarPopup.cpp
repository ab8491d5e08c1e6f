#include "gw/CBarPopup.h"

#include "gw/CUiResource.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace GW {

namespace {

constexpr int MARGIN = 8;
constexpr int SPACING = 6;

}  // namespace

CBarPopup::CBarPopup(QAbstractButton* button, QWidget* bar) : QFrame(bar, Qt::Popup), m_button(button) {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(MARGIN, MARGIN, MARGIN, MARGIN);
  column->setSpacing(SPACING);
  column->setSizeConstraint(QLayout::SetFixedSize);  // follows its items
  setAccessibleName(button->accessibleName());
}

void CBarPopup::open() {
  layout()->activate();
  const QSize needed = layout()->sizeHint();
  const QRect screen = m_button->screen()->availableGeometry();
  const QPoint below = m_button->mapToGlobal(QPoint(m_button->width() - needed.width(), m_button->height()));
  const QPoint last(screen.right() + 1 - needed.width(), screen.bottom() + 1 - needed.height());
  move(std::max(screen.left(), std::min(below.x(), last.x())), std::max(screen.top(), std::min(below.y(), last.y())));
  setAttribute(Qt::WA_NoMouseReplay, false);
  show();
  for (QWidget* next = nextInFocusChain(); next != this; next = next->nextInFocusChain()) {
    if (!isAncestorOf(next) || !next->isVisible() || !next->isEnabled() || (next->focusPolicy() & Qt::TabFocus) == 0)
      continue;
    next->setFocus(Qt::PopupFocusReason);
    return;
  }
  setFocus(Qt::PopupFocusReason);
}

void CBarPopup::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), CUiResource::getColor(QStringLiteral("clr_bar_top")));
  painter.setPen(CUiResource::getColor(QStringLiteral("clr_bar_line")));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void CBarPopup::mousePressEvent(QMouseEvent* event) {
  // A press on the button that opened it only closes it; handed on to the button it would open it again.
  if (m_button->rect().contains(m_button->mapFromGlobal(event->globalPos()))) setAttribute(Qt::WA_NoMouseReplay);
  QFrame::mousePressEvent(event);
}

}  // namespace GW
