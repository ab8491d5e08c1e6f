#include "gw/table/CChangeSet.h"

#include "rdservice/CHashedPlaces.h"

#include <algorithm>
#include <cassert>
#include <limits>
#include <utility>

namespace GW {

using rdservice::CHashedPlaces;

namespace {

constexpr std::size_t USUAL_KEY_BYTES = 48;

thread_local CChangeGatherer* t_innermost = nullptr;

}  // namespace

void CChangeSet::add(const rdservice::IDataPtr& record) {
  if (!record) return;
  const std::string key = record->getKey();
  assert(m_keys.size() + key.size() <= std::numeric_limits<std::uint32_t>::max() && "4 GiB of keys in one batch");
  records.push_back({record, CHashedPlaces::hash(key), static_cast<std::uint32_t>(m_keys.size()),
                     static_cast<std::uint32_t>(key.size())});
  m_keys.insert(m_keys.end(), key.begin(), key.end());
}

void CChangeSet::add(CItemChange item) {
  item.records = records.size();
  item.isOfLast = !records.empty() && item.key == key(records.back());
  if (item.isOfLast)
    item.key.clear();
  else
    item.hash = CHashedPlaces::hash(item.key);
  items.push_back(std::move(item));
}

void CChangeSet::reserve(std::size_t count) {
  if (records.size() + count <= records.capacity()) return;
  // At least doubled: a batch may be given many short lists.
  const std::size_t all = std::max(records.size() + count, 2 * records.capacity());
  records.reserve(all);
  m_keys.reserve(all * USUAL_KEY_BYTES);
}

CChangeGatherer::CChangeGatherer(const CSharedRows* rows)
    : m_rows(rows), m_outer(t_innermost), m_thread(std::this_thread::get_id()) {
  t_innermost = this;
}

CChangeGatherer::~CChangeGatherer() { stop(); }

void CChangeGatherer::stop() {
  if (!isGathering()) return;
  assert(m_thread == std::this_thread::get_id() && "a batch belongs to one thread");
  // Usually the innermost, but an outer batch may well be committed before an inner one of another table.
  CChangeGatherer** link = &t_innermost;
  while (*link != this) link = &(*link)->m_outer;
  *link = m_outer;
  m_rows = nullptr;
}

CChangeSet* CChangeGatherer::find(const CSharedRows* rows) {
  for (CChangeGatherer* gatherer = t_innermost; gatherer != nullptr; gatherer = gatherer->m_outer) {
    if (gatherer->m_rows == rows) return &gatherer->changes;
  }
  return nullptr;
}

}  // namespace GW
