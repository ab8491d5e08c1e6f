#include "gw/COddEvenRowTable.h"

#include "gw/plain/CPlainCells.h"
#include "gw/plain/CPlainFilterSource.h"
#include "gw/plain/CPlainHeader.h"
#include "gw/plain/CPlainRows.h"
#include "gw/plain/CPlainSums.h"
#include "gw/plain/CPlainView.h"

#include "gw/view/CFilterMenu.h"
#include "gw/widget_events.h"

#include <QEvent>
#include <QPointer>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

namespace GW {

namespace {

constexpr int ROW_MARGIN = 8;  ///< pixels above and below a row's text together

}  // namespace

struct COddEvenRowTable::Private {
  explicit Private(COddEvenRowTable* table);

  void setLook();
  void setHeights();
  void joinScrollBars();
  void openFilter(int column);
  void edited(const QModelIndex& index, const QString& text);

  COddEvenRowTable* q;
  CTableColors colors = CTableColors::load();
  CPlainRows rows{nullptr};  // goes after what looks at it, which the destructor deletes
  CPlainView* view;
  CPlainHeader* header;
  CPlainCells* cells;
  CPlainSums* sums;
  QScrollBar* scrollBar;
  QPointer<CFilterMenu> filterMenu;
};

COddEvenRowTable::Private::Private(COddEvenRowTable* table)
    : q(table),
      view(new CPlainView(rows, table)),
      header(new CPlainHeader(rows, colors, view)),
      cells(new CPlainCells(rows, colors, view)),
      sums(new CPlainSums(rows, *header, colors, table)),
      scrollBar(new QScrollBar(Qt::Horizontal, table)) {
  view->setHorizontalHeader(header);
  view->setModel(&rows);
  view->setItemDelegate(cells);
  joinScrollBars();
  setLook();
  setHeights();
}

/// The bar is the view's own, shown at another place.
void COddEvenRowTable::Private::joinScrollBars() {
  QScrollBar* const own = view->horizontalScrollBar();
  const auto follow = [this, own] {
    scrollBar->setRange(own->minimum(), own->maximum());
    scrollBar->setPageStep(own->pageStep());
    scrollBar->setSingleStep(own->singleStep());
  };
  const auto showOrHide = [this, own] { scrollBar->setVisible(own->maximum() > own->minimum()); };
  connect(own, &QScrollBar::rangeChanged, scrollBar, follow);
  // Queued: the range changes while the layout places the view, and would not notice the bar then.
  connect(own, &QScrollBar::rangeChanged, scrollBar, showOrHide, Qt::QueuedConnection);
  connect(own, &QScrollBar::valueChanged, scrollBar, &QScrollBar::setValue);
  connect(own, &QScrollBar::valueChanged, sums, QOverload<>::of(&QWidget::update));
  connect(scrollBar, &QScrollBar::valueChanged, own, &QScrollBar::setValue);
  follow();
  showOrHide();
}

void COddEvenRowTable::Private::setLook() {
  QPalette palette = view->palette();
  palette.setColor(QPalette::Base, colors.background);
  palette.setColor(QPalette::Text, colors.text);
  view->setPalette(palette);
}

void COddEvenRowTable::Private::setHeights() {
  view->verticalHeader()->setDefaultSectionSize(q->itemHeight());
  header->setFixedHeight(q->itemHeight());
  sums->setFixedHeight(q->itemHeight());
}

void COddEvenRowTable::Private::openFilter(int column) {
  if (column < 0 || !rows.column(column).isFilterable) return;
  if (filterMenu) filterMenu->close();
  cells->commit();
  filterMenu = new CFilterMenu(std::make_unique<CPlainFilterSource>(rows, column), column, view);
  filterMenu->popup(header->sectionPlace(column));
}

void COddEvenRowTable::Private::edited(const QModelIndex& index, const QString& text) {
  CPlainCell cell = rows.filledCell(index);
  rows.setEntered(cell, text);
  q->deliverEvent(EventDialogCellEdited, 0, 0, text, &cell);
}

COddEvenRowTable::COddEvenRowTable(QWidget* parent) : CBaseWidget(parent), m_d(new Private(this)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(m_d->view, 1);
  layout->addWidget(m_d->sums);
  layout->addWidget(m_d->scrollBar);
  setFocusProxy(m_d->view);
  connect(m_d->header, &QHeaderView::sectionClicked, this, [this](int column) {
    m_d->cells->commit();
    m_d->rows.sortByNext(column);
  });
  connect(m_d->header, &CPlainHeader::sigFilterClicked, this, [this](int column) { m_d->openFilter(column); });
  connect(m_d->cells, &CPlainCells::sigEdited, this,
          [this](const QModelIndex& index, const QString& text) { m_d->edited(index, text); });
  auto* const filterKey = new QShortcut(QKeySequence(QStringLiteral("Alt+Down")), m_d->view);
  filterKey->setContext(Qt::WidgetWithChildrenShortcut);
  connect(filterKey, &QShortcut::activated, this, [this] { m_d->openFilter(m_d->view->currentIndex().column()); });
}

COddEvenRowTable::~COddEvenRowTable() {
  delete m_d->sums;  // they look at what goes now
  delete m_d->view;
}

void COddEvenRowTable::setColumns(const std::vector<CPlainColumn>& columns) {
  m_d->rows.setColumns(columns);
  for (int i = 0; i < columnCount(); ++i) m_d->header->resizeSection(i, columns[static_cast<std::size_t>(i)].width);
  m_d->sums->setVisible(m_d->sums->isNeeded());
}

int COddEvenRowTable::columnCount() const { return m_d->rows.columnCount(); }

void COddEvenRowTable::clear() { m_d->rows.clear(); }

void COddEvenRowTable::setRowCount(int rows) { m_d->rows.setFilledRowCount(rows); }

int COddEvenRowTable::rowCount() const { return m_d->rows.filledRowCount(); }

int COddEvenRowTable::displayedRowCount() const { return m_d->rows.rowCount(); }

void COddEvenRowTable::setCell(int row, int column, const QString& text) { m_d->rows.setText({row, column}, text); }

void COddEvenRowTable::setCell(int row, int column, qint64 number) { m_d->rows.setNumber({row, column}, number); }

QString COddEvenRowTable::cellText(int row, int column) const { return m_d->rows.cell({row, column}).toString(); }

QString COddEvenRowTable::sumText(int column) const { return m_d->sums->text(column); }

void COddEvenRowTable::commitEditing() { m_d->cells->commit(); }

int COddEvenRowTable::itemHeight() const { return fontMetrics().height() + ROW_MARGIN; }

void COddEvenRowTable::onUiResourceChanged() {
  m_d->colors = CTableColors::load();
  m_d->setLook();
  m_d->header->viewport()->update();
  m_d->view->viewport()->update();
  m_d->sums->update();
}

void COddEvenRowTable::changeEvent(QEvent* event) {
  CBaseWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange && m_d) m_d->setHeights();
}

}  // namespace GW
