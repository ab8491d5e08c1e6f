#include "gw/table/CKeyIndex.h"

#include "gw/table/vector_growth.h"

#include <cassert>
#include <cstring>
#include <limits>

namespace GW {

using rdservice::CHashedPlaces;

CKeyIndex::CKeyIndex() : m_begins{0} {}

std::string_view CKeyIndex::key(int slot) const {
  const auto at = static_cast<std::size_t>(slot);
  return {m_keys.data() + m_begins[at], m_begins[at + 1] - m_begins[at]};
}

int CKeyIndex::find(std::uint32_t hash, std::string_view key) const {
  const std::size_t place =
      m_places.find(hash, [&](std::size_t held) { return this->key(static_cast<int>(held)) == key; });
  return place == CHashedPlaces::NONE ? -1 : static_cast<int>(place);
}

int CKeyIndex::findOrAdd(std::uint32_t hash, std::string_view key) {
  const int known = find(hash, key);
  if (known >= 0) return known;
  assert(m_keys.size() + key.size() <= std::numeric_limits<std::uint32_t>::max() && "4 GiB of keys in one index");
  m_places.add(hash, m_places.size());
  growFor(m_keys, m_keys.size() + key.size());
  m_keys.insert(m_keys.end(), key.begin(), key.end());
  growFor(m_begins, m_begins.size() + 1);
  m_begins.push_back(static_cast<std::uint32_t>(m_keys.size()));
  return size() - 1;
}

void CKeyIndex::renumber(const std::vector<int>& newSlots, int count) {
  assert(newSlots.size() == static_cast<std::size_t>(size()));
  m_places.renumber(newSlots, static_cast<std::size_t>(count));
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

std::size_t CKeyIndex::memory() const { return m_places.memory() + heldBytes(m_keys) + heldBytes(m_begins); }

}  // namespace GW
