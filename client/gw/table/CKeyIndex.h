#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace GW {

/// Spreads keys that differ in a few characters over all 64 bits. Not meant against keys chosen to collide.
std::uint64_t keyHash(std::string_view key);

/// Numbers keys in the order in which they are added, without gaps. Keys are never removed singly, so that a number is
/// a place in plain arrays. The keys themselves stand elsewhere: `isSame(slot)` tells whether that slot's is the one
/// looked for; it is seldom asked in vain. The caller makes the hash, on a thread that nobody waits for. Not
/// thread-safe.
class CSlotIndex {
 public:
  int size() const { return m_size; }

  /// -1 when there is none. `hash` is the `keyHash` of the key, also below.
  template <class F>
  int find(std::uint64_t hash, F isSame) const {
    return m_places.empty() ? NONE : m_places[placeOf(tagOf(hash), isSame)].slot;
  }
  /// The key's slot, which is the last one when the key is new.
  template <class F>
  int findOrAdd(std::uint64_t hash, F isSame) {
    reserve(1);
    CPlace& place = m_places[placeOf(tagOf(hash), isSame)];
    if (place.slot == NONE) place = {tagOf(hash), m_size++};
    return place.slot;
  }
  /// Fetches what `find` looks at first.
  void prefetch(std::uint64_t hash) const;

  /// For so many keys more.
  void reserve(std::size_t keys);
  /// By old slot: the new one, -1 for dropped. The kept ones are `count`.
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
  template <class F>
  std::size_t placeOf(std::uint32_t tag, F isSame) const {
    std::size_t place = home(tag);
    for (; m_places[place].slot != NONE; place = (place + 1) & (m_places.size() - 1)) {
      if (m_places[place].tag == tag && isSame(m_places[place].slot)) break;
    }
    return place;
  }
  /// A new table for so many keys, of the old places whose slot `newSlotOf` keeps.
  template <class F>
  void rebuild(std::size_t keys, F newSlotOf);

  std::vector<CPlace> m_places;  ///< open addressing, linear probing; a power of two, at most 13/16 taken
  int m_size = 0;
};

/// The same with the keys in it.
class CKeyIndex {
 public:
  CKeyIndex();

  int size() const { return m_slots.size(); }
  bool isEmpty() const { return size() == 0; }
  /// Good until the next change.
  std::string_view key(int slot) const;

  int find(std::uint64_t hash, std::string_view key) const;
  int findOrAdd(std::uint64_t hash, std::string_view key);
  /// By old slot: the new one, -1 for dropped. The kept ones are `count` and keep their order.
  void renumber(const std::vector<int>& newSlots, int count);
  std::size_t memory() const;

 private:
  CSlotIndex m_slots;
  std::vector<char> m_keys;             ///< one after another, by slot
  std::vector<std::uint32_t> m_begins;  ///< by slot, and the end of the last key
};

}  // namespace GW
