#include "gw/CTipWindow.h"

#include "gw/CMessageTip.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace GW {

namespace {

constexpr int MARGIN = 6;
constexpr int LEAST_WIDTH = 40;
constexpr int GAP = 2;  ///< to the widget
constexpr int SECOND_MS = 1000;

/// A cell's editor closes as soon as its text is committed; the tip stays where it was.
QWidget* ownerOf(QWidget* widget) { return widget->parentWidget() != nullptr ? widget->parentWidget() : widget; }

}  // namespace

CTipWindow::CTipWindow(QWidget* widget, const QString& text, int kind, int maxWidth)
    : QWidget(ownerOf(widget), Qt::ToolTip | Qt::FramelessWindowHint), m_kind(kind) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  m_time.setSingleShot(true);
  connect(&m_time, &QTimer::timeout, this, &QWidget::close);
  // A window stays when its parent is hidden or moved.
  parentWidget()->installEventFilter(this);
  parentWidget()->window()->installEventFilter(this);
  setAccessibleName(text);
  setFont(QApplication::font());
  m_document.setDocumentMargin(0);
  m_document.setDefaultFont(font());
  m_document.setPlainText(text);
  m_document.setTextWidth(std::max(LEAST_WIDTH, maxWidth - 2 * MARGIN));
  m_document.setTextWidth(std::ceil(m_document.idealWidth()));
  resize(m_document.size().toSize() + QSize(2 * MARGIN, 2 * MARGIN));

  const QRect screen = widget->screen()->availableGeometry();
  const QRect control(widget->mapToGlobal(QPoint()), widget->size());
  const int below = control.bottom() + 1 + GAP;
  const bool hasRoomBelow = below + height() <= screen.bottom() + 1;
  move(std::max(screen.left(), std::min(control.left(), screen.right() + 1 - width())),
       hasRoomBelow ? below : control.top() - GAP - height());
}

void CTipWindow::showFor(int seconds) {
  show();
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
  m_time.start(seconds * SECOND_MS);
  // Not before the key or click that made it appear has been dealt with: it can still go on to parents.
  QTimer::singleShot(0, this, [this] { qApp->installEventFilter(this); });
}

bool CTipWindow::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress: close(); break;
    case QEvent::Hide:
      if (watched == parentWidget()) close();
      break;
    case QEvent::Move:
      if (watched == parentWidget()->window()) close();
      break;
    default: break;
  }
  return false;
}

void CTipWindow::onUiResourceChanged() { update(); }

QColor CTipWindow::color(const char* part) const {
  return CUiResource::getColor(
      QStringLiteral("clr_tip_%1%2")
          .arg(QLatin1String(m_kind == CMessageTip::Error ? "error" : "warning"), QLatin1String(part)));
}

void CTipWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), color(""));
  painter.setPen(color("_border"));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  QAbstractTextDocumentLayout::PaintContext context;
  context.palette.setColor(QPalette::Text, CUiResource::getColor(QStringLiteral("clr_tip_text")));
  painter.translate(MARGIN, MARGIN);
  m_document.documentLayout()->draw(&painter, context);
}

void CTipWindow::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  deleteLater();
}

}  // namespace GW
