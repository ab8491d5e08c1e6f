#include "gw/CTableStore.h"

#include "gw/table_release.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace GW {

using utils::CMutexLock;

CTableStore::CTableStore(std::function<void()> wake) : m_wake(std::move(wake)) {}

bool CTableStore::commit(CTableChanges& changes, const CScopeTest& accepts, ERowRule rule, CTableScope* present) {
  CGarbage garbage;
  {
    CMutexLock lock(m_mutex);
    if (m_closed || (accepts && !accepts(m_scope))) {
      if (present != nullptr) *present = m_scope;
      return false;
    }
    if (changes.clearFirst) clearRows(garbage);
    if (changes.belongs) dropAbsent(changes, garbage);

    std::unordered_set<std::string> ignored;  // keys whose last record so far was not taken
    std::size_t done = 0;
    const auto putUntil = [&](std::size_t end) TS_REQUIRES(m_mutex) {
      for (; done < end; ++done) {
        CRecordChange& change = changes.records[done];
        // A record that is not taken leaves its key where it is; one that is may have given it away.
        const std::string key = ignored.empty() ? std::string() : change.key;
        if (!put(change, rule, garbage))
          ignored.insert(change.key);
        else if (!ignored.empty())
          ignored.erase(key);
      }
    };
    for (CItemChange& change : changes.items) {
      putUntil(change.records);
      if (ignored.empty() || ignored.count(change.key) == 0) changeItem(change);
    }
    putUntil(changes.records.size());
    if (changes.refresh && m_wake && !m_isWoken) {
      m_isWoken = true;
      m_wake();
    }
  }
  const std::size_t count = garbage.size();
  releaseRecords(std::move(garbage), count);
  return true;
}

void CTableStore::setScope(const CTableScope& scope) {
  CMutexLock lock(m_mutex);
  m_scope = scope;
}

CTableScope CTableStore::scope() const {
  CMutexLock lock(m_mutex);
  return m_scope;
}

rdservice::IDataPtr CTableStore::find(const std::string& key) const {
  CMutexLock lock(m_mutex);
  const auto it = m_rows.find(key);
  return it == m_rows.end() ? nullptr : it->second.record;
}

std::vector<rdservice::IDataPtr> CTableStore::all() const {
  std::vector<rdservice::IDataPtr> records;
  CMutexLock lock(m_mutex);
  records.reserve(m_slots.size());
  for (const auto* entry : m_slots) records.push_back(entry->second.record);
  return records;
}

CItemState CTableStore::item(int column, const std::string& key) const {
  CMutexLock lock(m_mutex);
  const auto it = m_rows.find(key);
  return it == m_rows.end() ? CItemState() : itemOf(it->second.items, column);
}

bool CTableStore::hasText(int column) const {
  CMutexLock lock(m_mutex);
  return static_cast<std::size_t>(column) < m_texts.size() && m_texts[static_cast<std::size_t>(column)] > 0;
}

bool CTableStore::drain(std::size_t limit, CTableDrain& drain) {
  if (!m_mutex.tryLock()) {
    drain.isBusy = true;
    return true;
  }
  const bool isMore = take(limit, drain);
  m_mutex.unlock();
  return isMore;
}

bool CTableStore::take(std::size_t limit, CTableDrain& drain) {
  m_isWoken = false;
  if (hasDropped()) {
    if (!drain.rows.empty() || drain.cleared || drain.replaced) return true;
    drain.cleared = std::exchange(m_cleared, false);
    drain.replaced = std::exchange(m_replaced, false);
    drain.newSlots = std::exchange(m_newSlots, {});
  }
  const std::size_t end = std::min(m_dirty.size(), m_dirtyBegin + limit);
  for (; m_dirtyBegin < end; ++m_dirtyBegin) {
    const int slot = m_dirty[m_dirtyBegin];
    CRow& row = m_slots[static_cast<std::size_t>(slot)]->second;
    row.isDirty = false;
    m_drained = std::max(m_drained, static_cast<std::size_t>(slot) + 1);
    drain.rows.push_back({slot, {row.record, row.items}});
  }
  if (m_dirtyBegin < m_dirty.size()) return true;
  m_dirty.clear();
  m_dirtyBegin = 0;
  return false;
}

bool CTableStore::isDrained() const {
  CMutexLock lock(m_mutex);
  return !hasDropped() && m_dirtyBegin == m_dirty.size();
}

void CTableStore::clear() {
  CGarbage garbage;
  {
    CMutexLock lock(m_mutex);
    clearRows(garbage);
    m_cleared = false;
  }
  const std::size_t count = garbage.size();
  releaseRecords(std::move(garbage), count);
}

void CTableStore::close() {
  {
    CMutexLock lock(m_mutex);
    m_closed = true;
    m_wake = nullptr;
  }
  clear();
}

void CTableStore::clearRows(CGarbage& garbage) {
  garbage.rows.swap(m_rows);
  m_slots.clear();
  m_texts.clear();
  m_dirty.clear();
  m_dirtyBegin = 0;
  // While a drop waits, the GUI side may still show rows that are gone here.
  m_cleared = m_cleared || m_replaced || m_drained > 0;
  m_replaced = false;
  m_newSlots.clear();
  m_drained = 0;
}

void CTableStore::dropAbsent(const CTableChanges& changes, CGarbage& garbage) {
  std::unordered_set<std::string_view> gathered;
  for (const CRecordChange& change : changes.records) gathered.insert(change.key);
  // `belongs` is foreign code: it is through with every row before anything changes.
  std::vector<int> newSlots(m_slots.size(), -1);
  int kept = 0;
  for (std::size_t slot = 0; slot < m_slots.size(); ++slot) {
    const auto& [key, row] = *m_slots[slot];
    if (gathered.count(key) > 0 || !changes.belongs(*row.record)) newSlots[slot] = kept++;
  }
  if (static_cast<std::size_t>(kept) < m_slots.size()) renumber(newSlots, garbage);
}

void CTableStore::renumber(const std::vector<int>& newSlots, CGarbage& garbage) {
  const auto moved = [&newSlots](int slot) { return slot < 0 ? -1 : newSlots[static_cast<std::size_t>(slot)]; };

  std::vector<int> dirty;
  for (std::size_t i = m_dirtyBegin; i < m_dirty.size(); ++i) {
    if (const int slot = moved(m_dirty[i]); slot >= 0) dirty.push_back(slot);
  }
  m_dirty = std::move(dirty);
  m_dirtyBegin = 0;

  const auto drainedEnd = newSlots.begin() + static_cast<std::ptrdiff_t>(m_drained);
  if (!m_replaced)
    m_newSlots.assign(newSlots.begin(), drainedEnd);
  else
    std::transform(m_newSlots.begin(), m_newSlots.end(), m_newSlots.begin(), moved);
  m_replaced = !m_newSlots.empty();
  m_drained -= static_cast<std::size_t>(std::count(newSlots.begin(), drainedEnd, -1));

  std::vector<CRows::value_type*> kept;
  for (CRows::value_type* entry : m_slots) {
    CRow& row = entry->second;
    row.slot = moved(row.slot);
    if (row.slot >= 0) {
      kept.push_back(entry);
      continue;
    }
    for (const auto& [column, item] : row.items) countText(column, item.text, -1);
    garbage.nodes.push_back(m_rows.extract(entry->first));
  }
  m_slots = std::move(kept);
}

bool CTableStore::put(CRecordChange& change, ERowRule rule, CGarbage& garbage) {
  const auto it = m_rows.try_emplace(std::move(change.key)).first;
  CRow& row = it->second;
  if (row.slot < 0) {
    row.slot = static_cast<int>(m_slots.size());
    m_slots.push_back(&*it);
  } else {
    const std::uint64_t version = change.record->version();
    const std::uint64_t held = row.record->version();
    const bool replaces = rule == ERowRule::Push ? version > held : version == 0 || version >= held;
    if (!replaces) return false;
    garbage.records.push_back(std::move(row.record));
  }
  row.record = std::move(change.record);
  markDirty(row);
  return true;
}

void CTableStore::changeItem(CItemChange& change) {
  if (change.part == EItemPart::ResetColumn) {
    resetItems(change.column);
    return;
  }
  CRow& row = m_rows.try_emplace(std::move(change.key)).first->second;
  auto it = std::find_if(row.items.begin(), row.items.end(),
                         [&change](const auto& item) { return item.first == change.column; });
  if (it == row.items.end()) it = row.items.insert(row.items.end(), {change.column, CItemState()});
  CItemState& item = it->second;
  switch (change.part) {
    case EItemPart::Text:
      countText(change.column, item.text, -1);
      countText(change.column, change.text, 1);
      item.text = std::move(change.text);
      break;
    case EItemPart::Visible: item.visible = change.on; break;
    case EItemPart::Enabled: item.enabled = change.on; break;
    case EItemPart::Checked: item.checked = change.on; break;
    case EItemPart::Value: item.value = change.value; break;
    case EItemPart::ResetColumn: break;
  }
  if (row.slot >= 0) markDirty(row);
}

void CTableStore::resetItems(int column) {
  for (auto it = m_rows.begin(); it != m_rows.end();) {
    CRow& row = it->second;
    const auto item =
        std::find_if(row.items.begin(), row.items.end(), [column](const auto& i) { return i.first == column; });
    if (item != row.items.end()) {
      countText(column, item->second.text, -1);
      row.items.erase(item);
      if (row.slot >= 0) markDirty(row);
    }
    it = row.slot < 0 && row.items.empty() ? m_rows.erase(it) : std::next(it);
  }
}

void CTableStore::markDirty(CRow& row) {
  if (std::exchange(row.isDirty, true)) return;
  m_dirty.push_back(row.slot);
}

void CTableStore::countText(int column, const QString& text, int step) {
  if (text.isEmpty()) return;
  const auto index = static_cast<std::size_t>(column);
  if (m_texts.size() <= index) m_texts.resize(index + 1);
  m_texts[index] += step;
}

}  // namespace GW
