#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace GW {

/// Spreads keys that differ in a few characters over all 64 bits. Not meant against keys chosen to collide.
std::uint64_t keyHash(std::string_view key);

/// Numbers keys in the order in which they are added, without gaps. Keys are never removed singly, so that a number is
/// a place in plain arrays. The caller makes the hash, on a thread that nobody waits for. Not thread-safe.
class CKeyIndex {
 public:
  CKeyIndex();

  int size() const { return static_cast<int>(m_begins.size()) - 1; }
  bool isEmpty() const { return size() == 0; }
  /// Good until the next change.
  std::string_view key(int slot) const;

  /// -1 when there is none. `hash` is `keyHash(key)`, also below.
  int find(std::uint64_t hash, std::string_view key) const;
  /// The key's slot, which is the last one when the key is new.
  int findOrAdd(std::uint64_t hash, std::string_view key);
  /// Fetches what `find` looks at first.
  void prefetch(std::uint64_t hash) const;

  /// For so many keys more, of so many bytes together.
  void reserve(std::size_t keys, std::size_t keyBytes);
  /// By old slot: the new one, -1 for dropped. The kept ones are `count` and keep their order.
  void renumber(const std::vector<int>& newSlots, int count);
  /// Bytes held.
  std::size_t memory() const;

 private:
  /// Tags decide nearly every comparison without a look at the key, and tell the home place when the table grows.
  struct CPlace {
    std::uint32_t tag;
    std::int32_t slot;  ///< NONE for a free place
  };
  static constexpr std::int32_t NONE = -1;

  static std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }
  std::size_t home(std::uint32_t tag) const { return tag & (m_places.size() - 1); }
  /// The key's place, or the free one where it belongs.
  std::size_t placeOf(std::uint32_t tag, std::string_view key) const;
  void append(std::string_view key);
  /// A new table for so many keys, of the old places whose slot `newSlotOf` keeps.
  template <class F>
  void rebuild(std::size_t keys, F newSlotOf);

  std::vector<CPlace> m_places;         ///< open addressing, linear probing; a power of two, at most 13/16 taken
  std::vector<char> m_keys;             ///< one after another, by slot
  std::vector<std::uint32_t> m_begins;  ///< by slot, and the end of the last key
};

}  // namespace GW
