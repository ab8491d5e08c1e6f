#pragma once

#include <cstddef>
#include <cstdint>

namespace VN {

/// Pushed compacts on their way to the rows, since somebody last took these numbers.
struct CPushLoad {
  std::size_t mostWaiting = 0;  ///< most that waited at once, after folding
  std::uint64_t folded = 0;     ///< that never became rows, because a newer one of their compact came while they waited
};

}  // namespace VN
