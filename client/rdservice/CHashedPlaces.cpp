#include "rdservice/CHashedPlaces.h"

#include <cassert>
#include <cstring>
#include <limits>
#include <utility>

namespace rdservice {

namespace {

constexpr std::size_t SMALLEST = 16;
constexpr std::uint64_t MULTIPLIER = 0x9E3779B97F4A7C15U;  // odd, of the golden ratio

// A product's low bits depend only on the low bits of its factors, so the high ones are folded onto them.
std::uint64_t mixed(std::uint64_t hash, std::uint64_t block) {
  hash = (hash ^ block) * MULTIPLIER;
  return hash ^ (hash >> 32);
}

}  // namespace

std::uint32_t CHashedPlaces::hash(std::string_view key) {
  constexpr std::size_t BLOCK = sizeof(std::uint64_t);
  const auto blockAt = [](const char* begin, std::size_t size) {
    std::uint64_t block = 0;
    std::memcpy(&block, begin, size);
    return block;
  };
  std::uint64_t hash = mixed(0, key.size());
  std::size_t done = 0;
  for (; done + BLOCK <= key.size(); done += BLOCK) hash = mixed(hash, blockAt(key.data() + done, BLOCK));
  if (done < key.size()) hash = mixed(hash, blockAt(key.data() + done, key.size() - done));
  return static_cast<std::uint32_t>(mixed(mixed(hash, 0), 0) >> 32);
}

void CHashedPlaces::reserve(std::size_t count) {
  if (!isCrowded(count, m_entries.size())) return;
  std::size_t size = SMALLEST;
  while (isCrowded(count, size)) size *= 2;
  std::vector<CEntry> old(size);
  old.swap(m_entries);
  for (const CEntry& entry : old)
    if (entry.number != 0) insert(entry);
}

void CHashedPlaces::add(std::uint32_t hash, std::size_t place) {
  assert(place < std::numeric_limits<std::uint32_t>::max() / 2);
  reserve(m_count + 1);
  insert({hash, static_cast<std::uint32_t>(place + 1)});
  ++m_count;
}

void CHashedPlaces::renumber(const std::vector<int>& newPlaces, std::size_t count) {
  std::size_t size = SMALLEST;
  while (isCrowded(count, size)) size *= 2;
  std::vector<CEntry> old(size);
  old.swap(m_entries);
  for (const CEntry& entry : old) {
    const int place = entry.number == 0 ? -1 : newPlaces[entry.number - 1];
    if (place >= 0) insert({entry.hash, static_cast<std::uint32_t>(place) + 1});
  }
  m_count = count;
}

void CHashedPlaces::insert(const CEntry& entry) {
  std::size_t i = home(entry.hash);
  while (m_entries[i].number != 0) i = (i + 1) & (m_entries.size() - 1);
  m_entries[i] = entry;
}

}  // namespace rdservice
