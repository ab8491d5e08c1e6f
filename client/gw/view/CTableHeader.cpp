#include "gw/view/CTableHeader.h"

#include "gw/view/CControlPainter.h"

#include <QAbstractTableModel>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>

#include <algorithm>

namespace GW {

namespace {

constexpr int MINIMUM_WIDTH = 24;

}  // namespace

/// The header's model: columns without rows.
class CTableHeader::CColumns : public QAbstractTableModel {
 public:
  CColumns(const CShownRows& rows, QObject* parent) : QAbstractTableModel(parent), m_rows(rows) { add(); }

  void add() {
    if (m_count == m_rows.columnCount()) return;
    beginInsertColumns({}, m_count, m_rows.columnCount() - 1);
    m_count = m_rows.columnCount();
    endInsertColumns();
  }

  int rowCount(const QModelIndex&) const override { return 0; }
  int columnCount(const QModelIndex&) const override { return m_count; }
  QVariant data(const QModelIndex&, int) const override { return {}; }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || section < 0 || section >= m_count) return {};
    if (role == Qt::DisplayRole) return m_rows.column(section)->title;
    return role == Qt::TextAlignmentRole ? QVariant(int(Qt::AlignCenter)) : QVariant();
  }

 private:
  const CShownRows& m_rows;
  int m_count = 0;
};

CTableHeader::CTableHeader(const CShownRows& rows, const CTableColors& colors, QWidget* parent)
    : QHeaderView(Qt::Horizontal, parent),
      m_rows(rows),
      m_colors(colors),
      m_boxes(std::make_unique<CControlPainter>()),
      m_columns(new CColumns(rows, this)) {
  setModel(m_columns);
  setMinimumSectionSize(MINIMUM_WIDTH);
  setSectionsMovable(true);
  setSectionsClickable(true);
  setHighlightSections(false);
  setSortIndicatorShown(false);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  viewport()->setMouseTracking(true);
  connect(this, &QHeaderView::sectionClicked, this,
          [this](int columnId) { Q_EMIT sigTitleClicked(columnId, m_isExtending); });
  connect(this, &QHeaderView::sectionHandleDoubleClicked, this, [this] { m_isBorderClick = true; });
}

CTableHeader::~CTableHeader() = default;

void CTableHeader::addColumns() { m_columns->add(); }

void CTableHeader::titleChanged(int columnId) {
  Q_EMIT m_columns->headerDataChanged(Qt::Horizontal, columnId, columnId);
}

void CTableHeader::updateMarks() {
  for (int id = 0; id < count(); ++id) {
    CMarks& now = marks(id);
    const CMarks before = now;
    const auto& sort = m_rows.sort();
    const auto it = std::find_if(sort.begin(), sort.end(), [id](const CSortColumn& by) { return by.column == id; });
    now.sortRank = it == sort.end() ? 0 : static_cast<int>(it - sort.begin()) + 1;
    if (it != sort.end()) now.order = it->order;
    now.isFiltered = m_rows.isFiltered(id);
    // A rank is shown when there are several, so that a second one changes the first column's mark too.
    if (before.sortRank != now.sortRank || before.order != now.order || before.isFiltered != now.isFiltered ||
        now.sortRank == 1)
      updateSection(id);
  }
}

CTableHeader::CMarks& CTableHeader::marks(int columnId) {
  if (static_cast<std::size_t>(columnId) >= m_marks.size()) m_marks.resize(static_cast<std::size_t>(columnId) + 1);
  return m_marks[static_cast<std::size_t>(columnId)];
}

const CTableHeader::CMarks& CTableHeader::marks(int columnId) const {
  static const CMarks none;
  return static_cast<std::size_t>(columnId) < m_marks.size() ? m_marks[static_cast<std::size_t>(columnId)] : none;
}

const QString& CTableHeader::title(int columnId) const { return m_rows.column(columnId)->title; }

void CTableHeader::setColumnMovable(int columnId, bool movable) { marks(columnId).isMovable = movable; }

void CTableHeader::setCheckBoxVisible(int columnId, bool visible) {
  marks(columnId).hasCheckBox = visible;
  updateSection(columnId);
}

void CTableHeader::setChecked(int columnId, bool checked) {
  if (marks(columnId).isChecked == checked) return;
  marks(columnId).isChecked = checked;
  updateSection(columnId);
}

bool CTableHeader::isChecked(int columnId) const { return marks(columnId).isChecked; }

QRect CTableHeader::sectionRect(int columnId) const {
  return {sectionViewportPosition(columnId), 0, sectionSize(columnId), viewport()->height()};
}

CTableHeader::EPart CTableHeader::partAt(const QPoint& position, int* columnId) const {
  *columnId = logicalIndexAt(position);
  if (*columnId < 0) return EPart::None;
  const CParts at = parts(sectionRect(*columnId), *columnId);
  const auto isHit = [&](const QRect& part) {
    return !part.isNull() && part.adjusted(-2, -4, 2, 4).contains(position);
  };
  if (isHit(at.checkBox)) return EPart::CheckBox;
  return isHit(at.filter) ? EPart::Filter : EPart::Title;
}

void CTableHeader::setHovered(int columnId) {
  if (columnId == m_hovered) return;
  const int before = std::exchange(m_hovered, columnId);
  if (before >= 0 && before < count()) updateSection(before);
  if (m_hovered >= 0) updateSection(m_hovered);
}

void CTableHeader::mousePressEvent(QMouseEvent* event) {
  setHovered(logicalIndexAt(event->pos()));
  m_pressedPart = partAt(event->pos(), &m_pressed);
  if (event->button() == Qt::LeftButton && (m_pressedPart == EPart::CheckBox || m_pressedPart == EPart::Filter)) return;
  m_pressedPart = EPart::None;
  // A header is movable as a whole: it is switched for the section that a drag begins at.
  setSectionsMovable(m_pressed < 0 || marks(m_pressed).isMovable);
  QHeaderView::mousePressEvent(event);
}

void CTableHeader::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() == Qt::NoButton) setHovered(logicalIndexAt(event->pos()));
  if (m_pressedPart == EPart::None) QHeaderView::mouseMoveEvent(event);
}

void CTableHeader::mouseReleaseEvent(QMouseEvent* event) {
  m_isExtending = (event->modifiers() & Qt::ShiftModifier) != 0;
  if (m_pressedPart == EPart::None) {
    QHeaderView::mouseReleaseEvent(event);
    return;
  }
  if (event->button() != Qt::LeftButton) return;
  const EPart pressed = std::exchange(m_pressedPart, EPart::None);
  int columnId = -1;
  if (partAt(event->pos(), &columnId) != pressed || columnId != m_pressed) return;
  if (pressed == EPart::CheckBox) {
    setChecked(columnId, !isChecked(columnId));
    Q_EMIT sigCheckBoxClicked(columnId, isChecked(columnId));
  } else {
    const QRect section = sectionRect(columnId);
    Q_EMIT sigFilterClicked(columnId, QRect(viewport()->mapToGlobal(section.topLeft()), section.size()));
  }
}

void CTableHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  int columnId = -1;
  const EPart part = partAt(event->pos(), &columnId);
  if (part == EPart::Title) {
    m_isBorderClick = false;
    QHeaderView::mouseDoubleClickEvent(event);
    if (m_isBorderClick) return;
  }
  mousePressEvent(event);  // two quick clicks are two
}

void CTableHeader::contextMenuEvent(QContextMenuEvent* event) { Q_EMIT sigMenuRequested(event->globalPos()); }

bool CTableHeader::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::Leave) setHovered(-1);
  if (event->type() != QEvent::ToolTip) return QHeaderView::viewportEvent(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const int columnId = logicalIndexAt(help->pos());
  const QRect place = columnId < 0 ? QRect() : parts(sectionRect(columnId), columnId).title;
  const bool isCut = columnId >= 0 && fontMetrics().horizontalAdvance(title(columnId)) > place.width();
  QToolTip::showText(help->globalPos(), isCut ? title(columnId) : QString(), viewport());
  return true;
}

}  // namespace GW
