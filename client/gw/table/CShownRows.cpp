// Columns, cells and order of the displayed rows.

#include "gw/table/CShownRows.h"

#include "gw/table/CShownRowsPrivate.h"
#include "gw/table/cell_text.h"
#include "gw/table/item_columns.h"
#include "gw/table/vector_growth.h"
#include "gw/table_release.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <utility>

namespace GW {

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

}  // namespace

CCell CShownRows::Private::cell(const CColumn& column, int slot) const {
  return {records[at(slot)].get(), column.items.get(), slot};
}

CCell CShownRows::Private::cell(int columnId, const CRowsDrain& drain, std::size_t index) const {
  return {drain.records[index].get(), findColumn(drain.items, columnId), static_cast<int>(index)};
}

bool CShownRows::Private::decides(std::uint64_t key) const {
  return sort.size() > 1 || columns[at(sort.front().column)]->keys->decides(key);
}

bool CShownRows::Private::isBefore(int slot, int other) const {
  for (const CSortColumn& by : sort) {
    const CColumn& column = *columns[at(by.column)];
    const std::uint64_t key = column.keys->keys[at(slot)];
    const std::uint64_t otherKey = column.keys->keys[at(other)];
    int difference = key < otherKey ? -1 : key > otherKey ? 1 : 0;
    if (difference == 0 && column.keys->decides(key))
      difference = column.keys->compare(cell(column, slot), cell(column, other));
    if (difference != 0) return (difference < 0) == (by.order == Qt::AscendingOrder);
  }
  return slot < other;
}

/// By one column: what stands further behind in its texts. By several: the other columns, as far as their keys decide.
bool CShownRows::Private::finerKeys(const std::vector<int>& slots, int stage, std::vector<std::uint64_t>& keys) const {
  const std::size_t next = sort.size() == 1 ? 0 : at(stage) + 1;
  if (next >= sort.size()) return false;
  const CColumn& column = *columns[at(sort[next].column)];
  if (sort.size() == 1) {
    if (!column.keys->finerKeys(records, slots, stage, keys)) return false;
  } else {
    if (columns[at(sort[next - 1].column)]->keys->mayDecide()) return false;
    keys.resize(slots.size());
    std::transform(slots.begin(), slots.end(), keys.begin(), [&](int slot) { return column.keys->keys[at(slot)]; });
  }
  if (sort[next].order == Qt::DescendingOrder)
    std::transform(keys.begin(), keys.end(), keys.begin(), [](std::uint64_t key) { return ~key; });
  return true;
}

bool CShownRows::Private::decidesFiner(std::uint64_t key, int stage) const {
  const std::size_t by = sort.size() == 1 ? 0 : at(stage) + 1;
  const std::uint64_t held = sort[by].order == Qt::DescendingOrder ? ~key : key;
  return by + 1 < sort.size() || columns[at(sort[by].column)]->keys->decides(held);
}

bool CShownRows::Private::differs(int columnId, int slot, const CCell& changed) const {
  const CColumn& column = *columns[at(columnId)];
  const std::uint64_t key = column.keys->make(changed);
  if (key != column.keys->keys[at(slot)]) return true;
  return column.keys->decides(key) && column.keys->compare(changed, cell(column, slot)) != 0;
}

CKeyColumn& CShownRows::Private::keysOf(int columnId) {
  CColumn& column = *columns[at(columnId)];
  if (column.keys) return *column.keys;
  column.keys = std::make_unique<CKeyColumn>(column.column);
  do {
    column.keys->keys.clear();
    column.keys->fill(records, column.items.get());
  } while (column.keys->isVoid());
  return *column.keys;
}

int CShownRows::Private::rowCount() const { return isFiltered() ? shownOrder.size() : static_cast<int>(ordered); }

int CShownRows::Private::slotAt(int row) const {
  if (row < 0 || row >= rowCount()) return -1;
  if (isFiltered()) return shownOrder.slotAt(row);
  return sort.empty() ? row : order.slotAt(row);
}

int CShownRows::Private::rowOf(int slot) const {
  if (slot < 0 || isWaiting(slot)) return -1;
  if (isFiltered()) return shownOrder.rowOf(slot);
  return sort.empty() ? slot : order.rowOf(slot);
}

COrderBy CShownRows::Private::orderBy() const {
  COrderBy by;
  if (sort.empty()) return by;
  const CKeyColumn& keys = *columns[at(sort.front().column)]->keys;
  by.keys = &keys.keys;
  by.isDescending = sort.front().order == Qt::DescendingOrder;
  if (sort.size() > 1 || keys.mayDecide()) by.ties = this;
  return by;
}

/// Of the rows that do not wait.
void CShownRows::Private::rebuildOrders() {
  order.clear();
  order.setOrder(orderBy());
  if (!sort.empty()) {
    std::vector<int> slots(ordered);
    std::iota(slots.begin(), slots.end(), 0);
    order.sort(slots);
    order.assign(slots);
  }
  rebuildShownOrder();
}

void CShownRows::Private::rebuildShownOrder() {
  shownOrder.clear();
  shownOrder.setOrder(orderBy());
  if (!isFiltered()) return;
  // Without a branch, which could not be foretold. One place more takes what does not pass last.
  std::vector<int> slots(at(passing.count()) + 1);
  int* next = slots.data();
  const auto visit = [&](int slot) {
    *next = slot;
    next += passing.has(slot) ? 1 : 0;
  };
  if (sort.empty()) {
    for (int slot = 0; at(slot) < ordered; ++slot) visit(slot);
  } else {
    order.forEach(visit);
  }
  slots.resize(static_cast<std::size_t>(next - slots.data()));
  shownOrder.assign(slots);
}

CShownRows::CShownRows() : m_d(std::make_unique<Private>()) {}

CShownRows::~CShownRows() {
  const std::size_t count = m_d->records.size();
  Private::CGarbage garbage;
  garbage.records = std::move(m_d->records);
  for (const auto& column : m_d->columns) {
    garbage.values.push_back(std::move(column->values));
    garbage.items.push_back(std::move(column->items));
  }
  releaseRecords(std::move(garbage), count);
}

void CShownRows::setObserver(IRowsObserver* observer) { m_d->observer = observer; }

int CShownRows::addColumn(CTableColumn column) {
  m_d->columns.push_back(std::make_unique<Private::CColumn>());
  m_d->columns.back()->column = std::move(column);
  return columnCount() - 1;
}

int CShownRows::columnCount() const { return static_cast<int>(m_d->columns.size()); }

CTableColumn* CShownRows::column(int columnId) {
  return columnId >= 0 && columnId < columnCount() ? &m_d->columns[at(columnId)]->column : nullptr;
}

const CTableColumn* CShownRows::column(int columnId) const {
  return columnId >= 0 && columnId < columnCount() ? &m_d->columns[at(columnId)]->column : nullptr;
}

void CShownRows::setDelegate(int columnId, std::unique_ptr<CBaseTableColumnWidgetDelegate> delegate) {
  Private::CColumn& column = *m_d->columns[at(columnId)];
  const bool isSorted = std::any_of(m_d->sort.begin(), m_d->sort.end(),
                                    [columnId](const CSortColumn& by) { return by.column == columnId; });
  const std::optional<QStringList> texts = filter(columnId);
  CRowsChange change;
  change.kind = CRowsChange::Reset;
  m_d->tell(change, [&] {
    column.column.delegate.swap(delegate);
    column.isSummed = column.isSummed && CColumnSum::isSummable(column.column);
    column.keys.reset();
    column.values.reset();
    if (texts) m_d->valuesOf(columnId).accept(*texts);
    if (isSorted) m_d->keysOf(columnId);
    m_d->findPassing();
    m_d->rebuildOrders();
    m_d->sumAll();
  });
}

int CShownRows::rowCount() const { return m_d->rowCount(); }
int CShownRows::slotCount() const { return static_cast<int>(m_d->records.size()); }
int CShownRows::slotAt(int row) const { return m_d->slotAt(row); }
int CShownRows::rowOf(int slot) const { return m_d->rowOf(slot); }

const rdservice::IDataPtr& CShownRows::record(int slot) const {
  static const rdservice::IDataPtr none;
  return slot >= 0 && slot < slotCount() ? m_d->records[at(slot)] : none;
}

std::string CShownRows::key(int slot) const {
  const rdservice::IDataPtr& held = record(slot);
  return held ? held->getKey() : std::string();
}

CItemState CShownRows::item(int columnId, int slot) const {
  const CItemColumn* cells = items(columnId);
  return cells == nullptr ? CItemState() : cells->state(slot);
}

const CItemColumn* CShownRows::items(int columnId) const {
  return column(columnId) == nullptr ? nullptr : m_d->columns[at(columnId)]->items.get();
}

QString CShownRows::text(int slot, int columnId) const {
  if (column(columnId) == nullptr || slot < 0 || slot >= slotCount()) return {};
  const Private::CColumn& held = *m_d->columns[at(columnId)];
  return cellText(held.column, m_d->cell(held, slot));
}

void CShownRows::setSort(std::vector<CSortColumn> columns) {
  columns.erase(std::remove_if(columns.begin(), columns.end(),
                               [this](const CSortColumn& by) { return column(by.column) == nullptr; }),
                columns.end());
  CRowsChange change;
  // Everything is sorted anew, so that no row has to wait any longer.
  change.kind = m_d->ordered < m_d->records.size() ? CRowsChange::Reset : CRowsChange::Order;
  m_d->tell(change, [&] {
    m_d->ordered = m_d->records.size();
    m_d->sort = std::move(columns);
    for (const CSortColumn& by : m_d->sort) m_d->keysOf(by.column);
    m_d->rebuildOrders();
  });
}

const std::vector<CSortColumn>& CShownRows::sort() const { return m_d->sort; }

std::size_t CShownRows::memory() const {
  std::size_t bytes = heldBytes(m_d->records) + m_d->order.memory() + m_d->shownOrder.memory() + m_d->passing.memory();
  for (const auto& column : m_d->columns) {
    if (column->items) bytes += column->items->memory();
    if (column->keys) bytes += heldBytes(column->keys->keys);
    if (column->values) bytes += column->values->memory();
  }
  return bytes;
}

}  // namespace GW
