#include "gw/CTableChanges.h"

#include <algorithm>
#include <cassert>

namespace GW {

namespace {

thread_local CChangeGatherer* t_innermost = nullptr;

}  // namespace

const CItemState& itemOf(const CItemStates& items, int column) {
  static const CItemState none;
  const auto it = std::find_if(items.begin(), items.end(), [column](const auto& item) { return item.first == column; });
  return it == items.end() ? none : it->second;
}

void CTableChanges::add(const rdservice::IDataPtr& record) {
  if (record) records.push_back({record->getKey(), record});
}

void CTableChanges::add(CItemChange item) {
  item.records = records.size();
  items.push_back(std::move(item));
}

CChangeGatherer::CChangeGatherer(const CTableStore* store)
    : m_store(store), m_outer(t_innermost), m_thread(std::this_thread::get_id()) {
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
  m_store = nullptr;
}

CTableChanges* CChangeGatherer::find(const CTableStore* store) {
  for (CChangeGatherer* gatherer = t_innermost; gatherer != nullptr; gatherer = gatherer->m_outer) {
    if (gatherer->m_store == store) return &gatherer->changes;
  }
  return nullptr;
}

}  // namespace GW
