#include "gw/dialogs/CDialogTitleBar.h"

#include "gw/CCommonDialog.h"
#include "gw/CUiResource.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace GW {

namespace {

constexpr const char* TEXT_CLOSE = "关闭";

constexpr int CLOSE_SIDE = 22;
constexpr int CROSS_MARGIN = 7;
constexpr qreal CROSS_WIDTH = 1.4;
constexpr int TITLE_GAP = 6;  ///< on either side of the title

QColor color(const char* key) { return CUiResource::getColor(QString::fromLatin1(key)); }

class CCloseButton : public QAbstractButton {
 public:
  explicit CCloseButton(QWidget* parent) : QAbstractButton(parent) {
    setFixedSize(CLOSE_SIDE, CLOSE_SIDE);
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    setToolTip(QString::fromUtf8(TEXT_CLOSE));
    setAccessibleName(QString::fromUtf8(TEXT_CLOSE));
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse() || isDown()) {
      painter.setPen(Qt::NoPen);
      painter.setBrush(color(isDown() ? "clr_btn_pressed" : "clr_table_header_hover"));
      painter.drawRoundedRect(rect(), 3, 3);
    }
    painter.setPen(QPen(color("clr_window_text"), CROSS_WIDTH, Qt::SolidLine, Qt::RoundCap));
    const QRectF cross = QRectF(rect()).adjusted(CROSS_MARGIN, CROSS_MARGIN, -CROSS_MARGIN, -CROSS_MARGIN);
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
  }
};

}  // namespace

CDialogTitleBar::CDialogTitleBar(QWidget* dialog) : QWidget(dialog), m_close(new CCloseButton(this)) {
  setCursor(Qt::ArrowCursor);  // not that of the frame around it
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, CCommonDialog::frameMargin());  // the frame above looks like a part of the bar
  layout->addStretch();
  layout->addWidget(m_close);
}

CDialogTitleBar::~CDialogTitleBar() = default;

void CDialogTitleBar::setTitle(const QString& title) {
  m_title = title;
  update();
}

QRect CDialogTitleBar::titleRect() const {
  const int right = m_close->isHidden() ? width() : m_close->x();
  return {TITLE_GAP, 0, right - 2 * TITLE_GAP, height() - CCommonDialog::frameMargin()};
}

bool CDialogTitleBar::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const bool isCut = fontMetrics().horizontalAdvance(m_title) > titleRect().width();
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), isCut ? m_title : QString(), this);
  return true;
}

void CDialogTitleBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(color("clr_window_text"));
  painter.drawText(titleRect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   fontMetrics().elidedText(m_title, Qt::ElideRight, titleRect().width()));
}

void CDialogTitleBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) m_drag.begin(window(), {}, event->globalPos());
}

void CDialogTitleBar::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() & Qt::LeftButton) m_drag.moveTo(event->globalPos());
}

void CDialogTitleBar::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) m_drag.end();
}

}  // namespace GW
