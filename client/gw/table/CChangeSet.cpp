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
  records.push_back({record, CHashedPlaces::hash(key), appendKey(key), static_cast<std::uint32_t>(key.size())});
}

void CChangeSet::add(const CItemChange& item) {
  gather(item, !records.empty() && item.key == key(records.back()), item.key);
}

void CChangeSet::add(const CItemChange& item, const QString& key) {
  if (isOfLast(key))
    gather(item, true, {});
  else
    gather(item, false, key.toStdString());
}

/// Without converting the key, which most often is.
bool CChangeSet::isOfLast(const QString& key) const {
  if (records.empty()) return false;
  const std::string_view last = this->key(records.back());
  const bool isOfSize = static_cast<std::size_t>(key.size()) == last.size();
  ushort bits = 0;
  ushort differing = 0;
  for (int i = 0; i < key.size(); ++i) {
    const ushort character = key[i].unicode();
    bits |= character;
    if (isOfSize) differing |= character ^ static_cast<unsigned char>(last[static_cast<std::size_t>(i)]);
  }
  constexpr ushort ASCII_END = 0x80;
  return bits < ASCII_END ? isOfSize && differing == 0 : key.toStdString() == last;
}

void CChangeSet::gather(const CItemChange& item, bool isOfLast, std::string_view key) {
  CItem gathered{item.text, item.value, static_cast<std::uint32_t>(records.size()), 0, 0, 0, item.column, item.part,
                 item.on,   isOfLast};
  if (!isOfLast) {
    gathered.hash = CHashedPlaces::hash(key);
    gathered.keyBegin = appendKey(key);
    gathered.keySize = static_cast<std::uint32_t>(key.size());
  }
  items.push_back(std::move(gathered));
}

std::uint32_t CChangeSet::appendKey(std::string_view key) {
  assert(m_keys.size() + key.size() <= std::numeric_limits<std::uint32_t>::max() && "4 GiB of keys in one batch");
  const std::size_t begin = m_keys.size();
  m_keys.insert(m_keys.end(), key.begin(), key.end());
  return static_cast<std::uint32_t>(begin);
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
