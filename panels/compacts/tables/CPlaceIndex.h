#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace VN {

/// Finds places in an array by a text of the element that stands there, without keeping the texts: 8 bytes for each of
/// its slots. The owner compares; an entry whose element has another text by now is never found again. Not thread-safe.
class CPlaceIndex {
 public:
  static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

  static std::uint64_t hashOf(std::string_view text) { return std::hash<std::string_view>()(text); }

  /// The place whose text `isIt(place)` confirms, or NONE. It is asked for hardly any place but the right one.
  template <class F>
  std::size_t find(std::uint64_t hash, F isIt) const {
    if (m_slots.empty()) return NONE;
    const std::uint32_t tag = tagOf(hash);
    for (std::size_t at = tag & mask(); m_slots[at].behind != 0; at = (at + 1) & mask())
      if (m_slots[at].tag == tag && isIt(m_slots[at].behind - 1)) return m_slots[at].behind - 1;
    return NONE;
  }

  /// Adds a place that is not found under its text. Places below 2^32 - 1.
  void add(std::uint64_t hash, std::size_t place) {
    if ((m_used + 1) * 4 > m_slots.size() * 3) grow();
    insert({tagOf(hash), static_cast<std::uint32_t>(place + 1)});
    ++m_used;
  }

  /// For so many places.
  void reserve(std::size_t count) {
    while (count * 4 > m_slots.size() * 3) grow();
  }

  /// Bytes held.
  std::size_t memory() const { return m_slots.capacity() * sizeof(CSlot); }

 private:
  struct CSlot {
    std::uint32_t tag = 0;     ///< spares a look at the text, and tells where the entry belongs when the table grows
    std::uint32_t behind = 0;  ///< the place + 1; 0 in a free slot
  };
  static constexpr std::size_t FIRST_SIZE = 16;

  static std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }
  std::size_t mask() const { return m_slots.size() - 1; }

  void insert(CSlot slot) {
    std::size_t at = slot.tag & mask();
    while (m_slots[at].behind != 0) at = (at + 1) & mask();
    m_slots[at] = slot;
  }

  void grow() {
    std::vector<CSlot> old(m_slots.empty() ? FIRST_SIZE : m_slots.size() * 2);
    old.swap(m_slots);
    for (const CSlot& slot : old)
      if (slot.behind != 0) insert(slot);
  }

  std::vector<CSlot> m_slots;  ///< open addressing, linear probing; a power of two, at most 3/4 taken
  std::size_t m_used = 0;
};

}  // namespace VN
