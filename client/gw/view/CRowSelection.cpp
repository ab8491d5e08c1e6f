#include "gw/view/CRowSelection.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace GW {

void CSlotSet::set(int slot, bool on) {
  if (slot < 0 || contains(slot) == on) return;
  const auto word = static_cast<std::size_t>(slot) / 64;
  if (word >= m_words.size()) m_words.resize(std::max(word + 1, m_words.size() * 2));
  m_words[word] ^= std::uint64_t(1) << (slot % 64);
  m_size += on ? 1 : -1;
}

void CSlotSet::setFirst(int count) {
  m_words.assign((static_cast<std::size_t>(count) + 63) / 64, ~std::uint64_t(0));
  if (count % 64 != 0) m_words.back() >>= 64 - count % 64;
  m_size = count;
}

std::vector<int> CSlotSet::all() const {
  std::vector<int> slots;
  slots.reserve(static_cast<std::size_t>(m_size));
  for (std::size_t word = 0; word < m_words.size(); ++word) {
    for (std::uint64_t rest = m_words[word]; rest != 0; rest &= rest - 1)
      slots.push_back(static_cast<int>(word * 64) + __builtin_ctzll(rest));
  }
  return slots;
}

bool operator==(const CSlotSet& a, const CSlotSet& b) {
  if (a.m_size != b.m_size) return false;
  // Of one size: what the longer one has beyond the other is empty when the rest is equal.
  const std::size_t common = std::min(a.m_words.size(), b.m_words.size());
  return std::equal(a.m_words.begin(), a.m_words.begin() + static_cast<std::ptrdiff_t>(common), b.m_words.begin());
}

CRowSelection::CRowSelection(const CShownRows& rows) : m_rows(rows) {}

std::vector<int> CRowSelection::rows() const {
  std::vector<int> rows;
  if (count() == m_rows.rowCount()) {
    rows.resize(static_cast<std::size_t>(count()));
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
  }
  rows = m_selected.all();
  for (int& one : rows) one = m_rows.rowOf(one);
  std::sort(rows.begin(), rows.end());
  return rows;
}

void CRowSelection::replace(CSlotSet selected) {
  m_rangeEnd = -1;
  if (selected == m_selected) return;
  m_selected = std::move(selected);
  ++m_revision;
}

void CRowSelection::clear() { replace({}); }

void CRowSelection::selectAll() { select(0, m_rows.rowCount() - 1); }

void CRowSelection::select(int firstRow, int lastRow) {
  firstRow = std::max(firstRow, 0);
  lastRow = std::min(lastRow, m_rows.rowCount() - 1);
  CSlotSet selected;
  if (lastRow - firstRow + 1 == m_rows.slotCount())
    selected.setFirst(m_rows.slotCount());
  else
    for (int row = firstRow; row <= lastRow; ++row) selected.set(m_rows.slotAt(row), true);
  replace(std::move(selected));
  m_anchor = m_rows.slotAt(firstRow);
}

void CRowSelection::add(int row, bool on) {
  const int slot = m_rows.slotAt(row);
  m_rangeEnd = -1;
  if (slot < 0 || isSelected(slot) == on) return;
  m_selected.set(slot, on);
  ++m_revision;
}

void CRowSelection::begin(int row, bool toggles) {
  m_anchor = m_rows.slotAt(row);
  if (m_anchor < 0) return;
  m_base = toggles ? m_selected : CSlotSet();
  m_keepsOthers = toggles;
  m_selects = !m_base.contains(m_anchor);
  CSlotSet selected = m_base;
  selected.set(m_anchor, m_selects);
  replace(std::move(selected));
  m_rangeEnd = row;
}

void CRowSelection::extend(int row, bool keepsOthers) {
  const int anchorRow = m_rows.rowOf(m_anchor);
  if (anchorRow < 0 || row < 0 || row >= m_rows.rowCount()) {
    begin(row, keepsOthers);
    return;
  }
  if (m_rangeEnd < 0 || m_keepsOthers != keepsOthers) {
    // Not the range's own steps brought the selection here: it is made anew.
    m_base = keepsOthers ? m_selected : CSlotSet();
    m_keepsOthers = keepsOthers;
    m_selects = true;
    CSlotSet selected = m_base;
    const auto [first, last] = std::minmax(anchorRow, row);
    for (int one = first; one <= last; ++one) selected.set(m_rows.slotAt(one), true);
    replace(std::move(selected));
  } else {
    const auto setRow = [this](int one, bool isInRange) {
      const int slot = m_rows.slotAt(one);
      const bool on = isInRange ? m_selects : m_base.contains(slot);
      if (isSelected(slot) == on) return;
      m_selected.set(slot, on);
      ++m_revision;
    };
    // Only the rows between the old end and the new one can change.
    const auto isInRange = [anchorRow, row](int one) {
      const auto [first, last] = std::minmax(anchorRow, row);
      return one >= first && one <= last;
    };
    const auto [first, last] = std::minmax(m_rangeEnd, row);
    for (int one = first; one <= last; ++one) setRow(one, isInRange(one));
  }
  m_rangeEnd = row;
}

CSlotSet CRowSelection::moved(const CSlotSet& from, const std::vector<int>& newSlots) const {
  CSlotSet to;
  for (const int slot : from.all()) to.set(newSlots[static_cast<std::size_t>(slot)], true);
  return to;
}

void CRowSelection::rowsChanged(const CRowsChange& change) {
  if (change.kind == CRowsChange::Content || change.kind == CRowsChange::Append) return;
  if (change.newSlots != nullptr) {
    const auto movedTo = [&change](int slot) {
      return slot < 0 ? -1 : (*change.newSlots)[static_cast<std::size_t>(slot)];
    };
    const int before = count();
    m_selected = moved(m_selected, *change.newSlots);
    m_base = moved(m_base, *change.newSlots);
    m_anchor = movedTo(m_anchor);
    m_current = movedTo(m_current);
    if (count() != before) ++m_revision;
  }
  m_rangeEnd = -1;
  if (change.kind == CRowsChange::Reset) dropHidden();
}

void CRowSelection::dropHidden() {
  if (m_rows.rowOf(m_anchor) < 0) m_anchor = -1;
  if (m_rows.rowOf(m_current) < 0) m_current = -1;
  if (m_rows.rowCount() == m_rows.slotCount()) return;
  CSlotSet shown;
  if (m_rows.rowCount() < count()) {
    for (int row = 0; row < m_rows.rowCount(); ++row) {
      if (const int slot = m_rows.slotAt(row); isSelected(slot)) shown.set(slot, true);
    }
  } else {
    for (const int slot : m_selected.all()) {
      if (m_rows.rowOf(slot) >= 0) shown.set(slot, true);
    }
  }
  replace(std::move(shown));
}

}  // namespace GW
