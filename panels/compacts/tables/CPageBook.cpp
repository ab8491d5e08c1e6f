#include "compacts/tables/CPageBook.h"

#include "compacts/tables/compact_fields.h"

#include <algorithm>
#include <cassert>
#include <unordered_set>

namespace VN {

using rdservice::IDataPtr;

namespace {

std::size_t sizeOf(int pageSize) { return static_cast<std::size_t>(pageSize > 0 ? pageSize : PAGE_SIZE); }

}  // namespace

void CPageBatch::setHeld(std::vector<IDataPtr> held) {
  assert(held.size() == m_records.size());
  m_records = std::move(held);
  m_keyHashes.clear();
  m_keyHashes.reserve(m_records.size());
  for (const IDataPtr& record : m_records) m_keyHashes.push_back(CPlaceIndex::hashOf(record->getKey()));
}

CPageStep CPageBook::reset(bool dropCache) {
  m_position.clear();
  m_page = 1;
  m_isOut = false;
  m_isVoid = true;
  CPageStep step{CPageStep::Nothing, ++m_number};
  if (dropCache) step.dropped = m_cache.release();
  return step;
}

CPageStep CPageBook::beginQuery() {
  CPageStep step{CPageStep::Query, ++m_number};
  if (m_isVoid) step.dropped = m_cache.release();
  m_isVoid = false;
  m_isOut = true;
  step.position = m_position;
  return step;
}

std::optional<CPageBatch> CPageBook::sift(std::uint64_t number, const std::vector<IDataPtr>& reply,
                                          const CPageRules& rules) {
  if (!isOut(number)) return std::nullopt;
  if (rules.repeats) m_cache.indexPositions();
  CPageBatch batch;
  batch.m_compactType = rules.compactType;
  batch.m_records.reserve(reply.size());
  std::unordered_set<std::string_view> positions;  // of this batch
  for (const IDataPtr& record : reply) {
    const bool isOwn = record && record->getBaseId() == rules.recordType;
    if (!isOwn) continue;
    const std::string_view position = positionOf(*record);
    if (!rules.repeats) batch.m_position.emplace(position);
    if (!rules.takes(record)) continue;
    if (rules.repeats) {
      if (m_cache.hasPosition(position) || (!position.empty() && !positions.insert(position).second)) continue;
      batch.m_position.emplace(position);
    }
    batch.m_records.push_back(record);
  }
  return batch;
}

CPageStep CPageBook::accept(std::uint64_t number, CPageBatch batch, int pageSize) {
  if (!isOut(number)) return stale();
  if (batch.m_keyHashes.size() != batch.m_records.size()) batch.setHeld(batch.m_records);
  m_isOut = false;
  m_cache.setCompactType(batch.m_compactType);
  std::vector<IDataPtr> replaced;
  for (std::size_t i = 0; i < batch.m_records.size(); ++i)
    if (IDataPtr old = m_cache.put(batch.m_records[i], batch.m_keyHashes[i])) replaced.push_back(std::move(old));
  if (batch.m_position) m_position = *batch.m_position;
  CPageStep step = batch.m_records.empty() ? stepBack(pageSize) : show(pageSize);
  step.dropped = std::move(replaced);
  return step;
}

CPageStep CPageBook::fail(std::uint64_t number, int pageSize) {
  if (!isOut(number)) return stale();
  m_isOut = false;
  return stepBack(pageSize);
}

CPageStep CPageBook::rebuild(std::uint64_t number, CPageCache& cache, int pageSize,
                             std::optional<std::string> position) {
  if (number != m_number) return stale();
  std::swap(m_cache, cache);
  m_isOut = false;
  m_isVoid = false;
  if (position) m_position = std::move(*position);
  CPageStep step = show(pageSize);
  step.dropped = cache.release();
  return step;
}

CPageStep CPageBook::press(GW::EPagingButton button, int pageSize, int compactType) {
  if (m_isOut) return {};
  switch (button) {
    case GW::PagingFirst: m_page = 1; break;
    case GW::PagingPrevious: m_page = std::max(1, m_page - 1); break;
    case GW::PagingNext:
      ++m_page;
      if (m_cache.size() <= sizeOf(pageSize) * static_cast<std::size_t>(m_page - 1)) return beginQuery();
      break;
    case GW::PagingLast: return {};
  }
  ++m_number;
  // A cache kept over a change of the compact type is not what the table shows now.
  const bool isOfOtherType = compactType != m_cache.compactType() && !m_cache.empty();
  const bool isReloaded = compactType != rdservice::CompactTypeAll && button != GW::PagingNext;
  if (isOfOtherType || isReloaded) return {CPageStep::Reload, m_number};
  return show(pageSize);
}

void CPageBook::renew(const IDataPtr& record) {
  const std::string key = record->getKey();
  const std::size_t place = m_cache.find(key);
  if (place != CPageCache::NONE && record->version() > m_cache.at(place)->version())
    m_cache.put(record, CPlaceIndex::hashOf(key));
}

CPageStep CPageBook::show(int pageSize) {
  const std::size_t size = sizeOf(pageSize);
  const std::size_t pages = (m_cache.size() + size - 1) / size;
  m_page = std::min(m_page, std::max(1, static_cast<int>(pages)));
  const std::size_t begin = static_cast<std::size_t>(m_page - 1) * size;
  return {CPageStep::Show, m_number, begin, std::min(m_cache.size(), begin + size)};
}

CPageStep CPageBook::stepBack(int pageSize) {
  m_page = std::max(1, m_page - 1);
  return show(pageSize);
}

CPageButtons CPageBook::buttons(int pageSize) const {
  if (m_isOut) return {};
  const bool isNotFirst = m_page != 1;
  return {isNotFirst, isNotFirst, m_cache.size() >= sizeOf(pageSize) * static_cast<std::size_t>(m_page)};
}

std::vector<IDataPtr> CPageBook::records(const CPageStep& step) const {
  const std::size_t end = std::min(step.end, m_cache.size());
  std::vector<IDataPtr> page;
  page.reserve(end - std::min(step.begin, end));
  for (std::size_t place = step.begin; place < end; ++place) page.push_back(m_cache.at(place));
  return page;
}

int CPageBook::indexOf(const std::string& key) const {
  const std::size_t place = m_isVoid ? CPageCache::NONE : m_cache.find(key);
  return place == CPageCache::NONE ? 0 : static_cast<int>(place) + 1;
}

}  // namespace VN
