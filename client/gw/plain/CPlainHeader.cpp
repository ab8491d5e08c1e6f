#include "gw/plain/CPlainHeader.h"

#include "gw/plain/CPlainRows.h"

#include "gw/view/header_marks.h"
#include "gw/view/pixel_lines.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace GW {

namespace {

constexpr int MINIMUM_WIDTH = 24;
constexpr int MARGIN = 3;  ///< pixels; right and left of what a section shows
constexpr int MARK_GAP = 3;

}  // namespace

CPlainHeader::CPlainHeader(const CPlainRows& rows, const CTableColors& colors, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent), m_rows(rows), m_colors(colors) {
  setMinimumSectionSize(MINIMUM_WIDTH);
  setSectionsClickable(true);
  setHighlightSections(false);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  viewport()->setMouseTracking(true);
  connect(&rows, &CPlainRows::sigChanged, viewport(), QOverload<>::of(&QWidget::update));
  connect(this, &QHeaderView::sectionHandleDoubleClicked, this, [this] { m_isBorderClick = true; });
}

CPlainHeader::~CPlainHeader() = default;

QString CPlainHeader::title(int column) const { return m_rows.column(column).title; }

QSize CPlainHeader::sizeHint() const { return {length(), fontMetrics().height() + 9}; }

QRect CPlainHeader::sectionRect(int column) const {
  return {sectionViewportPosition(column), 0, sectionSize(column), viewport()->height()};
}

QRect CPlainHeader::sectionPlace(int column) const {
  const QRect section = sectionRect(column);
  return {viewport()->mapToGlobal(section.topLeft()), section.size()};
}

CPlainHeader::CParts CPlainHeader::parts(const QRect& section, int column) const {
  CParts at;
  const int side = std::max(8, fontMetrics().height() * 6 / 11);
  const int left = section.left() + MARGIN;
  int right = section.x() + section.width() - MARGIN;  // the first pixel that is taken
  const auto takeRight = [&] {
    if (right - side < left) return QRect();
    right -= side + MARK_GAP;
    return QRect(right + MARK_GAP, section.y() + (section.height() - side) / 2, side, side);
  };
  if (m_rows.isFiltered(column) || (column == m_hovered && m_rows.column(column).isFilterable)) at.filter = takeRight();
  if (m_rows.isSortedBy(column)) at.sort = takeRight();
  // The title is centred in the section, unless it would touch a mark.
  const int width = std::min(fontMetrics().horizontalAdvance(title(column)), std::max(0, right - left));
  const int centred = section.x() + (section.width() - width) / 2;
  at.title = QRect(std::clamp(centred, left, std::max(left, right - width)), section.y(), width, section.height());
  return at;
}

void CPlainHeader::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.fillRect(event->rect(), m_colors.header);
  for (int column = 0; column < count(); ++column) paintSection(&painter, sectionRect(column), column);
  const int right = length() - offset();
  drawLineBelow(painter, QRect(right, 0, viewport()->width() - right, viewport()->height()), m_colors.headerLine);
}

void CPlainHeader::paintSection(QPainter* painter, const QRect& section, int column) const {
  const CParts at = parts(section, column);
  painter->fillRect(section, column == m_hovered ? m_colors.headerHover : m_colors.header);
  drawLineBelow(*painter, section, m_colors.headerLine);
  drawLineRight(*painter, section.adjusted(0, 3, 0, -4), m_colors.headerLine);
  painter->setPen(isEnabled() ? m_colors.headerText : m_colors.disabledText);
  painter->drawText(at.title, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                    fontMetrics().elidedText(title(column), Qt::ElideRight, at.title.width()));
  if (!at.sort.isNull()) paintSortMark(*painter, at.sort, m_rows.sortOrder(), m_colors.mark);
  if (!at.filter.isNull())
    paintFilterMark(*painter, at.filter, m_rows.isFiltered(column) ? m_colors.mark : m_colors.idleMark);
}

int CPlainHeader::filterAt(const QPoint& place) const {
  const int column = logicalIndexAt(place);
  if (column < 0) return -1;
  const QRect mark = parts(sectionRect(column), column).filter;
  return !mark.isNull() && mark.adjusted(-2, -4, 2, 4).contains(place) ? column : -1;
}

void CPlainHeader::setHovered(int column) {
  if (column == m_hovered) return;
  m_hovered = column;
  viewport()->update();
}

void CPlainHeader::mousePressEvent(QMouseEvent* event) {
  setHovered(logicalIndexAt(event->pos()));
  m_pressedFilter = event->button() == Qt::LeftButton ? filterAt(event->pos()) : -1;
  if (m_pressedFilter < 0) QHeaderView::mousePressEvent(event);
}

void CPlainHeader::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() == Qt::NoButton) setHovered(logicalIndexAt(event->pos()));
  if (m_pressedFilter < 0) QHeaderView::mouseMoveEvent(event);
}

void CPlainHeader::mouseReleaseEvent(QMouseEvent* event) {
  if (m_pressedFilter < 0) {
    QHeaderView::mouseReleaseEvent(event);
    return;
  }
  if (event->button() != Qt::LeftButton) return;
  const int pressed = std::exchange(m_pressedFilter, -1);
  if (filterAt(event->pos()) == pressed) Q_EMIT sigFilterClicked(pressed);
}

void CPlainHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  if (filterAt(event->pos()) < 0) {
    m_isBorderClick = false;
    QHeaderView::mouseDoubleClickEvent(event);
    if (m_isBorderClick) return;
  }
  mousePressEvent(event);  // two quick clicks are two
}

bool CPlainHeader::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) setHovered(-1);
  if (event->type() != QEvent::ToolTip) return QHeaderView::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const int column = logicalIndexAt(help->pos());
  const bool isCut =
      column >= 0 && fontMetrics().horizontalAdvance(title(column)) > parts(sectionRect(column), column).title.width();
  QToolTip::showText(help->globalPos(), isCut ? title(column) : QString(), viewport());
  return true;
}

}  // namespace GW
