// How a table's header looks.

#include "gw/view/CControlPainter.h"
#include "gw/view/CTableHeader.h"
#include "gw/view/header_marks.h"
#include "gw/view/pixel_lines.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace GW {

namespace {

constexpr int SECTION_MARGIN = 6;  ///< pixels; the outer four of them resize the section
constexpr int LEAST_MARGIN = 2;    ///< of narrow sections
constexpr int MARK_GAP = 3;
constexpr int TITLE_MARGIN = 4;    ///< above and below
constexpr qreal RANK_SCALE = 0.7;  ///< of a rank's font to the title's

}  // namespace

int CTableHeader::markSize() const { return std::max(8, fontMetrics().height() * 6 / 11); }

QFont CTableHeader::rankFont() const {
  QFont small = font();
  small.setPixelSize(std::max(7, static_cast<int>(QFontInfo(font()).pixelSize() * RANK_SCALE)));
  return small;
}

CTableHeader::CParts CTableHeader::parts(const QRect& section, int columnId) const {
  const CMarks& shown = marks(columnId);
  CParts at;
  const int mark = markSize();
  const auto middle = [&section](int height) { return section.y() + (section.height() - height) / 2; };
  // A section that is just wide enough for its title shows it whole.
  const int textWidth = fontMetrics().horizontalAdvance(title(columnId));
  const int margin = std::clamp((section.width() - textWidth) / 2, LEAST_MARGIN, SECTION_MARGIN);
  int left = section.left() + margin;
  int right = section.x() + section.width() - margin;  // the first pixel that is taken

  if (shown.hasCheckBox) {
    const QRect box = CControlPainter::boxRect(section, fontMetrics());
    at.checkBox = title(columnId).isEmpty() ? box : QRect(left, box.y(), box.width(), box.height());
    if (!title(columnId).isEmpty()) left = at.checkBox.right() + 1 + 2 * MARK_GAP;
  }
  const auto takeRight = [&](int width, int height) {
    if (right - width < left) return QRect();
    right -= width + MARK_GAP;
    return QRect(right + MARK_GAP, middle(height), width, height);
  };
  const bool isBoxAlone = shown.hasCheckBox && title(columnId).isEmpty();
  if (!isBoxAlone && (shown.isFiltered || columnId == m_hovered)) at.filter = takeRight(mark, mark);
  if (shown.sortRank > 0) {
    if (m_rows.sort().size() > 1) {
      const QFontMetrics metrics(rankFont());
      at.rank = takeRight(metrics.horizontalAdvance(QString::number(shown.sortRank)), metrics.height());
      if (!at.rank.isNull()) right += MARK_GAP - 1;  // it belongs to the mark
    }
    at.sort = takeRight(mark, mark);
  }
  // The title is centred in the section, unless it would touch something.
  const int width = std::min(textWidth, std::max(0, right - left));
  const int centred = section.x() + (section.width() - width) / 2;
  at.title = QRect(std::clamp(centred, left, std::max(left, right - width)), section.y(), width, section.height());
  return at;
}

QSize CTableHeader::sectionSizeFromContents(int columnId) const {
  const int mark = markSize() + MARK_GAP;
  const int rank = QFontMetrics(rankFont()).horizontalAdvance(QLatin1Char('0')) + 1;
  int width = 2 * SECTION_MARGIN + fontMetrics().horizontalAdvance(title(columnId)) + 2 * mark + rank;
  if (marks(columnId).hasCheckBox && title(columnId).isEmpty()) width = 0;
  if (marks(columnId).hasCheckBox) width += fontMetrics().height() + SECTION_MARGIN;
  return {width, sizeHint().height()};
}

int CTableHeader::titleWidth(int columnId) const {
  return std::max(minimumSectionSize(), sectionSizeFromContents(columnId).width());
}

QSize CTableHeader::sizeHint() const { return {length(), fontMetrics().height() + 2 * TITLE_MARGIN + 1}; }

void CTableHeader::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  painter.fillRect(event->rect(), m_colors.header);
  for (int visual = 0; visual < count(); ++visual) {
    const int columnId = logicalIndex(visual);
    if (isSectionHidden(columnId)) continue;
    const QRect section = sectionRect(columnId);
    if (section.intersects(event->rect())) paintSection(&painter, section, columnId);
  }
  const int right = length() - offset();
  drawLineBelow(painter, QRect(right, 0, viewport()->width() - right, viewport()->height()), m_colors.headerLine);
}

void CTableHeader::paintSection(QPainter* painter, const QRect& section, int columnId) const {
  const CMarks& shown = marks(columnId);
  const CParts at = parts(section, columnId);
  painter->fillRect(section, columnId == m_hovered ? m_colors.headerHover : m_colors.header);
  drawLineBelow(*painter, section, m_colors.headerLine);
  drawLineRight(*painter, section.adjusted(0, 3, 0, -4), m_colors.headerLine);

  if (!at.checkBox.isNull())
    m_boxes->paintBoxAt(*painter, at.checkBox, ECellControl::CheckBox, shown.isChecked, isEnabled());
  const QColor text = isEnabled() ? m_colors.headerText : m_colors.disabledText;
  if (at.title.width() > 0) {
    painter->setFont(font());
    painter->setPen(text);
    painter->drawText(at.title, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      fontMetrics().elidedText(title(columnId), Qt::ElideRight, at.title.width()));
  }
  if (!at.sort.isNull()) {
    paintSortMark(*painter, at.sort, shown.order, m_colors.mark);
  }
  if (!at.rank.isNull()) {
    painter->setFont(rankFont());
    painter->setPen(m_colors.mark);
    painter->drawText(at.rank, Qt::AlignCenter | Qt::TextDontClip, QString::number(shown.sortRank));
  }
  if (!at.filter.isNull()) paintFilterMark(*painter, at.filter, shown.isFiltered ? m_colors.mark : m_colors.idleMark);
}

}  // namespace GW
