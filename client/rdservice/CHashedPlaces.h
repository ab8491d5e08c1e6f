#pragma once

#include "rdservice/prefetch.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace rdservice {

/// Finds places in a sequence by the hashes of their keys. The keys themselves are not kept: whoever looks one up tells
/// whether it is the one that stands at a place, and is seldom asked in vain. Hashes are made by the caller, outside
/// his locks. Whoever owns it locks.
class CHashedPlaces {
 public:
  static constexpr std::size_t NONE = static_cast<std::size_t>(-1);

  /// Spreads keys that differ in a few characters over all bits. Not meant against keys chosen to collide.
  static std::uint32_t hash(std::string_view key);

  /// For so many keys in all.
  void reserve(std::size_t count);
  std::size_t size() const { return m_count; }

  /// The place with that hash for which `isSame` says true; NONE without one.
  template <class IsSame>
  std::size_t find(std::uint32_t hash, IsSame isSame) const {
    if (m_entries.empty()) return NONE;
    for (std::size_t i = home(hash);; i = (i + 1) & (m_entries.size() - 1)) {
      const CEntry& entry = m_entries[i];
      if (entry.number == 0) return NONE;
      if (entry.hash == hash && isSame(static_cast<std::size_t>(entry.number - 1))) return entry.number - 1;
    }
  }

  /// Said some steps before a hash is looked up or added, in long loops.
  void expect(std::uint32_t hash) const {
    if (!m_entries.empty()) prefetch(&m_entries[home(hash)]);
  }

  /// The key must not be there. At most 2^31 places.
  void add(std::uint32_t hash, std::size_t place);

  /// By old place: the new one, -1 for dropped ones; `count` stay.
  void renumber(const std::vector<int>& newPlaces, std::size_t count);

  /// Bytes held.
  std::size_t memory() const { return m_entries.capacity() * sizeof(CEntry); }

 private:
  /// In open addressing; a power of two, at most 13/16 in use.
  struct CEntry {
    std::uint32_t hash = 0;
    std::uint32_t number = 0;  ///< place + 1; 0: free
  };

  static bool isCrowded(std::size_t count, std::size_t size) { return count > size / 16 * 13; }

  std::size_t home(std::uint32_t hash) const {
    return static_cast<std::size_t>((static_cast<std::uint64_t>(hash) * m_entries.size()) >> 32);
  }
  void insert(const CEntry& entry);

  std::vector<CEntry> m_entries;
  std::size_t m_count = 0;
};

}  // namespace rdservice
