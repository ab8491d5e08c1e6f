#pragma once

#include <cstdint>

namespace GW {

// What the program that reads old spreadsheets says on its standard output, in the machine's byte order: for each row
// a word with the number of its cells, and for each cell a word with its length and so many bytes of UTF-8. XLS_END
// comes last; without it the program did not reach the end.

constexpr char XLS_PROGRAM[] = "compacts-xls";
constexpr std::uint32_t XLS_END = 0xFFFFFFFF;

}  // namespace GW
