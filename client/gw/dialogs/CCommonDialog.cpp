#include "gw/CCommonDialog.h"

#include "gw/dialogs/CDialogTitleBar.h"
#include "gw/dialogs/CWindowDrag.h"
#include "gw/view/pixel_lines.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <utility>

namespace GW {

namespace {

constexpr int FRAME_MARGIN = 5;
constexpr int TITLE_HEIGHT = 30;
constexpr int CORNER = 14;  ///< this near to a corner, both edges are taken

// The frame is the dialog's own; the hints say what its title bar offers.
constexpr Qt::WindowFlags FLAGS =
    Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

struct CCursorRow {
  Qt::Edges edges;
  Qt::CursorShape shape;
};

constexpr CCursorRow CURSORS[] = {
    {Qt::LeftEdge, Qt::SizeHorCursor},
    {Qt::RightEdge, Qt::SizeHorCursor},
    {Qt::TopEdge, Qt::SizeVerCursor},
    {Qt::BottomEdge, Qt::SizeVerCursor},
    {Qt::LeftEdge | Qt::TopEdge, Qt::SizeFDiagCursor},
    {Qt::RightEdge | Qt::BottomEdge, Qt::SizeFDiagCursor},
    {Qt::RightEdge | Qt::TopEdge, Qt::SizeBDiagCursor},
    {Qt::LeftEdge | Qt::BottomEdge, Qt::SizeBDiagCursor},
};

/// The edges that the mouse takes at a place in the frame; none inside it.
Qt::Edges edgesAt(const QRect& window, const QPoint& place) {
  const int margin = CCommonDialog::frameMargin();
  if (window.adjusted(margin, margin, -margin, -margin).contains(place)) return {};
  Qt::Edges edges;
  if (place.x() < window.left() + CORNER) edges |= Qt::LeftEdge;
  if (place.x() > window.right() - CORNER) edges |= Qt::RightEdge;
  if (place.y() < window.top() + CORNER) edges |= Qt::TopEdge;
  if (place.y() > window.bottom() - CORNER) edges |= Qt::BottomEdge;
  return edges;
}

QColor color(const char* key) { return CUiResource::getColor(QString::fromLatin1(key)); }

}  // namespace

struct CCommonDialog::Private {
  CDialogTitleBar* bar;
  QVBoxLayout* layout;
  QWidget* inner = nullptr;
  CWindowDrag drag;
};

CCommonDialog::CCommonDialog(QWidget* parent)
    : CBaseDialog(parent, FLAGS), m_d(new Private{new CDialogTitleBar(this), new QVBoxLayout(this), nullptr, {}}) {
  m_d->bar->setFixedHeight(TITLE_HEIGHT);
  m_d->layout->setContentsMargins(FRAME_MARGIN, FRAME_MARGIN, FRAME_MARGIN, FRAME_MARGIN);
  m_d->layout->setSpacing(0);
  m_d->layout->addWidget(m_d->bar);
  m_d->layout->addStretch();  // until there is an inner widget
  setMouseTracking(true);
  connect(m_d->bar->closeButton(), &QAbstractButton::clicked, this, &QWidget::close);
}

CCommonDialog::~CCommonDialog() = default;

int CCommonDialog::frameMargin() { return FRAME_MARGIN; }

int CCommonDialog::titleHeight() { return TITLE_HEIGHT; }

void CCommonDialog::setTitle(const QString& title) {
  setWindowTitle(title);
  m_d->bar->setTitle(title);
}

QString CCommonDialog::title() const { return windowTitle(); }

void CCommonDialog::setInnerWidget(QWidget* widget) {
  if (widget == m_d->inner) return;
  delete m_d->layout->takeAt(1);
  delete std::exchange(m_d->inner, widget);
  m_d->layout->addWidget(widget, 1);
  if (!widget->testAttribute(Qt::WA_SetCursor)) widget->setCursor(Qt::ArrowCursor);  // not that of the frame
}

void CCommonDialog::onUiResourceChanged() { update(); }

void CCommonDialog::showEvent(QShowEvent* event) {
  m_d->bar->closeButton()->setVisible(windowFlags().testFlag(Qt::WindowCloseButtonHint));
  CBaseDialog::showEvent(event);
}

void CCommonDialog::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), color("clr_window"));
  const QRect bar(0, 0, width(), FRAME_MARGIN + TITLE_HEIGHT);
  QLinearGradient gradient(bar.topLeft(), bar.bottomLeft());
  gradient.setColorAt(0, color("clr_bar_top"));
  gradient.setColorAt(1, color("clr_bar_bottom"));
  painter.fillRect(bar, gradient);
  drawLineBelow(painter, bar, color("clr_bar_line"));
  drawLineAround(painter, rect(), color("clr_table_control_border"));
}

void CCommonDialog::mousePressEvent(QMouseEvent* event) {
  const Qt::Edges edges = edgesAt(rect(), event->pos());
  if (event->button() == Qt::LeftButton && edges != Qt::Edges()) m_d->drag.begin(this, edges, event->globalPos());
}

void CCommonDialog::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() & Qt::LeftButton) {
    m_d->drag.moveTo(event->globalPos());
    return;
  }
  const Qt::Edges edges = edgesAt(rect(), event->pos());
  Qt::CursorShape shape = Qt::ArrowCursor;
  for (const CCursorRow& row : CURSORS)
    if (row.edges == edges) shape = row.shape;
  setCursor(shape);
}

void CCommonDialog::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) m_d->drag.end();
}

}  // namespace GW
