#pragma once

#include "rdservice/IData.h"

#include <cstddef>
#include <vector>

namespace GW {

/// Asks for the memory of a record that a loop will come to a few records later. Records stand all over the memory, and
/// waiting for each in turn takes longer than all work on it.
inline void prefetchRecord(const std::vector<rdservice::IDataPtr>& records, std::size_t index) {
#ifdef __GNUC__
  constexpr std::size_t AHEAD = 6;
  constexpr std::size_t LINE = 64;
  constexpr std::size_t USED_LINES = 5;
  if (index + AHEAD >= records.size()) return;
  const char* memory = reinterpret_cast<const char*>(records[index + AHEAD].get());
  for (std::size_t line = 0; line < USED_LINES; ++line) __builtin_prefetch(memory + line * LINE);
#else
  static_cast<void>(records);
  static_cast<void>(index);
#endif
}

}  // namespace GW
