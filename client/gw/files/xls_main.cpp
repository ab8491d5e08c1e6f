// compacts-xls FILE: the first sheet of an old binary spreadsheet, on standard output (see xls_protocol.h).
//
// A program of its own, because the library that it calls does not survive every damaged file.

#include "gw/files/number_digits.h"
#include "gw/files/xls_protocol.h"

#include <freexl.h>

#include <sys/resource.h>

#include <cstdio>
#include <string>

namespace {

constexpr rlim_t MEMORY = rlim_t{256} << 20;
constexpr rlim_t SECONDS = 20;

// Sanitizers map more than any limit.
#if defined(__has_feature)
#  if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#    define HAS_SANITIZER
#  endif
#endif
#if defined(HAS_SANITIZER) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IS_MEMORY_LIMITED = false;
#else
constexpr bool IS_MEMORY_LIMITED = true;
#endif

bool limit(int what, rlim_t most) {
  const rlimit value{most, most};
  return setrlimit(static_cast<__rlimit_resource>(what), &value) == 0;
}

bool limitAll() {
  return (!IS_MEMORY_LIMITED || limit(RLIMIT_AS, MEMORY)) && limit(RLIMIT_CPU, SECONDS) && limit(RLIMIT_CORE, 0) &&
         limit(RLIMIT_FSIZE, 0);
}

bool put(std::uint32_t word) { return std::fwrite(&word, sizeof word, 1, stdout) == 1; }

bool put(const std::string& text) {
  return put(static_cast<std::uint32_t>(text.size())) &&
         (text.empty() || std::fwrite(text.data(), text.size(), 1, stdout) == 1);
}

std::string textOf(const FreeXL_CellValue& cell) {
  switch (cell.type) {
    case FREEXL_CELL_INT: return GW::numberDigits(cell.value.int_value);
    case FREEXL_CELL_DOUBLE: return GW::numberDigits(cell.value.double_value);
    case FREEXL_CELL_TEXT:
    case FREEXL_CELL_SST_TEXT:
    case FREEXL_CELL_DATE:
    case FREEXL_CELL_DATETIME:
    case FREEXL_CELL_TIME: return cell.value.text_value != nullptr ? cell.value.text_value : "";
    default: return {};
  }
}

bool putSheet(const void* book) {
  unsigned rows = 0;
  unsigned short columns = 0;
  if (freexl_select_active_worksheet(book, 0) != FREEXL_OK ||
      freexl_worksheet_dimensions(book, &rows, &columns) != FREEXL_OK)
    return false;
  for (unsigned row = 0; row < rows; ++row) {
    if (!put(std::uint32_t{columns})) return false;
    for (unsigned short column = 0; column < columns; ++column) {
      FreeXL_CellValue cell{};
      if (freexl_get_cell_value(book, row, column, &cell) != FREEXL_OK || !put(textOf(cell))) return false;
    }
  }
  return put(GW::XLS_END);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || !limitAll()) return 2;
  const void* book = nullptr;
  if (freexl_open(argv[1], &book) != FREEXL_OK || book == nullptr) return 1;
  const bool isWhole = putSheet(book) && std::fflush(stdout) == 0;
  freexl_close(book);
  return isWhole ? 0 : 1;
}
