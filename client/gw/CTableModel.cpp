#include "gw/CTableModel.h"

#include "gw/CRowText.h"
#include "gw/CUiResource.h"
#include "gw/table_release.h"

#include <QBrush>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace GW {

namespace {

constexpr std::size_t MAX_CHANGE_SIGNALS = 8;

std::size_t at(int index) { return static_cast<std::size_t>(index); }

}  // namespace

CTableModel::CTableModel(QObject* parent) : QAbstractTableModel(parent) {}

CTableModel::~CTableModel() {
  const std::size_t count = m_shown.size();
  releaseRecords(std::move(m_shown), count);
}

int CTableModel::addColumn(CTableColumn column) {
  const int id = static_cast<int>(m_columns.size());
  beginInsertColumns(QModelIndex(), id, id);
  m_columns.push_back(std::move(column));
  if (m_sortColumn >= 0) m_sorter.setColumn(nullptr, -1, m_sortOrder);  // it points into the list that has moved
  endInsertColumns();
  if (m_sortColumn >= 0) setSort(m_sortColumn, m_sortOrder);
  return id;
}

CTableColumn* CTableModel::column(int columnId) {
  return columnId >= 0 && at(columnId) < m_columns.size() ? &m_columns[at(columnId)] : nullptr;
}

const CTableColumn* CTableModel::column(int columnId) const {
  return columnId >= 0 && at(columnId) < m_columns.size() ? &m_columns[at(columnId)] : nullptr;
}

void CTableModel::setDelegate(int columnId, std::unique_ptr<CBaseTableColumnWidgetDelegate> delegate) {
  m_columns[at(columnId)].delegate = std::move(delegate);
  if (!m_rows.empty()) {
    Q_EMIT dataChanged(index(0, columnId), index(rowCount() - 1, columnId));
  }
  if (columnId == m_sortColumn) setSort(m_sortColumn, m_sortOrder);
}

void CTableModel::prepare(const CTableDrain& drain) {
  if (!m_sorter.isActive()) return;
  for (std::size_t i = m_preparedKeys.size(); i < drain.rows.size(); ++i)
    m_preparedKeys.push_back(m_sorter.makeKey(drain.rows[i].row));
}

void CTableModel::apply(CTableDrain&& drain) {
  prepare(drain);
  std::vector<CRowSorter::CKey> keys = std::exchange(m_preparedKeys, {});
  if (drain.cleared) clear();
  if (drain.replaced) dropRows(drain.newSlots);

  const std::size_t known = m_shown.size();
  std::vector<CShownRow> added;
  std::vector<rdservice::IDataPtr> garbage;
  std::vector<int> changedRows;
  std::vector<int> movedSlots;
  for (std::size_t i = 0; i < drain.rows.size(); ++i) {
    auto& [drainedSlot, row] = drain.rows[i];
    const std::size_t slot = at(drainedSlot);
    if (m_sorter.isActive() && m_sorter.setKey(drainedSlot, std::move(keys[i]))) movedSlots.push_back(drainedSlot);
    if (slot == known + added.size()) {
      added.push_back(std::move(row));
      continue;
    }
    CShownRow& shown = slot < known ? m_shown[slot] : added[slot - known];
    std::swap(shown, row);
    garbage.push_back(std::move(row.record));
    if (slot < known) changedRows.push_back(m_rowOf[slot]);
  }
  emitChanged(std::move(changedRows));

  if (!added.empty()) {
    const int first = static_cast<int>(known);
    const int last = first + static_cast<int>(added.size()) - 1;
    beginInsertRows(QModelIndex(), first, last);
    std::move(added.begin(), added.end(), std::back_inserter(m_shown));
    for (int slot = first; slot <= last; ++slot) {
      m_rows.push_back(slot);
      m_rowOf.push_back(slot);
    }
    endInsertRows();
  }
  if (!movedSlots.empty()) reorder(std::move(movedSlots));

  const std::size_t count = garbage.size();
  releaseRecords(std::move(garbage), count);
}

void CTableModel::clear() { dropRows(std::vector<int>(m_shown.size(), -1)); }

void CTableModel::dropRows(const std::vector<int>& newSlots) {
  const auto isKept = [&newSlots](int slot) { return newSlots[at(slot)] >= 0; };
  std::vector<int> rows = m_rows;
  const auto keptEnd = std::stable_partition(rows.begin(), rows.end(), isKept);
  const int kept = static_cast<int>(keptEnd - rows.begin());
  if (at(kept) == rows.size()) return;
  // The dropped rows go to the end first, so that one signal removes them all.
  setOrder(std::move(rows));
  Q_EMIT sigRowsDropping(kept);

  beginRemoveRows(QModelIndex(), kept, static_cast<int>(m_rows.size()) - 1);
  m_rows.resize(at(kept));
  std::vector<CShownRow> shown(at(kept));
  for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
    if (newSlots[slot] >= 0) shown[at(newSlots[slot])] = std::move(m_shown[slot]);
  }
  m_shown.swap(shown);
  m_rowOf.resize(at(kept));
  for (std::size_t row = 0; row < m_rows.size(); ++row) {
    m_rows[row] = newSlots[at(m_rows[row])];
    m_rowOf[at(m_rows[row])] = static_cast<int>(row);
  }
  m_sorter.renumber(newSlots, at(kept));
  endRemoveRows();

  const std::size_t count = shown.size();
  releaseRecords(std::move(shown), count);
}

void CTableModel::setSort(int columnId, Qt::SortOrder order) {
  m_sortColumn = columnId;
  m_sortOrder = order;
  m_sorter.setColumn(column(columnId), columnId, order);
  std::vector<int> slots(m_shown.size());
  std::iota(slots.begin(), slots.end(), 0);
  if (!m_sorter.isActive()) {
    setOrder(std::move(slots));
    return;
  }
  for (const int slot : slots) m_sorter.setKey(slot, m_sorter.makeKey(m_shown[at(slot)]));
  reorder(std::move(slots));
}

void CTableModel::reorder(std::vector<int> movedSlots) {
  const auto isBefore = [this](int a, int b) { return m_sorter.isBefore(a, b); };
  std::vector<bool> isMoved(m_shown.size());
  std::vector<int> moved;
  for (const int slot : movedSlots) {
    if (!isMoved[at(slot)]) moved.push_back(slot);
    isMoved[at(slot)] = true;
  }
  std::sort(moved.begin(), moved.end(), isBefore);

  std::vector<int> rest;
  std::copy_if(m_rows.begin(), m_rows.end(), std::back_inserter(rest),
               [&isMoved](int slot) { return !isMoved[at(slot)]; });
  std::vector<int> rows;
  rows.reserve(m_rows.size());
  std::merge(rest.begin(), rest.end(), moved.begin(), moved.end(), std::back_inserter(rows), isBefore);
  setOrder(std::move(rows));
}

void CTableModel::setOrder(std::vector<int> rows) {
  if (rows == m_rows) return;
  // The hint keeps the header from looking at its columns.
  Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<int> slotOf;
  slotOf.reserve(static_cast<std::size_t>(before.size()));
  for (const QModelIndex& index : before) slotOf.push_back(m_rows[at(index.row())]);

  m_rows = std::move(rows);
  for (std::size_t row = 0; row < m_rows.size(); ++row) m_rowOf[at(m_rows[row])] = static_cast<int>(row);

  QModelIndexList after;
  after.reserve(before.size());
  for (int i = 0; i < before.size(); ++i) after.push_back(index(m_rowOf[at(slotOf[at(i)])], before[i].column()));
  changePersistentIndexList(before, after);
  Q_EMIT layoutChanged({}, VerticalSortHint);
}

void CTableModel::emitChanged(std::vector<int> rows) {
  if (rows.empty() || m_columns.empty()) return;
  std::sort(rows.begin(), rows.end());
  std::vector<std::pair<int, int>> ranges;
  for (const int row : rows) {
    if (!ranges.empty() && row <= ranges.back().second + 1)
      ranges.back().second = row;
    else
      ranges.emplace_back(row, row);
  }
  if (ranges.size() > MAX_CHANGE_SIGNALS) ranges = {{rows.front(), rows.back()}};
  for (const auto& [first, last] : ranges) Q_EMIT dataChanged(index(first, 0), index(last, columnCount() - 1));
}

const CShownRow& CTableModel::shownAt(int row) const { return m_shown[at(m_rows[at(row)])]; }

rdservice::IDataPtr CTableModel::record(int row) const { return isKnown(row) ? shownAt(row).record : nullptr; }

QString CTableModel::text(int row, int columnId) const {
  const CTableColumn* known = column(columnId);
  return known != nullptr && isKnown(row) ? cellTextOf(*known, columnId, shownAt(row)) : QString();
}

int CTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant CTableModel::data(const QModelIndex& index, int role) const {
  const CTableColumn* known = column(index.column());
  if (known == nullptr || !isKnown(index.row())) return {};
  if (role == Qt::DisplayRole) return text(index.row(), index.column());
  if (role == Qt::TextAlignmentRole) return int(known->alignment);
  if (role == Qt::ForegroundRole && known->delegate && !itemOf(shownAt(index.row()).items, index.column()).enabled)
    return QBrush(CUiResource::getColor(QStringLiteral("clr_table_disabled_text")));
  return {};
}

QVariant CTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const CTableColumn* known = orientation == Qt::Horizontal ? column(section) : nullptr;
  if (known == nullptr) return {};
  if (role == Qt::DisplayRole) return known->title;
  if (role == Qt::TextAlignmentRole) return int(Qt::AlignCenter);
  return {};
}

}  // namespace GW
