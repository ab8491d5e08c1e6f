// Columns of a table: order, width, sorting, filters, sums.

#include "gw/CBaseHighPerformanceTable.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/column_delegates.h"
#include "gw/view/CCellControls.h"

#include "utils/threads.h"

#include <QHeaderView>

#include <algorithm>
#include <cassert>
#include <optional>
#include <utility>

namespace GW {

int CBaseHighPerformanceTable::Private::addColumn(CTableColumn column) {
  face.columnAboutToBeAdded();
  const int id = rows.addColumn(std::move(column));
  face.columnAdded();
  view->columnAdded(id);
  const CTableColumn& added = *rows.column(id);
  q->setColumnWidth(id, std::max(view->headerWidth(id), view->textWidth(sampleTextOf(added))));
  if (added.field != nullptr && added.field->hidden) q->setColumnHidden(id, true);
  return id;
}

int CBaseHighPerformanceTable::Private::positionOf(int columnId) const {
  return rows.column(columnId) == nullptr ? -1 : view->header()->visualIndex(columnId);
}

/// Ascending, descending, unsorted in turn; with `extend` in addition to what is sorted by already.
void CBaseHighPerformanceTable::Private::onSortRequested(int columnId, bool extend) {
  std::vector<CSortColumn> sort = rows.sort();
  const auto it =
      std::find_if(sort.begin(), sort.end(), [columnId](const CSortColumn& by) { return by.column == columnId; });
  const bool isKnown = it != sort.end();
  const bool wasAscending = isKnown && it->order == Qt::AscendingOrder;
  if (!extend)
    sort = isKnown && !wasAscending
               ? std::vector<CSortColumn>()
               : std::vector<CSortColumn>{{columnId, wasAscending ? Qt::DescendingOrder : Qt::AscendingOrder}};
  else if (!isKnown)
    sort.push_back({columnId, Qt::AscendingOrder});
  else if (wasAscending)
    it->order = Qt::DescendingOrder;
  else
    sort.erase(it);
  rows.setSort(std::move(sort));
  view->updateMarks();
}

void CBaseHighPerformanceTable::Private::openFilterMenu(int columnId, const QRect& section) {
  if (filterMenu) filterMenu->close();
  const auto open = [this, columnId, section] {
    filterMenu = new CFilterMenu(rows, columnId, view);
    QObject::connect(filterMenu, &CFilterMenu::sigFilterChanged, view, &CHpfTableView::updateMarks);
    filterMenu->popup(section);
  };
  // A column of many rows must not hold the program up.
  constexpr int ROWS_PER_STEP = 256;
  valueTask.start(
      [this, columnId, open] {
        if (!rows.prepareValues(columnId, ROWS_PER_STEP)) return true;
        open();
        return false;
      },
      nullptr);
}

int CBaseHighPerformanceTable::addPlainColumn(int number, const QString& title, Qt::Alignment alignment) {
  utils::assertGui();
  CTableColumn column;
  column.title = title;
  assert(number >= 1);
  column.number = -number;
  column.alignment = alignment;
  return m_d->addColumn(std::move(column));
}

void CBaseHighPerformanceTable::addRecordColumns(const rdservice::CStructDes& des) {
  utils::assertGui();
  assert(m_d->recordType == 0 && "a table shows records of one type");
  m_d->recordType = des.typeId();
  for (const rdservice::CFieldDes& field : des) {
    CTableColumn column;
    column.title = QString::fromUtf8(field.title);
    column.field = &field;
    column.number = field.number;
    column.alignment = alignmentOf(field);
    m_d->addColumn(std::move(column));
  }
}

int CBaseHighPerformanceTable::columnCount() const {
  utils::assertGui();
  return m_d->rows.columnCount();
}

int CBaseHighPerformanceTable::getColumnIdByFileId(int fileId) const {
  utils::assertGui();
  for (int id = 0; id < columnCount(); ++id) {
    const CTableColumn& column = *m_d->rows.column(id);
    if (column.field != nullptr && m_d->recordType * 100 + column.field->number == fileId) return id;
  }
  return -1;
}

QString CBaseHighPerformanceTable::columnTitle(int columnId) const {
  utils::assertGui();
  const CTableColumn* column = m_d->rows.column(columnId);
  return column == nullptr ? QString() : column->title;
}

void CBaseHighPerformanceTable::setColumnHidden(int columnId, bool hidden) {
  utils::assertGui();
  if (m_d->rows.column(columnId) != nullptr) m_d->view->header()->setSectionHidden(columnId, hidden);
}

void CBaseHighPerformanceTable::setColumnChoosable(int columnId, bool choosable) {
  utils::assertGui();
  if (choosable)
    m_d->unchoosableColumns.erase(columnId);
  else
    m_d->unchoosableColumns.insert(columnId);
}

bool CBaseHighPerformanceTable::isColumnChoosable(int columnId) const {
  utils::assertGui();
  return m_d->rows.column(columnId) != nullptr && m_d->unchoosableColumns.count(columnId) == 0;
}

bool CBaseHighPerformanceTable::isColumnHidden(int columnId) const {
  utils::assertGui();
  return m_d->rows.column(columnId) != nullptr && m_d->view->header()->isSectionHidden(columnId);
}

void CBaseHighPerformanceTable::moveColumn(int columnId, int position) {
  utils::assertGui();
  const int from = m_d->positionOf(columnId);
  if (from >= 0) m_d->view->header()->moveSection(from, std::clamp(position, 0, columnCount() - 1));
}

void CBaseHighPerformanceTable::moveColumnBehind(int columnId, int otherColumnId) {
  utils::assertGui();
  const int from = m_d->positionOf(columnId);
  const int other = m_d->positionOf(otherColumnId);
  if (from >= 0 && other >= 0 && from != other) moveColumn(columnId, from < other ? other : other + 1);
}

int CBaseHighPerformanceTable::columnPosition(int columnId) const {
  utils::assertGui();
  return m_d->positionOf(columnId);
}

void CBaseHighPerformanceTable::setColumnWidth(int columnId, int pixels) {
  utils::assertGui();
  CTableColumn* column = m_d->rows.column(columnId);
  if (column == nullptr) return;
  column->width = std::max(pixels, m_d->view->header()->minimumSectionSize());
  m_d->view->header()->resizeSection(columnId, column->width);
}

int CBaseHighPerformanceTable::columnWidth(int columnId) const {
  utils::assertGui();
  const CTableColumn* column = m_d->rows.column(columnId);
  return column == nullptr ? 0 : column->width;
}

void CBaseHighPerformanceTable::updateColumn(int columnId) {
  utils::assertGui();
  m_d->view->updateColumn(columnId);
}

void CBaseHighPerformanceTable::setSortColumn(int columnId, Qt::SortOrder order) {
  utils::assertGui();
  m_d->rows.setSort({{columnId, order}});
  m_d->view->updateMarks();
}

void CBaseHighPerformanceTable::addSortColumn(int columnId, Qt::SortOrder order) {
  utils::assertGui();
  std::vector<CSortColumn> sort = m_d->rows.sort();
  const auto it =
      std::find_if(sort.begin(), sort.end(), [columnId](const CSortColumn& by) { return by.column == columnId; });
  if (it == sort.end())
    sort.push_back({columnId, order});
  else
    it->order = order;
  m_d->rows.setSort(std::move(sort));
  m_d->view->updateMarks();
}

void CBaseHighPerformanceTable::onFilterTrigger(int columnId, int filterType, const QStringList& texts) {
  utils::assertGui();
  m_d->rows.setFilter(columnId, filterType == FilterValues ? std::make_optional(texts) : std::nullopt);
  m_d->view->updateMarks();
}

bool CBaseHighPerformanceTable::isFiltered(int columnId) const {
  utils::assertGui();
  return m_d->rows.isFiltered(columnId);
}

void CBaseHighPerformanceTable::updateFilter() { utils::assertGui(); }

void CBaseHighPerformanceTable::setColumnSumVisible(int columnId, bool visible) {
  utils::assertGui();
  m_d->rows.setSum(columnId, visible);
  m_d->view->updateMarks();
}

QString CBaseHighPerformanceTable::columnSumText(int columnId) const {
  utils::assertGui();
  return m_d->rows.sumText(columnId);
}

void CBaseHighPerformanceTable::setColumnCheckBoxVisible(int columnId, bool visible) {
  utils::assertGui();
  if (m_d->rows.column(columnId) != nullptr) m_d->view->setHeaderCheckBoxVisible(columnId, visible);
}

void CBaseHighPerformanceTable::setHeaderCheckBoxState(int columnId, bool checked) {
  utils::assertGui();
  if (m_d->rows.column(columnId) != nullptr) m_d->view->setHeaderCheckBoxState(columnId, checked);
}

bool CBaseHighPerformanceTable::headerCheckBoxState(int columnId) const {
  utils::assertGui();
  return m_d->rows.column(columnId) != nullptr && m_d->view->headerCheckBoxState(columnId);
}

void CBaseHighPerformanceTable::setColumnDelegate(int columnId, CBaseTableColumnWidgetDelegate* delegate) {
  utils::assertGui();
  assert((delegate == nullptr || delegate->columnId() == columnId) && "the delegate keeps the state of its own column");
  std::unique_ptr<CBaseTableColumnWidgetDelegate> owned(delegate);
  const CTableColumn* column = m_d->rows.column(columnId);
  if (column == nullptr) return;
  if (column->delegate.get() == delegate) {
    static_cast<void>(owned.release());
    return;
  }
  m_d->view->controls().cancel();
  if (m_d->filterMenu && m_d->filterMenu->columnId() == columnId) m_d->filterMenu->close();
  m_d->rows.setDelegate(columnId, std::move(owned));
  m_d->face.columnChanged(columnId);
  m_d->view->columnChanged(columnId);
}

CBaseTableColumnWidgetDelegate* CBaseHighPerformanceTable::columnDelegate(int columnId) const {
  utils::assertGui();
  const CTableColumn* column = m_d->rows.column(columnId);
  return column == nullptr ? nullptr : column->delegate.get();
}

void CBaseHighPerformanceTable::adjustVisibleRowsColumnWidth() {
  utils::assertGui();
  for (int id = 0; id < columnCount(); ++id) setColumnWidth(id, m_d->view->fittingWidth(id));
}

}  // namespace GW
