#include "gw/plain/CPlainSums.h"

#include "gw/plain/CPlainRows.h"

#include "gw/view/pixel_lines.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace GW {

namespace {

constexpr const char* TITLE = "合计";
constexpr int PADDING = 4;

}  // namespace

CPlainSums::CPlainSums(const CPlainRows& rows, const QHeaderView& header, const CTableColors& colors, QWidget* parent)
    : QWidget(parent), m_rows(rows), m_header(header), m_colors(colors) {
  const auto repaint = QOverload<>::of(&QWidget::update);
  connect(&rows, &CPlainRows::sigChanged, this, repaint);
  connect(&header, &QHeaderView::sectionResized, this, repaint);
}

CPlainSums::~CPlainSums() = default;

bool CPlainSums::isNeeded() const {
  const auto& columns = m_rows.columns();
  return std::any_of(columns.begin(), columns.end(), [](const CPlainColumn& column) { return column.isSummed; });
}

QString CPlainSums::text(int column) const {
  if (column < 0 || column >= m_rows.columnCount() || !m_rows.column(column).isSummed) return QString();
  return QString::number(m_rows.sum(column));
}

QString CPlainSums::shownText(int column) const {
  const auto& columns = m_rows.columns();
  const auto title =
      std::find_if(columns.begin(), columns.end(), [](const CPlainColumn& other) { return !other.isSummed; });
  return title - columns.begin() == column ? QString::fromUtf8(TITLE) : text(column);
}

QFont CPlainSums::columnFont(int column) const {
  QFont bold = font();
  bold.setBold(m_rows.column(column).isBold);
  return bold;
}

bool CPlainSums::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const int column = m_header.logicalIndexAt(help->x());
  const QString sum = text(column);
  const bool isCut = !sum.isEmpty() && QFontMetrics(columnFont(column)).horizontalAdvance(sum) >
                                           m_header.sectionSize(column) - 2 * PADDING - 1;
  QToolTip::showText(help->globalPos(), isCut ? sum : QString(), this);
  return true;
}

void CPlainSums::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), m_colors.sums);
  painter.setPen(isEnabled() ? m_colors.sumsText : m_colors.disabledText);
  for (int column = 0; column < m_header.count(); ++column) {
    const QRect cell(m_header.sectionViewportPosition(column), 0, m_header.sectionSize(column), height());
    drawLineRight(painter, cell, m_colors.grid);
    const QRect place = cell.adjusted(PADDING, 0, -PADDING - 1, 0);
    painter.setFont(columnFont(column));
    const Qt::Alignment side = m_rows.column(column).isSummed ? Qt::AlignRight : Qt::AlignLeft;
    painter.drawText(place, side | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(shownText(column), Qt::ElideRight, place.width()));
  }
  painter.fillRect(QRect(0, 0, width(), 1), m_colors.headerLine);
}

}  // namespace GW
