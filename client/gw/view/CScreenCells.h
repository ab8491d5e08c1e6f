#pragma once

#include "gw/table/CShownRows.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace GW {

/// What a cell on screen shows.
struct CScreenCell {
  QString text;
  std::optional<qint64> value;
  bool isVisible = true;
  bool isEnabled = true;
  bool isChecked = false;
  bool isKnown = false;  ///< false: not asked for yet, therefore not painted

  friend bool operator==(const CScreenCell& a, const CScreenCell& b) {
    return a.isVisible == b.isVisible && a.isEnabled == b.isEnabled && a.isChecked == b.isChecked &&
           a.isKnown == b.isKnown && a.value == b.value && a.text == b.text;
  }
};

/// How a row on screen looks apart from its cells.
struct CScreenLook {
  bool isOdd = false;
  bool isSelected = false;
  int currentColumn = -1;  ///< the current cell's column in the current row
  bool isCurrent = false;

  friend bool operator==(const CScreenLook& a, const CScreenLook& b) {
    return a.isOdd == b.isOdd && a.isSelected == b.isSelected && a.isCurrent == b.isCurrent &&
           a.currentColumn == b.currentColumn;
  }
};

struct CScreenLine {
  int slot = -1;
  CScreenLook look;
  bool isPainted = false;          ///< false: to be painted for the first time, `look` is not set
  std::vector<CScreenCell> cells;  ///< by column id
};

/// What stands on the screen: formatted once when it is painted, and compared with what it becomes when rows change, so
/// that only what differs is painted again. GUI thread.
class CScreenCells {
 public:
  explicit CScreenCells(const CShownRows& rows);

  /// Asks for everything again.
  void forget();
  void forgetCell(int slot, int columnId);
  void forgetColumn(int columnId);

  /// The rows on screen after scrolling; -1 and -1 for none. What stays on screen stays known.
  void scrollTo(int firstRow, int lastRow);
  int firstRow() const { return m_firstRow; }
  int lastRow() const { return m_firstRow + static_cast<int>(m_lines.size()) - 1; }
  /// Of a row on screen.
  CScreenLine& line(int row) { return m_lines[static_cast<std::size_t>(row - m_firstRow)]; }
  const CScreenCell& cell(CScreenLine& line, int columnId);

  /// Something on screen that must be painted again: a cell, or the whole row when the column is -1.
  struct CDirty {
    int row;
    int columnId;
  };
  /// After a change: the rows now on screen, and what became different at the same distance from the first one.
  /// `columns` are those on screen.
  std::vector<CDirty> follow(int firstRow, int lastRow, const CRowsChange& change, const std::vector<int>& columns);

 private:
  void read(CScreenCell& cell, int slot, int columnId) const;
  void compare(CScreenLine& line, const CScreenLine& before, int row, const std::vector<int>& columns,
               std::vector<CDirty>& dirty);
  bool isOtherScreen() const;
  std::vector<int> changedOnScreen(const CRowsChange& change) const;

  const CShownRows& m_rows;
  int m_firstRow = 0;
  std::vector<CScreenLine> m_lines;
  std::vector<CScreenLine> m_spare;  ///< keeps its memory
};

}  // namespace GW
