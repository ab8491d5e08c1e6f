#pragma once

#include "gw/table/vector_growth.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace GW {

/// A set of slots, a bit for each.
class CSlotBits {
 public:
  int count() const { return m_count; }
  bool has(int slot) const { return (wordAt(slot) >> bitOf(slot) & 1U) != 0; }
  /// The first one from `slot` on; -1 when there is none.
  int next(int slot) const {
    std::uint64_t word = wordAt(slot) >> bitOf(slot) << bitOf(slot);
    for (std::size_t at = indexOf(slot); at < m_words.size(); word = ++at < m_words.size() ? m_words[at] : 0) {
      if (word != 0) return static_cast<int>(at * BITS + lowestOf(word));
    }
    return -1;
  }
  int countBetween(std::size_t first, std::size_t end) const {
    int count = 0;
    int slot = next(static_cast<int>(first));
    for (; slot >= 0 && static_cast<std::size_t>(slot) < end; slot = next(slot + 1)) ++count;
    return count;
  }

  void set(int slot, bool on) {
    const std::size_t at = indexOf(slot);
    if (at >= m_words.size()) {
      growFor(m_words, at + 1);
      m_words.resize(at + 1);
    }
    if (has(slot) == on) return;
    m_words[at] ^= std::uint64_t{1} << bitOf(slot);
    m_count += on ? 1 : -1;
  }

  /// Of the slots below `size` those that `isIn` says.
  template <class F>
  void assign(std::size_t size, F isIn) {
    m_words.assign((size + BITS - 1) / BITS, 0);
    m_count = 0;
    for (std::size_t at = 0; at < m_words.size(); ++at) {
      const std::size_t end = std::min(size, (at + 1) * BITS);
      std::uint64_t word = 0;
      for (std::size_t slot = at * BITS; slot < end; ++slot) word |= std::uint64_t{isIn(slot) ? 1U : 0U} << slot % BITS;
      m_words[at] = word;
      m_count += static_cast<int>(std::bitset<BITS>(word).count());
    }
  }
  void clear() {
    m_words.clear();
    m_count = 0;
  }

  std::size_t memory() const { return heldBytes(m_words); }

 private:
  static constexpr std::size_t BITS = 64;

  static std::size_t indexOf(int slot) { return static_cast<std::size_t>(slot) / BITS; }
  static std::size_t bitOf(int slot) { return static_cast<std::size_t>(slot) % BITS; }
  std::uint64_t wordAt(int slot) const { return indexOf(slot) < m_words.size() ? m_words[indexOf(slot)] : 0; }
  static std::size_t lowestOf(std::uint64_t word) { return std::bitset<BITS>((word & (~word + 1)) - 1).count(); }

  std::vector<std::uint64_t> m_words;
  int m_count = 0;
};

}  // namespace GW
