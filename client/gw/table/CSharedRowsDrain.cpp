// What the GUI side is told: rows taken over step by step, and rows dropped, emptied or renumbered meanwhile.

#include "gw/table/CSharedRows.h"

#include "gw/table/vector_growth.h"
#include "gw/table_release.h"

#include <algorithm>
#include <utility>

namespace GW {

using rdservice::CHashedPlaces;
using rdservice::PREFETCH_AHEAD;
using utils::CMutexLock;

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

/// About where a record's references are counted: before the record, where it was made together with them.
const void* countOf(const rdservice::IDataPtr& record) {
  constexpr int COUNT_BYTES = 16;
  return reinterpret_cast<const char*>(record.get()) - COUNT_BYTES;
}

}  // namespace

bool CSharedRows::drain(std::size_t limit, CRowsDrain& drain) {
  if (!m_mutex.tryLock()) {
    drain.isBusy = true;
    return true;
  }
  const bool isMore = take(limit, drain);
  m_mutex.unlock();
  return isMore;
}

bool CSharedRows::take(std::size_t limit, CRowsDrain& drain) {
  m_isWoken = false;
  if (drain.isEmpty()) {
    drain.cleared = std::exchange(m_cleared, false);
    drain.replaced = std::exchange(m_replaced, false);
    drain.newSlots = std::exchange(m_newSlots, {});
    m_dirtyEnd = m_dirty.size();
  } else if (hasDropped()) {
    return true;
  }
  drain.total = slotCount();
  const std::size_t first = drain.slots.size();
  const std::size_t oldEnd = m_dirtyBegin + std::min(limit, m_dirtyEnd - m_dirtyBegin);
  for (; m_dirtyBegin < oldEnd; ++m_dirtyBegin) {
    const int slot = m_dirty[m_dirtyBegin];
    m_rows.marks[at(slot)] &= static_cast<std::uint8_t>(~Dirty);
    drain.slots.push_back(slot);
  }
  if (m_dirtyBegin == m_dirtyEnd) {
    const std::size_t left = limit - (drain.slots.size() - first);
    const int end = m_drained + static_cast<int>(std::min(left, at(slotCount() - m_drained)));
    while (m_drained < end) drain.slots.push_back(m_drained++);
  }
  growFor(drain.records, drain.slots.size());
  for (std::size_t i = first; i < drain.slots.size(); ++i) {
    if (i + PREFETCH_AHEAD < drain.slots.size())
      rdservice::prefetch(countOf(m_rows.records[at(drain.slots[i + PREFETCH_AHEAD])]));
    drain.records.push_back(m_rows.records[at(drain.slots[i])]);
  }
  for (const auto& [id, column] : m_rows.items) {
    CItemColumn& taken = columnOf(drain.items, id);
    if (column.isEmpty()) continue;
    for (std::size_t i = first; i < drain.slots.size(); ++i)
      taken.copyCell(static_cast<int>(i), column, drain.slots[i]);
  }
  if (m_dirtyBegin == m_dirty.size()) {
    m_dirty.clear();
    m_dirtyBegin = 0;
    m_dirtyEnd = 0;
  }
  return hasUndrained();
}

bool CSharedRows::isDrained() const {
  CMutexLock lock(m_mutex);
  return !hasDropped() && !hasUndrained();
}

void CSharedRows::clear() {
  CGarbage garbage;
  {
    CMutexLock lock(m_mutex);
    clearRows(garbage);
    m_cleared = false;
  }
  const std::size_t count = garbage.size();
  releaseRecords(std::move(garbage), count);
}

void CSharedRows::clearKeepingCells() {
  CGarbage garbage;
  {
    CMutexLock lock(m_mutex);
    for (int slot = 0; slot < slotCount(); ++slot) keepCells(slot);
    CEarlyItems kept = std::exchange(m_early, CEarlyItems());
    clearRows(garbage);
    m_early = std::move(kept);
    m_cleared = false;
  }
  const std::size_t count = garbage.size();
  releaseRecords(std::move(garbage), count);
}

void CSharedRows::keepCells(int slot) {
  for (const auto& [id, column] : m_rows.items) {
    if (!column.isSet(slot)) continue;
    const std::string key = m_rows.records[at(slot)]->getKey();
    columnOf(m_early.items, id).copyCell(m_early.keys.findOrAdd(CHashedPlaces::hash(key), key), column, slot);
  }
}

void CSharedRows::close() {
  {
    CMutexLock lock(m_mutex);
    m_closed = true;
    m_wake = nullptr;
  }
  clear();
}

void CSharedRows::clearRows(CGarbage& garbage) {
  garbage.rows = std::exchange(m_rows, CRows());
  garbage.early = std::exchange(m_early, CEarlyItems());
  m_dirty.clear();
  m_dirtyBegin = 0;
  m_dirtyEnd = 0;
  // While a drop waits, the GUI side may still show rows that are gone here.
  m_cleared = m_cleared || m_replaced || m_drained > 0;
  m_replaced = false;
  m_newSlots.clear();
  m_drained = 0;
}

void CSharedRows::dropAbsent(const CChangeSet& changes, CGarbage& garbage) {
  std::vector<char> isGathered(at(slotCount()));
  for (const CChangeSet::CRecord& change : changes.records) {
    const int slot = m_rows.find(change.hash, changes.key(change));
    if (slot >= 0) isGathered[at(slot)] = 1;
  }
  // The functions are foreign code: `belongs` is through with every row before anything changes.
  std::vector<int> newSlots(at(slotCount()), -1);
  int kept = 0;
  for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
    if (isGathered[slot] != 0 || !changes.belongs(*m_rows.records[slot])) newSlots[slot] = kept++;
  }
  if (kept == slotCount()) return;
  for (std::size_t slot = 0; changes.keepsCells && slot < newSlots.size(); ++slot) {
    if (newSlots[slot] < 0 && changes.keepsCells(*m_rows.records[slot])) keepCells(static_cast<int>(slot));
  }
  renumber(newSlots, kept, garbage);
}

void CSharedRows::renumber(const std::vector<int>& newSlots, int kept, CGarbage& garbage) {
  renumberDrained(newSlots);
  m_rows.slots.renumber(newSlots, at(kept));
  for (auto& [id, column] : m_rows.items) column.renumber(newSlots, kept);
  garbage.records.reserve(newSlots.size() - at(kept));
  for (std::size_t slot = 0; slot < newSlots.size(); ++slot) {
    rdservice::IDataPtr& record = m_rows.records[slot];
    if (newSlots[slot] < 0) {
      garbage.records.push_back(std::move(record));
    } else if (const std::size_t moved = at(newSlots[slot]); moved != slot) {
      m_rows.records[moved] = std::move(record);
      m_rows.marks[moved] = m_rows.marks[slot];
    }
  }
  m_rows.records.resize(at(kept));
  m_rows.marks.resize(at(kept));
}

/// What waits for the GUI side, in terms of the new slots.
void CSharedRows::renumberDrained(const std::vector<int>& newSlots) {
  const auto moved = [&newSlots](int slot) { return slot < 0 ? -1 : newSlots[at(slot)]; };

  std::vector<int> dirty;
  for (std::size_t i = m_dirtyBegin; i < m_dirty.size(); ++i) {
    if (const int slot = moved(m_dirty[i]); slot >= 0) dirty.push_back(slot);
  }
  m_dirty = std::move(dirty);
  m_dirtyBegin = 0;
  m_dirtyEnd = 0;

  const auto drainedEnd = newSlots.begin() + m_drained;
  const int dropped = static_cast<int>(std::count(newSlots.begin(), drainedEnd, -1));
  if (m_replaced)
    std::transform(m_newSlots.begin(), m_newSlots.end(), m_newSlots.begin(), moved);
  else if (dropped > 0)
    m_newSlots.assign(newSlots.begin(), drainedEnd);
  m_replaced = m_replaced || dropped > 0;
  m_drained -= dropped;
}

}  // namespace GW
