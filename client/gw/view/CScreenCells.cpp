#include "gw/view/CScreenCells.h"

#include <algorithm>
#include <utility>

namespace GW {

namespace {

std::size_t at(int index) { return static_cast<std::size_t>(index); }

void forgetTexts(CScreenLine& line) {
  for (CScreenCell& cell : line.cells) cell.isKnown = false;
}

}  // namespace

CScreenCells::CScreenCells(const CShownRows& rows) : m_rows(rows) {}

void CScreenCells::forget() { m_lines.clear(); }

void CScreenCells::forgetCell(int slot, int columnId) {
  for (CScreenLine& line : m_lines) {
    if (line.slot == slot && at(columnId) < line.cells.size()) line.cells[at(columnId)].isKnown = false;
  }
}

void CScreenCells::forgetColumn(int columnId) {
  for (CScreenLine& line : m_lines) {
    if (at(columnId) < line.cells.size()) line.cells[at(columnId)].isKnown = false;
  }
}

void CScreenCells::scrollTo(int firstRow, int lastRow) {
  const std::size_t count = firstRow < 0 ? 0 : at(lastRow - firstRow + 1);
  m_spare.resize(count);
  // Lines that go off the screen lend their memory to those that come.
  std::size_t free = 0;
  const auto stays = [&](std::size_t old) {
    const int row = m_firstRow + static_cast<int>(old);
    return row >= firstRow && row <= lastRow;
  };
  for (std::size_t i = 0; i < count; ++i) {
    const int row = firstRow + static_cast<int>(i);
    CScreenLine& line = m_spare[i];
    const int old = row - m_firstRow;
    if (old >= 0 && at(old) < m_lines.size()) {
      std::swap(line, m_lines[at(old)]);
      continue;
    }
    while (free < m_lines.size() && stays(free)) ++free;
    if (free < m_lines.size()) std::swap(line, m_lines[free++]);
    forgetTexts(line);
    line.isPainted = false;
    line.slot = m_rows.slotAt(row);
  }
  m_lines.swap(m_spare);
  m_firstRow = std::max(firstRow, 0);
}

void CScreenCells::read(CScreenCell& cell, int slot, int columnId) const {
  cell.isKnown = true;
  cell.text = m_rows.text(slot, columnId);
  cell.isVisible = cell.isEnabled = true;
  cell.isChecked = false;
  cell.value.reset();
  const CItemColumn* items = m_rows.items(columnId);
  if (items == nullptr) return;
  cell.isVisible = items->isVisible(slot);
  cell.isEnabled = items->isEnabled(slot);
  cell.isChecked = items->isChecked(slot);
  if (items->hasValue(slot)) cell.value = items->value(slot);
}

const CScreenCell& CScreenCells::cell(CScreenLine& line, int columnId) {
  if (at(columnId) >= line.cells.size()) line.cells.resize(at(m_rows.columnCount()));
  CScreenCell& cell = line.cells[at(columnId)];
  if (!cell.isKnown) read(cell, line.slot, columnId);
  return cell;
}

/// The slots on screen, of those before and those after the change, whose cells it has changed.
std::vector<int> CScreenCells::changedOnScreen(const CRowsChange& change) const {
  std::vector<int> slots;
  for (const CScreenLine& line : m_lines) slots.push_back(line.slot);
  std::sort(slots.begin(), slots.end());
  std::vector<int> changed;
  for (const int slot : change.changedSlots) {
    if (std::binary_search(slots.begin(), slots.end(), slot)) changed.push_back(slot);
  }
  std::sort(changed.begin(), changed.end());
  return changed;
}

std::vector<CScreenCells::CDirty> CScreenCells::follow(int firstRow, int lastRow, const CRowsChange& change,
                                                       const std::vector<int>& columns) {
  std::vector<CDirty> dirty;
  const std::vector<int> changedSlots = changedOnScreen(change);
  const bool isSamePlace = firstRow == m_firstRow && lastRow == this->lastRow();
  if (change.kind == CRowsChange::Content && changedSlots.empty() && isSamePlace) return dirty;

  const auto isSame = [&](int slot) {
    return change.newSlots == nullptr && !std::binary_search(changedSlots.begin(), changedSlots.end(), slot);
  };
  m_spare.swap(m_lines);
  m_lines.clear();
  m_lines.resize(firstRow < 0 ? 0 : at(lastRow - firstRow + 1));
  m_firstRow = std::max(firstRow, 0);
  if (isOtherScreen()) {
    for (std::size_t i = 0; i < std::max(m_lines.size(), m_spare.size()); ++i) {
      const int row = m_firstRow + static_cast<int>(i);
      if (i < m_lines.size()) m_lines[i].slot = m_rows.slotAt(row);
      dirty.push_back({row, -1});
    }
    return dirty;
  }
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    CScreenLine& line = m_lines[i];
    const int row = m_firstRow + static_cast<int>(i);
    const int slot = m_rows.slotAt(row);
    if (i < m_spare.size() && m_spare[i].slot == slot && isSame(slot)) {
      std::swap(line, m_spare[i]);
      continue;
    }
    line.slot = slot;
    if (isSame(slot)) {
      const auto moved =
          std::find_if(m_spare.begin(), m_spare.end(), [slot](const CScreenLine& one) { return one.slot == slot; });
      if (moved != m_spare.end()) line.cells = moved->cells;
    }
    if (i >= m_spare.size()) {
      dirty.push_back({row, -1});
      continue;
    }
    compare(line, m_spare[i], row, columns, dirty);
  }
  for (std::size_t i = m_lines.size(); i < m_spare.size(); ++i) dirty.push_back({m_firstRow + static_cast<int>(i), -1});
  return dirty;
}

/// Whether most rows have come from elsewhere. Then all of them are painted; looking for cells that happen to show what
/// stood in their place would cost more.
bool CScreenCells::isOtherScreen() const {
  std::vector<int> slots;
  for (const CScreenLine& line : m_spare) slots.push_back(line.slot);
  std::sort(slots.begin(), slots.end());
  std::size_t known = 0;
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    const int slot = m_rows.slotAt(m_firstRow + static_cast<int>(i));
    if (std::binary_search(slots.begin(), slots.end(), slot)) ++known;
  }
  return known * 2 < m_lines.size();
}

void CScreenCells::compare(CScreenLine& line, const CScreenLine& before, int row, const std::vector<int>& columns,
                           std::vector<CDirty>& dirty) {
  line.look = before.look;
  line.isPainted = before.isPainted;
  if (!before.isPainted) return;  // all of it is going to be painted
  for (const int columnId : columns) {
    if (at(columnId) >= before.cells.size() || !before.cells[at(columnId)].isKnown) continue;
    if (!(cell(line, columnId) == before.cells[at(columnId)])) dirty.push_back({row, columnId});
  }
}

}  // namespace GW
