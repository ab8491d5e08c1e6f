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

std::size_t CTypeStore::find(const std::string& key) const {
  const auto found = m_places.find(key);
  return found == m_places.end() ? NONE : found->second;
}

const IDataPtr& CTypeStore::at(std::size_t place) const {
  const IDataPtr& record = m_records[place];
#ifndef NDEBUG
  assert(fingerprint(*record) == m_fingerprints[place] && "a published record was written to");
#endif
  return record;
}

std::size_t CTypeStore::append(const std::string& key, IDataPtr record, std::uint64_t basis) {
  const std::size_t place = m_records.size();
  [[maybe_unused]] const bool isNew = m_places.emplace(key, place).second;
  assert(isNew);
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
