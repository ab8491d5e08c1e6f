#include "gw/table/CKeyIndex.h"

#include "gw/table/vector_growth.h"

#include <cassert>
#include <cstring>
#include <limits>

namespace GW {

namespace {

constexpr std::size_t MIN_PLACES = 16;
constexpr std::uint64_t MULTIPLIER = 0x9E3779B97F4A7C15U;  // odd, of the golden ratio

bool isCrowded(std::size_t keys, std::size_t places) { return keys > places / 16 * 13; }

std::uint64_t blockAt(const char* begin) {
  std::uint64_t block = 0;
  std::memcpy(&block, begin, sizeof block);
  return block;
}

// A product's low bits depend only on the low bits of its factors, so the high ones are folded onto them.
std::uint64_t mixed(std::uint64_t hash, std::uint64_t block) {
  hash = (hash ^ block) * MULTIPLIER;
  return hash ^ (hash >> 32);
}

}  // namespace

std::uint64_t keyHash(std::string_view key) {
  constexpr std::size_t BLOCK = sizeof(std::uint64_t);
  std::uint64_t hash = mixed(0, key.size());
  std::size_t done = 0;
  for (; done + BLOCK <= key.size(); done += BLOCK) hash = mixed(hash, blockAt(key.data() + done));
  if (done < key.size()) {
    char rest[BLOCK] = {};
    std::memcpy(rest, key.data() + done, key.size() - done);
    hash = mixed(hash, blockAt(rest));
  }
  return mixed(mixed(hash, 0), 0);
}

void CSlotIndex::prefetch(std::uint64_t hash) const {
#if defined(__GNUC__)
  if (!m_places.empty()) __builtin_prefetch(m_places.data() + home(tagOf(hash)));
#else
  static_cast<void>(hash);
#endif
}

void CSlotIndex::reserve(std::size_t keys) {
  const std::size_t all = static_cast<std::size_t>(m_size) + keys;
  if (isCrowded(all, m_places.size())) rebuild(all, [](std::int32_t slot) { return slot; });
}

void CSlotIndex::renumber(const std::vector<int>& newSlots, int count) {
  assert(newSlots.size() == static_cast<std::size_t>(m_size));
  rebuild(static_cast<std::size_t>(count), [&newSlots](std::int32_t slot) {
    return static_cast<std::int32_t>(newSlots[static_cast<std::size_t>(slot)]);
  });
  m_size = count;
}

std::size_t CSlotIndex::memory() const { return heldBytes(m_places); }

template <class F>
void CSlotIndex::rebuild(std::size_t keys, F newSlotOf) {
  std::size_t count = MIN_PLACES;
  while (isCrowded(keys, count)) count *= 2;
  std::vector<CPlace> old(count, {0, NONE});
  old.swap(m_places);
  for (const CPlace& place : old) {
    const std::int32_t slot = place.slot == NONE ? NONE : newSlotOf(place.slot);
    if (slot == NONE) continue;
    std::size_t free = home(place.tag);
    while (m_places[free].slot != NONE) free = (free + 1) & (count - 1);
    m_places[free] = {place.tag, slot};
  }
}

CKeyIndex::CKeyIndex() : m_begins{0} {}

std::string_view CKeyIndex::key(int slot) const {
  const auto at = static_cast<std::size_t>(slot);
  return {m_keys.data() + m_begins[at], m_begins[at + 1] - m_begins[at]};
}

int CKeyIndex::find(std::uint64_t hash, std::string_view key) const {
  return m_slots.find(hash, [&](int slot) { return this->key(slot) == key; });
}

int CKeyIndex::findOrAdd(std::uint64_t hash, std::string_view key) {
  const int known = size();
  const int slot = m_slots.findOrAdd(hash, [&](int held) { return this->key(held) == key; });
  if (slot != known) return slot;
  assert(m_keys.size() + key.size() <= std::numeric_limits<std::uint32_t>::max() && "4 GiB of keys in one table");
  growFor(m_keys, m_keys.size() + key.size());
  m_keys.insert(m_keys.end(), key.begin(), key.end());
  growFor(m_begins, m_begins.size() + 1);
  m_begins.push_back(static_cast<std::uint32_t>(m_keys.size()));
  return slot;
}

void CKeyIndex::renumber(const std::vector<int>& newSlots, int count) {
  m_slots.renumber(newSlots, count);
  std::size_t slot = 0;
  std::uint32_t end = 0;
  for (std::size_t old = 0; old < newSlots.size(); ++old) {
    if (newSlots[old] < 0) continue;
    const std::uint32_t bytes = m_begins[old + 1] - m_begins[old];
    std::memmove(m_keys.data() + end, m_keys.data() + m_begins[old], bytes);
    end += bytes;
    m_begins[++slot] = end;
  }
  assert(slot == static_cast<std::size_t>(count));
  m_begins.resize(slot + 1);
  m_keys.resize(end);
}

std::size_t CKeyIndex::memory() const { return m_slots.memory() + heldBytes(m_keys) + heldBytes(m_begins); }

}  // namespace GW
