#include "gw/view/CStatisticsRow.h"

#include "gw/view/CHpfTableViewPrivate.h"
#include "gw/view/CTextPainter.h"
#include "gw/view/pixel_lines.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolTip>

namespace GW {

namespace {

constexpr const char* TITLE = "合计";
constexpr int SUMMED_IN_A_STEP = 2000;

}  // namespace

CStatisticsRow::CStatisticsRow(CShownRows& rows, const QHeaderView& header, const CTableColors& colors,
                               CTextPainter& texts, QWidget* parent)
    : QWidget(parent), m_rows(rows), m_header(header), m_colors(colors), m_texts(texts) {
  setAttribute(Qt::WA_OpaquePaintEvent);
}

CStatisticsRow::~CStatisticsRow() = default;

QRect CStatisticsRow::cellRect(int columnId) const {
  return {m_header.sectionViewportPosition(columnId), 0, m_header.sectionSize(columnId), height()};
}

/// The first shown column without a sum that has room for the title, or else the first one at all.
int CStatisticsRow::titleColumn() const {
  const int width = fontMetrics().horizontalAdvance(QString::fromUtf8(TITLE));
  int first = -1;
  for (int visual = 0; visual < m_header.count(); ++visual) {
    const int columnId = m_header.logicalIndex(visual);
    if (m_header.isSectionHidden(columnId) || m_rows.hasSum(columnId)) continue;
    if (textRect(cellRect(columnId)).width() >= width) return columnId;
    if (first < 0) first = columnId;
  }
  return first;
}

void CStatisticsRow::refresh() {
  if (m_rows.areSumsReady()) {
    m_task.stop();
    showTexts();
    return;
  }
  if (m_task.isRunning()) return;
  m_task.start(
      [this] {
        if (!m_rows.prepareSums(SUMMED_IN_A_STEP)) return true;
        showTexts();
        return false;
      },
      [this] { showTexts(); });
}

void CStatisticsRow::showTexts() {
  const int title = titleColumn();
  while (m_shown.size() < m_header.count()) m_shown.append(QString());
  for (int columnId = 0; columnId < m_header.count(); ++columnId) {
    const QString text = columnId == title ? QString::fromUtf8(TITLE) : m_rows.sumText(columnId);
    if (text == m_shown[columnId]) continue;
    m_shown[columnId] = text;
    if (!m_header.isSectionHidden(columnId)) update(cellRect(columnId));
  }
}

bool CStatisticsRow::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const int columnId = m_header.logicalIndexAt(help->x());
  const QString text = columnId >= 0 && columnId < m_shown.size() ? m_shown[columnId] : QString();
  const bool isCut = !text.isEmpty() && m_texts.width(text) > textRect(cellRect(columnId)).width();
  QToolTip::showText(help->globalPos(), isCut ? text : QString(), this);
  return true;
}

void CStatisticsRow::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.fillRect(event->rect(), m_colors.sums);
  m_texts.setFont(font(), devicePixelRatioF());
  const QColor color = isEnabled() ? m_colors.sumsText : m_colors.disabledText;
  for (int columnId = 0; columnId < m_header.count(); ++columnId) {
    const QRect cell = cellRect(columnId);
    if (m_header.isSectionHidden(columnId) || !cell.intersects(event->rect())) continue;
    drawLineRight(painter, cell, m_colors.grid);
    if (columnId < m_shown.size())
      m_texts.add(textRect(cell), m_rows.column(columnId)->alignment, m_shown[columnId], color);
  }
  m_texts.draw(painter);
  painter.fillRect(QRect(0, 0, width(), 1), m_colors.headerLine);
}

}  // namespace GW
