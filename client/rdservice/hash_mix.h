#pragma once

#include <cstdint>

namespace rdservice {

/// Folds `value` into `hash`; every bit of either reaches every bit of the result, and order counts.
constexpr std::uint64_t mixHash(std::uint64_t hash, std::uint64_t value) {
  hash = (hash + 0x9E3779B97F4A7C15u) ^ value;
  hash = (hash ^ (hash >> 30)) * 0xBF58476D1CE4E5B9u;
  hash = (hash ^ (hash >> 27)) * 0x94D049BB133111EBu;
  return hash ^ (hash >> 31);
}

}  // namespace rdservice
