// Columns of a table: order, width, sorting, saved layout.

#include "gw/CBaseHighPerformanceTable.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/column_delegates.h"
#include "gw/table_layout.h"

#include "utils/threads.h"

#include <QHeaderView>

#include <algorithm>
#include <cassert>

namespace GW {

int CBaseHighPerformanceTable::Private::addColumn(CTableColumn column) {
  const int id = model.addColumn(std::move(column));
  CTableColumn& added = *model.column(id);
  q->setColumnWidth(id, std::max(view->headerWidth(id), view->textWidth(sampleTextOf(added))));
  if (added.field != nullptr && added.field->hidden) q->setColumnHidden(id, true);
  return id;
}

int CBaseHighPerformanceTable::Private::positionOf(int columnId) const {
  return model.column(columnId) == nullptr ? -1 : view->horizontalHeader()->visualIndex(columnId);
}

void CBaseHighPerformanceTable::Private::onHeaderClicked(int columnId) {
  if (model.sortColumn() != columnId)
    q->setSortColumn(columnId, Qt::AscendingOrder);
  else if (model.sortOrder() == Qt::AscendingOrder)
    q->setSortColumn(columnId, Qt::DescendingOrder);
  else
    q->setSortColumn(-1, Qt::AscendingOrder);
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
  return m_d->model.columnCount();
}

int CBaseHighPerformanceTable::getColumnIdByFileId(int fileId) const {
  utils::assertGui();
  for (int id = 0; id < columnCount(); ++id) {
    const CTableColumn& column = *m_d->model.column(id);
    if (column.field != nullptr && m_d->recordType * 100 + column.field->number == fileId) return id;
  }
  return -1;
}

QString CBaseHighPerformanceTable::columnTitle(int columnId) const {
  utils::assertGui();
  const CTableColumn* column = m_d->model.column(columnId);
  return column == nullptr ? QString() : column->title;
}

void CBaseHighPerformanceTable::setColumnHidden(int columnId, bool hidden) {
  utils::assertGui();
  if (m_d->model.column(columnId) != nullptr) m_d->view->setColumnHidden(columnId, hidden);
}

bool CBaseHighPerformanceTable::isColumnHidden(int columnId) const {
  utils::assertGui();
  return m_d->model.column(columnId) != nullptr && m_d->view->isColumnHidden(columnId);
}

void CBaseHighPerformanceTable::moveColumn(int columnId, int position) {
  utils::assertGui();
  const int from = m_d->positionOf(columnId);
  if (from >= 0) m_d->view->horizontalHeader()->moveSection(from, std::clamp(position, 0, columnCount() - 1));
}

int CBaseHighPerformanceTable::columnPosition(int columnId) const {
  utils::assertGui();
  return m_d->positionOf(columnId);
}

void CBaseHighPerformanceTable::setColumnWidth(int columnId, int pixels) {
  utils::assertGui();
  CTableColumn* column = m_d->model.column(columnId);
  if (column == nullptr) return;
  column->width = std::max(pixels, m_d->view->horizontalHeader()->minimumSectionSize());
  m_d->view->setColumnWidth(columnId, column->width);
}

void CBaseHighPerformanceTable::setSortColumn(int columnId, Qt::SortOrder order) {
  utils::assertGui();
  const int known = m_d->model.column(columnId) == nullptr ? -1 : columnId;
  m_d->model.setSort(known, order);
  m_d->view->horizontalHeader()->setSortIndicator(known, order);
}

void CBaseHighPerformanceTable::setColumnDelegate(int columnId, CBaseTableColumnWidgetDelegate* delegate) {
  utils::assertGui();
  assert((delegate == nullptr || delegate->columnId() == columnId) && "the delegate keeps the state of its own column");
  std::unique_ptr<CBaseTableColumnWidgetDelegate> owned(delegate);
  if (m_d->model.column(columnId) != nullptr) m_d->model.setDelegate(columnId, std::move(owned));
}

CBaseTableColumnWidgetDelegate* CBaseHighPerformanceTable::columnDelegate(int columnId) const {
  utils::assertGui();
  const CTableColumn* column = m_d->model.column(columnId);
  return column == nullptr ? nullptr : column->delegate.get();
}

QString CBaseHighPerformanceTable::saveConfigStr() const {
  utils::assertGui();
  std::vector<CColumnLayout> columns;
  for (int id = 0; id < columnCount(); ++id) {
    const CTableColumn& column = *m_d->model.column(id);
    columns.push_back({column.number, column.width, columnPosition(id), isColumnHidden(id)});
  }
  return writeLayout(m_d->recordType, columns);
}

bool CBaseHighPerformanceTable::loadConfigStr(const QString& config) {
  utils::assertGui();
  const auto layout = readLayout(config, m_d->recordType);
  if (!layout) return false;
  // Columns that the layout does not know (newer than it) stay in their order behind those that it knows.
  int position = 0;
  for (const CColumnLayout& saved : *layout) {
    for (int id = 0; id < columnCount(); ++id) {
      if (m_d->model.column(id)->number != saved.number) continue;
      moveColumn(id, position++);
      setColumnWidth(id, saved.width);
      setColumnHidden(id, saved.isHidden);
    }
  }
  return true;
}

void CBaseHighPerformanceTable::adjustVisibleRowsColumnWidth() {
  utils::assertGui();
  const auto [first, last] = m_d->view->visibleRows();
  for (int id = 0; id < columnCount(); ++id) {
    int width = m_d->view->headerWidth(id);
    for (int row = first; row >= 0 && row <= last; ++row)
      width = std::max(width, m_d->view->textWidth(cellText(row, id)));
    setColumnWidth(id, width);
  }
}

}  // namespace GW
