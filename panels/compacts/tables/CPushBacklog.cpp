#include "compacts/tables/CPushBacklog.h"

#include "compacts/tables/compact_records.h"

#include <algorithm>
#include <utility>

namespace VN {

using rdservice::IDataPtr;

namespace {

/// Equal for pushes of one compact that the same tests decide on.
std::string placeKey(const rdservice::IData& record) {
  std::string key = record.getKey();
  key += static_cast<char>(compactTypeOf(record));
  key += record.isOfReply() ? 'r' : 'p';
  return key;
}

}  // namespace

bool CPushBacklog::add(IDataPtr record) {
  std::string key = placeKey(*record);
  const utils::CMutexLock lock(m_mutex);
  const auto [place, isNew] = m_places.emplace(std::move(key), m_records.size());
  if (!isNew) {
    // Calls of the store may overtake each other. The older one is freed after the lock.
    if (IDataPtr& waiting = m_records[place->second]; waiting->version() < record->version()) waiting.swap(record);
    ++m_load.folded;
    return false;
  }
  m_records.push_back(std::move(record));
  m_load.mostWaiting = std::max(m_load.mostWaiting, m_records.size());
  return m_records.size() == 1;
}

std::vector<IDataPtr> CPushBacklog::take() {
  std::vector<IDataPtr> records;
  std::unordered_map<std::string, std::size_t> places;  // freed after the lock
  const utils::CMutexLock lock(m_mutex);
  places.swap(m_places);
  records.swap(m_records);
  return records;
}

CPushLoad CPushBacklog::takeLoad() {
  const utils::CMutexLock lock(m_mutex);
  CPushLoad load = std::exchange(m_load, CPushLoad());
  m_load.mostWaiting = m_records.size();
  return load;
}

}  // namespace VN
