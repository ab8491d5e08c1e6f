#include "compacts/tables/CPageCache.h"

#include "compacts/tables/compact_records.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"

namespace VN {

using rdservice::IDataPtr;

bool CPageRules::takes(const IDataPtr& record) const {
  return record && record->getBaseId() == recordType && isOfType(*record, compactType);
}

std::string_view positionOf(const rdservice::IData& record) {
  switch (record.getBaseId()) {
    case rdservice::RecordStkUnClosedCompacts:
      return static_cast<const rdservice::CStkUnClosedCompacts&>(record).positionString;
    case rdservice::RecordStkClosedCompacts:
      return static_cast<const rdservice::CStkClosedCompacts&>(record).positionString;
    default: return {};
  }
}

CPageCache::CPageCache(const std::vector<IDataPtr>& records, const CPageRules& rules)
    : m_compactType(rules.compactType) {
  if (rules.repeats) indexPositions();
  m_records.reserve(records.size());
  m_keys.reserve(records.size());
  for (const IDataPtr& record : records)
    if (rules.takes(record)) put(record, CPlaceIndex::hashOf(record->getKey()));
}

std::size_t CPageCache::find(const std::string& key) const {
  return m_keys.find(CPlaceIndex::hashOf(key), [&](std::size_t place) { return m_records[place]->getKey() == key; });
}

std::size_t CPageCache::find(std::uint64_t keyHash, const rdservice::IData& record) const {
  return m_keys.find(keyHash, [&](std::size_t place) { return m_records[place]->getKey() == record.getKey(); });
}

bool CPageCache::hasPosition(std::string_view position) const {
  const auto isIt = [&](std::size_t place) { return positionOf(*m_records[place]) == position; };
  return !position.empty() && m_positions.find(CPlaceIndex::hashOf(position), isIt) != NONE;
}

void CPageCache::indexPositions() {
  if (m_hasPositions) return;
  m_hasPositions = true;
  m_positions.reserve(m_records.size());
  for (std::size_t place = 0; place < m_records.size(); ++place) addPosition(place);
}

void CPageCache::addPosition(std::size_t place) {
  const std::string_view position = positionOf(*m_records[place]);
  if (m_hasPositions && !position.empty() && !hasPosition(position))
    m_positions.add(CPlaceIndex::hashOf(position), place);
}

IDataPtr CPageCache::put(IDataPtr record, std::uint64_t keyHash) {
  const std::size_t place = find(keyHash, *record);
  if (place == NONE) {
    m_records.push_back(std::move(record));
    m_keys.add(keyHash, m_records.size() - 1);
    addPosition(m_records.size() - 1);
    return nullptr;
  }
  m_records[place].swap(record);
  if (positionOf(*record) != positionOf(*m_records[place])) addPosition(place);
  return record;
}

std::vector<IDataPtr> CPageCache::release() {
  std::vector<IDataPtr> released = std::move(m_records);
  *this = CPageCache();
  return released;
}

std::size_t CPageCache::memory() const {
  return m_records.capacity() * sizeof(IDataPtr) + m_keys.memory() + m_positions.memory();
}

}  // namespace VN
