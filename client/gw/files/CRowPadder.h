#pragma once

#include "gw/files/table_reading.h"

namespace GW {

/// Evens out what spreadsheet programs leave away: rows get at least the width of the first row that is not empty.
/// Empty rows are dropped.
class CRowPadder {
 public:
  explicit CRowPadder(CTakeRow takeRow) : m_takeRow(std::move(takeRow)) {}

  /// ReadWhole when the row was taken and more may come.
  EReadResult take(QStringList&& cells);

 private:
  CTakeRow m_takeRow;
  int m_width = 0;        ///< 0 before the header
  qint64 m_padCells = 0;  ///< added so far
};

}  // namespace GW
