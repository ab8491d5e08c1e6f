#include "gw/CTableView.h"

#include "gw/CTableModel.h"
#include "gw/CUiResource.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>

#include <algorithm>

namespace GW {

namespace {

constexpr int CELL_MARGIN = 8;  ///< pixels left and right of a text together, with room to breathe
constexpr int HEADER_MARGIN = 12;
constexpr int ROW_MARGIN = 8;

int sortArrowWidth(const QWidget* header) {
  return header->style()->pixelMetric(QStyle::PM_HeaderMarkSize, nullptr, header) +
         2 * header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
}

/// Shows a cell's whole text as its tool tip when the cell cuts it.
class CCellPainter : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override {
    if (event->type() != QEvent::ToolTip) return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = index.data(Qt::DisplayRole).toString();
    const bool isCut = sizeHint(option, index).width() > view->visualRect(index).width();
    QToolTip::showText(event->globalPos(), isCut ? text : QString(), view);
    return true;
  }
};

}  // namespace

CTableView::CTableView(CTableModel* model, QWidget* parent) : QTableView(parent) {
  setItemDelegate(new CCellPainter(this));
  setLook();
  setModel(model);

  QHeaderView* header = horizontalHeader();
  connect(header, &QHeaderView::sectionClicked, this, &CTableView::sigHeaderClicked);
  connect(header, &QHeaderView::sectionResized, model, [model](int columnId, int, int width) {
    if (width > 0) model->column(columnId)->width = width;
  });
  // Otherwise the current row would jump to a neighbour that the user never chose.
  connect(model, &CTableModel::sigRowsDropping, this, [this](int first) {
    if (currentIndex().row() >= first) selectionModel()->clearCurrentIndex();
  });
  header->viewport()->installEventFilter(this);
}

CTableView::~CTableView() = default;

void CTableView::setLook() {
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setHorizontalScrollMode(ScrollPerPixel);
  setVerticalScrollMode(ScrollPerPixel);
  setCornerButtonEnabled(false);
  setFrameShape(NoFrame);

  QPalette colors = palette();
  const auto set = [&colors](QPalette::ColorRole role, const char* key) {
    colors.setColor(role, CUiResource::getColor(QString::fromLatin1(key)));
  };
  set(QPalette::Base, "clr_table_background");
  set(QPalette::AlternateBase, "clr_table_alternate");
  set(QPalette::Text, "clr_table_text");
  set(QPalette::Highlight, "clr_table_selected");
  set(QPalette::HighlightedText, "clr_table_text");
  setPalette(colors);
  // The grid colour is a hint of the style; only a style sheet can change it.
  setStyleSheet(QStringLiteral("QTableView { gridline-color: %1; }")
                    .arg(CUiResource::getColor(QStringLiteral("clr_table_grid")).name()));

  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + ROW_MARGIN);

  QHeaderView* header = horizontalHeader();
  header->setSectionsMovable(true);
  header->setSectionsClickable(true);
  header->setHighlightSections(false);
  header->setSortIndicatorShown(true);
  header->setSortIndicator(-1, Qt::AscendingOrder);
  header->setMinimumSectionSize(24);
}

int CTableView::headerWidth(int columnId) const {
  const QHeaderView* header = horizontalHeader();
  const QString title = model()->headerData(columnId, Qt::Horizontal).toString();
  return header->fontMetrics().horizontalAdvance(title) + sortArrowWidth(header) + HEADER_MARGIN;
}

int CTableView::textWidth(const QString& text) const {
  const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
  return fontMetrics().horizontalAdvance(text) + 2 * margin + CELL_MARGIN;
}

std::pair<int, int> CTableView::visibleRows() const {
  const int first = rowAt(0);
  if (first < 0) return {-1, -1};
  const int last = rowAt(viewport()->height() - 1);
  return {first, last < 0 ? model()->rowCount() - 1 : last};
}

void CTableView::setColumnMovable(int columnId, bool movable) {
  if (movable)
    m_fixedColumns.erase(columnId);
  else
    m_fixedColumns.insert(columnId);
}

bool CTableView::eventFilter(QObject* watched, QEvent* event) {
  // A header is movable as a whole: it is switched for the section that a drag begins at.
  if (watched == horizontalHeader()->viewport() && event->type() == QEvent::MouseButtonPress) {
    const int columnId = horizontalHeader()->logicalIndexAt(static_cast<QMouseEvent*>(event)->pos());
    horizontalHeader()->setSectionsMovable(m_fixedColumns.count(columnId) == 0);
  }
  return QTableView::eventFilter(watched, event);
}

CTableView::CScrollKeeper::CScrollKeeper(CTableView& view) : m_view(view) {
  const int row = view.rowAt(0);
  if (row < 0) return;
  m_top = view.model()->index(row, 0);
  m_offset = view.rowViewportPosition(row);
}

CTableView::CScrollKeeper::~CScrollKeeper() {
  if (!m_top.isValid()) return;
  m_view.executeDelayedItemsLayout();
  m_view.updateGeometries();
  QScrollBar* bar = m_view.verticalScrollBar();
  bar->setValue(bar->value() + m_view.rowViewportPosition(m_top.row()) - m_offset);
}

}  // namespace GW
