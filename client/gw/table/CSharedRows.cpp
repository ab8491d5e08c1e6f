#include "gw/table/CSharedRows.h"

#include "gw/table/vector_growth.h"
#include "gw/table_release.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace GW {

using rdservice::CHashedPlaces;
using rdservice::PREFETCH_AHEAD;
using utils::CMutexLock;

namespace {

/// Batches of as many records are made to rows before the lock when the table is empty.
constexpr std::size_t PREPARED_RECORDS = 256;
/// Early keys without cells that are not worth removing.
constexpr int UNUSED_EARLY_KEYS = 16;

std::size_t at(int index) { return static_cast<std::size_t>(index); }

void writeCell(CItemColumn& column, int slot, const CChangeSet::CItem& change) {
  switch (change.part) {
    case EItemPart::Text: column.setText(slot, change.text); break;
    case EItemPart::Visible: column.setVisible(slot, change.on); break;
    case EItemPart::Enabled: column.setEnabled(slot, change.on); break;
    case EItemPart::Checked:
    case EItemPart::CheckedAlone: column.setChecked(slot, change.on); break;
    case EItemPart::Value: column.setValue(slot, change.value); break;
    case EItemPart::ResetCell:
    case EItemPart::ResetColumn: break;
  }
}

/// The first checked slot from `from` on; -1 when there is none. Without checked ones it looks at none.
int firstChecked(const CItemColumn* column, int from = 0) {
  if (column == nullptr || column->checks() == 0) return -1;
  for (int slot = from; slot < column->size(); ++slot) {
    if (column->isChecked(slot)) return slot;
  }
  return -1;
}

std::size_t bytesOf(const CItemColumns& columns) {
  std::size_t bytes = heldBytes(columns);
  for (const auto& [id, column] : columns) bytes += column.memory();
  return bytes;
}

}  // namespace

CSharedRows::CSharedRows(std::function<void()> wake) : m_wake(std::move(wake)) {}
CSharedRows::~CSharedRows() = default;

bool CSharedRows::commit(CChangeSet& changes, const CScopeTest& accepts, ERowRule rule, CTableScope* present) {
  CGarbage garbage;
  CRows prepared;
  if (changes.records.size() >= PREPARED_RECORDS && isEmptyFor(changes)) prepared = rowsOf(changes);
  int added = 0;
  {
    CMutexLock lock(m_mutex);
    if (m_closed || (accepts && !accepts(m_scope))) {
      if (present != nullptr) *present = m_scope;
      undoRows(prepared, changes);
      return false;
    }
    if (changes.clearFirst) clearRows(garbage);
    if (changes.belongs) dropAbsent(changes, garbage);

    const int before = slotCount();
    std::size_t done = 0;
    const bool isPrepared = before == 0 && !prepared.records.empty();
    if (isPrepared) {
      std::swap(m_rows, prepared);
      for (; done < changes.records.size() && !m_early.keys.isEmpty(); ++done) {
        const CChangeSet::CRecord& change = changes.records[done];
        takeEarlyItems(change, changes.key(change), static_cast<int>(done));
      }
      done = changes.records.size();
    }
    undoRows(prepared, changes);
    std::vector<int> refused;
    int last = -1;
    const auto putUntil = [&](std::size_t end) TS_REQUIRES(m_mutex) {
      for (; done < end; ++done) {
        if (done + PREFETCH_AHEAD < end) m_rows.slots.expect(changes.records[done + PREFETCH_AHEAD].hash);
        last = put(changes, changes.records[done], rule, refused);
      }
    };
    for (const CChangeSet::CItem& change : changes.items) {
      putUntil(change.records);
      const std::string_view key = changes.key(change);
      const int slot = !change.isOfLast ? m_rows.find(change.hash, key)
                       : isPrepared     ? static_cast<int>(change.records) - 1
                                        : last;
      changeItem(change, key, slot);
    }
    putUntil(changes.records.size());
    for (const int slot : refused) m_rows.marks[at(slot)] &= static_cast<std::uint8_t>(~Refused);
    added = slotCount() - before;

    tidyEarlyItems(garbage);
    if (changes.refresh && m_wake && !m_isWoken) {
      m_isWoken = true;
      m_wake();
    }
  }
  // What was replaced stands in the place of what replaced it.
  releaseRecords(std::move(changes.records), changes.records.size() - at(added));
  const std::size_t count = garbage.size();
  releaseRecords(std::move(garbage), count);
  return true;
}

bool CSharedRows::isEmptyFor(const CChangeSet& changes) const {
  CMutexLock lock(m_mutex);
  return changes.clearFirst || slotCount() == 0;
}

/// The rows of a batch in an empty table, with its records; none when a key comes twice. Without such keys no record is
/// refused, so that the items may follow all of them.
CSharedRows::CRows CSharedRows::rowsOf(CChangeSet& changes) {
  CRows rows;
  const std::size_t count = changes.records.size();
  rows.slots.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (i + PREFETCH_AHEAD < count) rows.slots.expect(changes.records[i + PREFETCH_AHEAD].hash);
    const CChangeSet::CRecord& change = changes.records[i];
    const auto isSame = [&](std::size_t held) { return changes.key(changes.records[held]) == changes.key(change); };
    if (rows.slots.find(change.hash, isSame) != CHashedPlaces::NONE) return CRows();
    rows.slots.add(change.hash, i);
  }
  rows.records.reserve(count);
  for (CChangeSet::CRecord& change : changes.records) rows.records.push_back(std::move(change.record));
  rows.marks.resize(count);
  return rows;
}

/// Gives a batch back the records of rows that were made for nothing.
void CSharedRows::undoRows(CRows& rows, CChangeSet& changes) {
  for (std::size_t i = 0; i < rows.records.size(); ++i) changes.records[i].record = std::move(rows.records[i]);
  rows.records.clear();
}

int CSharedRows::put(const CChangeSet& changes, CChangeSet::CRecord& change, ERowRule rule, std::vector<int>& refused) {
  const std::string_view key = changes.key(change);
  int slot = m_rows.find(change.hash, key);
  if (slot < 0) {
    slot = slotCount();
    m_rows.slots.add(change.hash, at(slot));
    growFor(m_rows.records, at(slot) + 1);
    m_rows.records.push_back(std::move(change.record));
    growFor(m_rows.marks, at(slot) + 1);
    m_rows.marks.push_back(0);
    takeEarlyItems(change, key, slot);
    return slot;
  }
  rdservice::IDataPtr& record = m_rows.records[at(slot)];
  const std::uint64_t version = change.record->version();
  const std::uint64_t held = record->version();
  if (rule == ERowRule::Push ? version <= held : version != 0 && version < held) {
    if ((m_rows.marks[at(slot)] & Refused) == 0) refused.push_back(slot);
    m_rows.marks[at(slot)] |= Refused;
    return slot;
  }
  m_rows.marks[at(slot)] &= static_cast<std::uint8_t>(~Refused);
  record.swap(change.record);
  markDirty(slot);
  return slot;
}

void CSharedRows::takeEarlyItems(const CChangeSet::CRecord& change, std::string_view key, int slot) {
  if (m_early.keys.isEmpty()) return;
  const int early = m_early.keys.find(change.hash, key);
  if (early < 0) return;
  for (auto& [id, column] : m_early.items) {
    if (!column.isSet(early)) continue;
    columnOf(m_rows.items, id).copyCell(slot, column, early);
    column.copyCell(early, CItemColumn(), 0);
  }
}

void CSharedRows::tidyEarlyItems(CGarbage& garbage) {
  int cells = 0;
  for (const auto& [id, column] : m_early.items) cells += column.cells();
  if (cells == 0) {
    if (!m_early.keys.isEmpty()) garbage.early = std::exchange(m_early, CEarlyItems());
    return;
  }
  if (m_early.keys.size() <= 2 * cells + UNUSED_EARLY_KEYS) return;
  std::vector<int> newSlots(at(m_early.keys.size()), -1);
  int kept = 0;
  for (int slot = 0; slot < m_early.keys.size(); ++slot) {
    const bool isUsed = std::any_of(m_early.items.begin(), m_early.items.end(),
                                    [slot](const auto& column) { return column.second.isSet(slot); });
    if (isUsed) newSlots[at(slot)] = kept++;
  }
  m_early.keys.renumber(newSlots, kept);
  for (auto& [id, column] : m_early.items) column.renumber(newSlots, kept);
}

void CSharedRows::changeItem(const CChangeSet::CItem& change, std::string_view key, int slot) {
  assert(change.column >= 0);
  if (change.part == EItemPart::ResetColumn) {
    resetItems(change.column);
    return;
  }
  if (change.part == EItemPart::ResetCell && findColumn(m_rows.items, change.column) == nullptr &&
      findColumn(m_early.items, change.column) == nullptr)
    return;  // nobody has set a cell of the column yet
  if (slot >= 0 && (m_rows.marks[at(slot)] & Refused) != 0) return;
  if (change.part == EItemPart::ResetCell) {
    unsetCell(change, key, slot);
    return;
  }
  if (change.part == EItemPart::CheckedAlone && change.on) uncheckAll(change.column);
  if (slot >= 0) {
    writeCell(columnOf(m_rows.items, change.column), slot, change);
    markDirty(slot);
  } else {
    writeCell(columnOf(m_early.items, change.column), m_early.keys.findOrAdd(change.hash, key), change);
  }
}

void CSharedRows::unsetCell(const CChangeSet::CItem& change, std::string_view key, int slot) {
  CItemColumns& columns = slot >= 0 ? m_rows.items : m_early.items;
  const int place = slot >= 0 ? slot : m_early.keys.find(change.hash, key);
  const CItemColumn* cells = findColumn(columns, change.column);
  if (place < 0 || cells == nullptr || !cells->isSet(place)) return;
  columnOf(columns, change.column).copyCell(place, CItemColumn(), 0);
  if (slot >= 0) markDirty(slot);
}

void CSharedRows::uncheckAll(int column) {
  const CItemColumn* cells = findColumn(m_rows.items, column);
  for (int slot = firstChecked(cells); slot >= 0; slot = firstChecked(cells, slot)) {
    columnOf(m_rows.items, column).setChecked(slot, false);
    markDirty(slot);
  }
  cells = findColumn(m_early.items, column);
  for (int early = firstChecked(cells); early >= 0; early = firstChecked(cells, early))
    columnOf(m_early.items, column).setChecked(early, false);
}

void CSharedRows::resetItems(int column) {
  if (findColumn(m_rows.items, column) != nullptr) {
    CItemColumn& cells = columnOf(m_rows.items, column);
    const int end = std::min(cells.size(), m_drained);
    for (int slot = 0; slot < end; ++slot) {
      if (cells.isSet(slot)) markDirty(slot);
    }
    cells.clear();
  }
  if (findColumn(m_early.items, column) != nullptr) columnOf(m_early.items, column).clear();
}

void CSharedRows::markDirty(int slot) {
  if (slot >= m_drained || (m_rows.marks[at(slot)] & Dirty) != 0) return;
  m_rows.marks[at(slot)] |= Dirty;
  m_dirty.push_back(slot);
}

void CSharedRows::setScope(const CTableScope& scope) {
  CMutexLock lock(m_mutex);
  m_scope = scope;
}

CTableScope CSharedRows::scope() const {
  CMutexLock lock(m_mutex);
  return m_scope;
}

rdservice::IDataPtr CSharedRows::find(const std::string& key) const {
  const std::uint32_t hash = CHashedPlaces::hash(key);
  CMutexLock lock(m_mutex);
  const int slot = m_rows.find(hash, key);
  return slot < 0 ? nullptr : m_rows.records[at(slot)];
}

int CSharedRows::CRows::find(std::uint32_t hash, std::string_view key) const {
  const std::size_t slot = slots.find(hash, [&](std::size_t held) { return records[held]->getKey() == key; });
  return slot == CHashedPlaces::NONE ? -1 : static_cast<int>(slot);
}

int CSharedRows::slotOf(const std::string& key) const {
  const std::uint32_t hash = CHashedPlaces::hash(key);
  CMutexLock lock(m_mutex);
  return m_rows.find(hash, key);
}

std::vector<rdservice::IDataPtr> CSharedRows::all() const {
  CMutexLock lock(m_mutex);
  return m_rows.records;
}

CItemState CSharedRows::item(int column, const std::string& key) const {
  const std::uint32_t hash = CHashedPlaces::hash(key);
  CMutexLock lock(m_mutex);
  const int slot = m_rows.find(hash, key);
  const CItemColumn* cells = findColumn(slot < 0 ? m_early.items : m_rows.items, column);
  if (cells == nullptr) return {};
  if (slot >= 0) return cells->state(slot);
  const int early = m_early.keys.find(hash, key);
  return early < 0 ? CItemState() : cells->state(early);
}

bool CSharedRows::hasText(int column) const {
  CMutexLock lock(m_mutex);
  const CItemColumn* cells = findColumn(m_rows.items, column);
  const CItemColumn* early = findColumn(m_early.items, column);
  return (cells != nullptr && cells->texts() > 0) || (early != nullptr && early->texts() > 0);
}

std::string CSharedRows::checkedKey(int column) const {
  CMutexLock lock(m_mutex);
  const int slot = firstChecked(findColumn(m_rows.items, column));
  if (slot >= 0) return m_rows.records[at(slot)]->getKey();
  const int early = firstChecked(findColumn(m_early.items, column));
  return early >= 0 ? std::string(m_early.keys.key(early)) : std::string();
}

bool CSharedRows::isAllChecked(int column) const {
  CMutexLock lock(m_mutex);
  int cells = 0;
  int checks = 0;
  for (const CItemColumn* held : {findColumn(m_rows.items, column), findColumn(m_early.items, column)}) {
    cells += held == nullptr ? 0 : held->cells();
    checks += held == nullptr ? 0 : held->checks();
  }
  return cells > 0 && cells == checks;
}

std::size_t CSharedRows::memory() const {
  CMutexLock lock(m_mutex);
  return m_rows.slots.memory() + heldBytes(m_rows.records) + heldBytes(m_rows.marks) + bytesOf(m_rows.items) +
         m_early.keys.memory() + bytesOf(m_early.items) + heldBytes(m_dirty) + heldBytes(m_newSlots);
}

}  // namespace GW
