#include "rdservice/CHashedPlaces.h"

#include <cassert>
#include <functional>
#include <limits>
#include <utility>

namespace rdservice {

namespace {

constexpr std::size_t SMALLEST = 16;

}  // namespace

std::uint32_t CHashedPlaces::hash(std::string_view key) {
  const std::uint64_t wide = std::hash<std::string_view>()(key);
  return static_cast<std::uint32_t>(wide ^ (wide >> 32));
}

void CHashedPlaces::reserve(std::size_t count) {
  std::size_t size = SMALLEST;
  while (size < count * 2) size *= 2;
  if (size > m_entries.size()) grow(size);
}

void CHashedPlaces::add(std::uint32_t hash, std::size_t place) {
  assert(place < std::numeric_limits<std::uint32_t>::max() / 2);
  reserve(m_count + 1);
  insert({hash, static_cast<std::uint32_t>(place + 1)});
  ++m_count;
}

void CHashedPlaces::insert(const CEntry& entry) {
  std::size_t i = home(entry.hash);
  while (m_entries[i].number != 0) i = (i + 1) & (m_entries.size() - 1);
  m_entries[i] = entry;
}

void CHashedPlaces::grow(std::size_t size) {
  std::vector<CEntry> old(size);
  old.swap(m_entries);
  for (const CEntry& entry : old)
    if (entry.number != 0) insert(entry);
}

}  // namespace rdservice
