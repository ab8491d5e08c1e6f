#pragma once

#include <QtGlobal>

namespace GW {

// What a table file may hold. Small tables are a thousandth of it; files beyond it are hostile or a mistake.

constexpr int MAX_LINE = 1 << 20;  ///< bytes of a line of text; characters of a spreadsheet row
constexpr int MAX_SHEET_ROWS = 1'048'576;
constexpr int MAX_SHEET_COLUMNS = 16'384;
constexpr qint64 MAX_PAD_CELLS = 16'000'000;  ///< empty cells added to short rows
constexpr int MAX_CELL = 32'767;              ///< characters of a cell that spreadsheet programs accept

constexpr qint64 MAX_PART_BYTES = qint64{256} << 20;  ///< of one unpacked part of an .xlsx
constexpr qint64 MAX_ALL_BYTES = qint64{384} << 20;   ///< of all parts that are read
constexpr int MAX_SHARED_STRINGS = 2'000'000;
constexpr int MAX_SHARED_CHARS = 32 << 20;
constexpr qint64 MAX_XLS_BYTES = qint64{64} << 20;  ///< freexl holds the file in memory

}  // namespace GW
