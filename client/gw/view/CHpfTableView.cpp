// The view's parts, columns and geometry.

#include "gw/view/CHpfTableView.h"

#include "gw/view/CHpfTableViewPrivate.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace GW {

namespace {

constexpr int ROW_MARGIN = 8;  ///< pixels above and below a row's text together

}  // namespace

CHpfTableView::Private::Private(CHpfTableView* view, CShownRows& theRows)
    : q(view), rows(theRows), selection(theRows), screen(theRows) {}

CHpfTableView::Private::~Private() {
  // They are children of the view, which would destroy them after what they refer to here.
  delete sums;
  delete header;
}

void CHpfTableView::Private::onUiResourceChanged() {
  setColors();
  setFont();
  header->viewport()->update();
  sums->update();
  q->viewport()->update();
}

void CHpfTableView::Private::setColors() {
  colors = CTableColors::load();
  controlColors = q->palette();
  controlColors.setColor(QPalette::Base, colors.background);
  controlColors.setColor(QPalette::Text, colors.text);
  controlColors.setColor(QPalette::Disabled, QPalette::Text, colors.disabledText);
  controlColors.setColor(QPalette::Highlight, colors.selected);
}

void CHpfTableView::Private::setFont() {
  texts.setFont(q->font(), q->devicePixelRatioF());
  rowHeight = q->fontMetrics().height() + ROW_MARGIN;
  updateGeometries();
  q->viewport()->update();
}

CHpfTableView::CHpfTableView(CShownRows& rows, QWidget* parent)
    : QAbstractScrollArea(parent), m_d(std::make_unique<Private>(this, rows)) {
  setFrameShape(NoFrame);
  setFocusPolicy(Qt::StrongFocus);
  setInputMethodHints(Qt::ImhNone);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
  m_d->setColors();
  auto* header = m_d->header = new CTableHeader(rows, m_d->colors, this);
  m_d->sums = new CStatisticsRow(rows, *header, m_d->colors, m_d->texts, this);
  m_d->controls = std::make_unique<CCellControls>(*this, rows);

  connect(header, &QHeaderView::sectionResized, this,
          [this](int columnId, int, int width) { m_d->columnResized(columnId, width); });
  connect(header, &QHeaderView::sectionMoved, this, [this] { m_d->columnsChanged(-1); });
  connect(header, &QHeaderView::sectionHandleDoubleClicked, this, [this](int columnId) { m_d->fitColumn(columnId); });
  connect(header, &CTableHeader::sigTitleClicked, this, &CHpfTableView::sigSortRequested);
  connect(header, &CTableHeader::sigFilterClicked, this, &CHpfTableView::sigFilterRequested);
  connect(header, &CTableHeader::sigCheckBoxClicked, this, &CHpfTableView::sigHeaderCheckBoxClicked);
  connect(header, &CTableHeader::sigMenuRequested, this,
          [this](const QPoint& global) { Q_EMIT sigMenuRequested(viewport()->mapFromGlobal(global)); });

  m_d->setFont();
  for (int id = 0; id < rows.columnCount(); ++id) columnAdded(id);
  updateMarks();
}

CHpfTableView::~CHpfTableView() {
  // An open editor goes while everything that it may ask for is still there.
  m_d->controls.reset();
}

CShownRows& CHpfTableView::rows() const { return m_d->rows; }
QHeaderView* CHpfTableView::header() const { return m_d->header; }
CCellControls& CHpfTableView::controls() const { return *m_d->controls; }
int CHpfTableView::rowHeight() const { return m_d->rowHeight; }

// --- columns ---

void CHpfTableView::columnAdded(int columnId) {
  m_d->header->addColumns();
  CTableColumn* column = m_d->rows.column(columnId);
  if (column->width <= 0) column->width = headerWidth(columnId);
  m_d->header->resizeSection(columnId, column->width);
  m_d->columnsChanged(-1);
}

void CHpfTableView::columnChanged(int columnId) {
  m_d->header->titleChanged(columnId);
  updateColumn(columnId);
  m_d->sums->refresh();
  m_d->sums->update();
}

void CHpfTableView::updateMarks() {
  m_d->header->updateMarks();
  m_d->updateGeometries();
  m_d->sums->refresh();
}

int CHpfTableView::headerWidth(int columnId) const { return m_d->header->titleWidth(columnId); }

int CHpfTableView::textWidth(const QString& text) const {
  return static_cast<int>(std::ceil(m_d->texts.width(text))) + 2 * CELL_PADDING + 1;
}

int CHpfTableView::fittingWidth(int columnId) const {
  int width = std::max(headerWidth(columnId), textWidth(m_d->rows.sumText(columnId)));
  const auto [first, last] = visibleRows();
  for (int row = first; row >= 0 && row <= last; ++row)
    width = std::max(width, textWidth(m_d->rows.text(m_d->rows.slotAt(row), columnId)));
  return width;
}

void CHpfTableView::setColumnMovable(int columnId, bool movable) { m_d->header->setColumnMovable(columnId, movable); }

std::vector<int> CHpfTableView::shownColumns() const {
  std::vector<int> shown;
  for (int visual = 0; visual < m_d->header->count(); ++visual) {
    const int columnId = m_d->header->logicalIndex(visual);
    if (!m_d->header->isSectionHidden(columnId)) shown.push_back(columnId);
  }
  return shown;
}

void CHpfTableView::setHeaderCheckBoxVisible(int columnId, bool visible) {
  m_d->header->setCheckBoxVisible(columnId, visible);
}

void CHpfTableView::setHeaderCheckBoxState(int columnId, bool checked) { m_d->header->setChecked(columnId, checked); }

bool CHpfTableView::headerCheckBoxState(int columnId) const { return m_d->header->isChecked(columnId); }

void CHpfTableView::Private::columnResized(int columnId, int width) {
  if (width > 0) rows.column(columnId)->width = width;  // a hidden column keeps its own
  columnsChanged(columnId);
}

void CHpfTableView::Private::columnsChanged(int columnId) {
  updateScrollBars();
  const int left = columnId < 0 ? 0 : std::max(0, header->sectionViewportPosition(columnId));
  const auto updateFrom = [left](QWidget* widget) {
    widget->update(left, 0, widget->width() - left, widget->height());
  };
  updateFrom(q->viewport());
  updateFrom(sums);
  sums->refresh();  // its title may stand elsewhere
  if (controls) controls->place();
}

void CHpfTableView::Private::fitColumn(int columnId) { header->resizeSection(columnId, q->fittingWidth(columnId)); }

// --- geometry ---

int CHpfTableView::Private::scrollX() const { return q->horizontalScrollBar()->value(); }
int CHpfTableView::Private::scrollY() const { return q->verticalScrollBar()->value(); }

void CHpfTableView::Private::updateGeometries() {
  if (isLayingOut || header == nullptr) return;
  isLayingOut = true;
  const int above = header->sizeHint().height();
  const int below = rows.hasSums() ? rowHeight : 0;
  if (q->viewportMargins() != QMargins(0, above, 0, below)) q->setViewportMargins(0, above, 0, below);
  sums->setVisible(below > 0);
  QRect area;
  // A scroll bar that comes or goes leaves the viewport another size, perhaps with need for the other one.
  for (int pass = 0; pass < 3 && area != q->viewport()->geometry(); ++pass) {
    area = q->viewport()->geometry();
    header->setGeometry(area.x(), area.y() - above, area.width(), above);
    sums->setGeometry(area.x(), area.y() + area.height(), area.width(), below);
    updateScrollBars();
  }
  isLayingOut = false;
}

void CHpfTableView::Private::updateScrollBars() {
  const QSize whole(header->length(), rows.rowCount() * rowHeight);
  const QSize withoutBars = q->maximumViewportSize();
  const bool fits = withoutBars.width() >= whole.width() && withoutBars.height() >= whole.height();
  const QSize page = fits ? withoutBars : q->viewport()->size();
  const auto set = [](QScrollBar* bar, int length, int visible, int step) {
    bar->setPageStep(visible);
    bar->setSingleStep(step);
    bar->setRange(0, std::max(0, length - visible));
  };
  set(q->horizontalScrollBar(), whole.width(), page.width(), rowHeight);
  set(q->verticalScrollBar(), whole.height(), page.height(), rowHeight);
}

QRect CHpfTableView::Private::lineRect(int row) const { return {0, lineY(row), q->viewport()->width(), rowHeight}; }

std::vector<CHpfTableView::Private::CColumnPlace> CHpfTableView::Private::columnsBetween(int left, int right) const {
  std::vector<CColumnPlace> columns;
  int x = -header->offset();
  for (int visual = 0; visual < header->count() && x <= right; ++visual) {
    const int id = header->logicalIndex(visual);
    const int width = header->sectionSize(id);  // 0 when hidden
    if (width > 0 && x + width > left)
      columns.push_back({id, x, width, rows.column(id), CCellControls::isControl(*rows.column(id))});
    x += width;
  }
  return columns;
}

std::vector<int> CHpfTableView::Private::columnsOnScreen() const {
  std::vector<int> ids;
  for (const CColumnPlace& place : columnsBetween(0, q->viewport()->width() - 1)) ids.push_back(place.id);
  return ids;
}

QRect CHpfTableView::cellRect(int row, int columnId) const {
  if (row < 0 || row >= m_d->rows.rowCount() || m_d->rows.column(columnId) == nullptr) return {};
  if (m_d->header->isSectionHidden(columnId)) return {};
  return {m_d->header->sectionViewportPosition(columnId), m_d->lineY(row), m_d->header->sectionSize(columnId),
          m_d->rowHeight};
}

int CHpfTableView::rowAt(int y) const {
  const int place = y + m_d->scrollY();
  if (place < 0) return -1;
  const int row = place / m_d->rowHeight;
  return row < m_d->rows.rowCount() ? row : -1;
}

int CHpfTableView::columnAt(int x) const { return m_d->header->logicalIndexAt(x); }

std::pair<int, int> CHpfTableView::visibleRows() const {
  const int first = rowAt(0);
  if (first < 0 || viewport()->height() <= 0) return {-1, -1};
  const int last = rowAt(viewport()->height() - 1);
  return {first, last < 0 ? m_d->rows.rowCount() - 1 : last};
}

void CHpfTableView::scrollToCell(int row, int columnId) {
  const auto scroll = [](QScrollBar* bar, int from, int length, int page) {
    if (from < bar->value() || length > page)
      bar->setValue(from);
    else if (from + length > bar->value() + page)
      bar->setValue(from + length - page);
  };
  if (row >= 0 && row < m_d->rows.rowCount())
    scroll(verticalScrollBar(), row * m_d->rowHeight, m_d->rowHeight, viewport()->height());
  if (m_d->rows.column(columnId) != nullptr && !m_d->header->isSectionHidden(columnId))
    scroll(horizontalScrollBar(), m_d->header->sectionPosition(columnId), m_d->header->sectionSize(columnId),
           viewport()->width());
}

}  // namespace GW
