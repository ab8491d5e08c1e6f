#pragma once

#include <cstddef>

namespace rdservice {

/// So many steps before a loop reads something that is seldom in the cache, it asks for it: waiting for each in turn
/// takes longer than all work on it.
constexpr std::size_t PREFETCH_AHEAD = 8;

/// Asks for a piece of memory; any address will do.
inline void prefetch(const void* memory, std::size_t bytes = 1) {
#ifdef __GNUC__
  constexpr std::size_t LINE = 64;
  for (std::size_t offset = 0; offset < bytes; offset += LINE)
    __builtin_prefetch(static_cast<const char*>(memory) + offset);
#else
  static_cast<void>(memory);
  static_cast<void>(bytes);
#endif
}

}  // namespace rdservice
