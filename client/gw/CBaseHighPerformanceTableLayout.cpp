// Saved layouts of a table.

#include "gw/CBaseHighPerformanceTable.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/table_layout.h"

#include "utils/threads.h"

#include <utility>

namespace GW {

QString CBaseHighPerformanceTable::saveConfigStr() const {
  utils::assertGui();
  CTableLayout layout;
  for (int id = 0; id < columnCount(); ++id) {
    const CTableColumn& column = *m_d->rows.column(id);
    layout.columns.push_back({column.number, column.width, columnPosition(id), isColumnHidden(id)});
    if (const auto texts = m_d->rows.filter(id)) layout.filters.push_back({column.number, *texts});
  }
  for (const CSortColumn& by : m_d->rows.sort())
    layout.sort.push_back({m_d->rows.column(by.column)->number, by.order == Qt::DescendingOrder});
  return writeLayout(m_d->recordType, layout);
}

bool CBaseHighPerformanceTable::loadConfigStr(const QString& config) {
  utils::assertGui();
  const auto layout = readLayout(config, m_d->recordType);
  if (!layout) return false;
  const auto idOf = [this](int number) {
    int id = columnCount() - 1;
    while (id >= 0 && m_d->rows.column(id)->number != number) --id;
    return id;
  };
  // Columns that the layout does not know (newer than it) stay in their order behind those that it knows.
  int position = 0;
  for (const CColumnLayout& saved : layout->columns) {
    const int id = idOf(saved.number);
    if (id < 0) continue;
    moveColumn(id, position++);
    setColumnWidth(id, saved.width);
    setColumnHidden(id, saved.isHidden);
  }
  std::vector<CSortColumn> sort;
  for (const CSortLayout& saved : layout->sort)
    sort.push_back({idOf(saved.number), saved.isDescending ? Qt::DescendingOrder : Qt::AscendingOrder});
  m_d->rows.setSort(std::move(sort));
  for (int id = 0; id < columnCount(); ++id) m_d->rows.setFilter(id, std::nullopt);
  for (const CFilterLayout& saved : layout->filters) m_d->rows.setFilter(idOf(saved.number), saved.texts);
  m_d->view->updateMarks();
  return true;
}

}  // namespace GW
