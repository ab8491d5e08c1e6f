#pragma once

#include "rdservice/CHashedPlaces.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace GW {

/// Numbers keys in the order in which they are added, without gaps, and keeps them. Keys are never removed singly, so
/// that a number is a place in plain arrays. The caller makes the hash (`CHashedPlaces::hash`). Not thread-safe.
class CKeyIndex {
 public:
  CKeyIndex();

  int size() const { return static_cast<int>(m_places.size()); }
  bool isEmpty() const { return size() == 0; }
  /// Good until the next change.
  std::string_view key(int slot) const;

  /// -1 when there is none.
  int find(std::uint32_t hash, std::string_view key) const;
  /// The key's slot, which is the last one when the key is new.
  int findOrAdd(std::uint32_t hash, std::string_view key);
  /// By old slot: the new one, -1 for dropped. The kept ones are `count` and keep their order.
  void renumber(const std::vector<int>& newSlots, int count);
  /// Bytes held.
  std::size_t memory() const;

 private:
  rdservice::CHashedPlaces m_places;
  std::vector<char> m_keys;             ///< one after another, by slot
  std::vector<std::uint32_t> m_begins;  ///< by slot, and the end of the last key
};

}  // namespace GW
