#include "rdservice/CTypeStore.h"

#include "rdservice/CStructDes.h"

#include <cassert>
#include <utility>

namespace rdservice {

void CTypeStore::reserve(std::size_t count) {
  m_records.reserve(count);
  m_bases.reserve(count);
  m_places.reserve(count);
}

std::size_t CTypeStore::find(std::uint32_t hash, const std::string& key) const {
  return m_places.find(hash, [&](std::size_t place) { return m_records[place]->getKey() == key; });
}

std::size_t CTypeStore::find(std::uint32_t hash, const std::string& key, std::size_t guess) const {
  return guess < size() && m_records[guess]->getKey() == key ? guess : find(hash, key);
}

void CTypeStore::expect(std::uint32_t hash, std::size_t guess) const {
  constexpr std::size_t USED_BYTES = 256;  // of a large record
  if (guess + PREFETCH_AHEAD < size())
    prefetch(m_records[guess + PREFETCH_AHEAD].get(), USED_BYTES);
  else
    m_places.expect(hash);
}

const IDataPtr& CTypeStore::at(std::size_t place) const {
  const IDataPtr& record = m_records[place];
#ifndef NDEBUG
  assert(fingerprint(*record) == m_fingerprints[place] && "a published record was written to");
#endif
  return record;
}

std::size_t CTypeStore::append(std::uint32_t hash, IDataPtr record, std::uint64_t basis) {
  const std::size_t place = m_records.size();
  assert(find(hash, record->getKey()) == NONE);
  m_places.add(hash, place);
#ifndef NDEBUG
  m_fingerprints.push_back(fingerprint(*record));
#endif
  m_records.push_back(std::move(record));
  m_bases.push_back(basis);
  return place;
}

IDataPtr CTypeStore::replace(std::size_t place, IDataPtr record, std::uint64_t basis) {
  IDataPtr old = at(place);
#ifndef NDEBUG
  m_fingerprints[place] = fingerprint(*record);
#endif
  m_records[place] = std::move(record);
  m_bases[place] = basis;
  return old;
}

}  // namespace rdservice
