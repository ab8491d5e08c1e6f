#pragma once

#include "gw/table/CShownRows.h"

#include <cstdint>
#include <vector>

namespace GW {

/// A set of slots.
class CSlotSet {
 public:
  bool contains(int slot) const {
    const auto word = static_cast<std::size_t>(slot) / 64;
    return slot >= 0 && word < m_words.size() && (m_words[word] >> (slot % 64) & 1) != 0;
  }
  int size() const { return m_size; }
  void set(int slot, bool on);
  /// 0 to count - 1.
  void setFirst(int count);
  std::vector<int> all() const;

  friend bool operator==(const CSlotSet& a, const CSlotSet& b);

 private:
  std::vector<std::uint64_t> m_words;
  int m_size = 0;
};

/// The selected rows of a table, the row at which a range begins (anchor) and the current row; all three stay with
/// their records. A row that is no longer displayed is not selected. GUI thread.
class CRowSelection {
 public:
  explicit CRowSelection(const CShownRows& rows);

  bool isSelected(int slot) const { return m_selected.contains(slot); }
  int count() const { return m_selected.size(); }
  /// Displayed rows, rising.
  std::vector<int> rows() const;

  void clear();
  void selectAll();
  /// Only these rows.
  void select(int firstRow, int lastRow);
  void add(int row, bool on);

  /// Begins a range at a row: only this one is selected; with `toggles` it changes its state and the others stay.
  void begin(int row, bool toggles);
  /// The range goes from the anchor to this row, which may be above it, and no longer where it went before. Rows
  /// outside of it are as they were when it began; with `keepsOthers` false none of them is selected. Without an anchor
  /// it begins here.
  void extend(int row, bool keepsOthers);

  /// Slots; -1 for none.
  int anchor() const { return m_anchor; }
  int current() const { return m_current; }
  void setCurrent(int slot) { m_current = slot; }

  void rowsChanged(const CRowsChange& change);

  /// Another number after every change of what is selected.
  std::uint64_t revision() const { return m_revision; }

 private:
  void replace(CSlotSet selected);
  CSlotSet moved(const CSlotSet& from, const std::vector<int>& newSlots) const;
  void dropHidden();

  const CShownRows& m_rows;
  CSlotSet m_selected;
  CSlotSet m_base;  ///< what was selected when the range began
  bool m_keepsOthers = false;
  bool m_selects = true;  ///< what the range does with its rows
  int m_rangeEnd = -1;    ///< displayed row; -1 when the rows have moved since, or the selection was changed otherwise
  int m_anchor = -1;
  int m_current = -1;
  std::uint64_t m_revision = 0;
};

}  // namespace GW
