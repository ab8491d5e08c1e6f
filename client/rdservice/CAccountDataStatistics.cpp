// How the statistics of an account's unclosed compacts follow them. What the counter tells of statistics stands until
// the account's unclosed compacts are all known; from then on the statistics are made of these.

#include "rdservice/CAccountData_p.h"
#include "rdservice/prefetch.h"
#include "rdservice/rdservice_enums.h"

#include <utility>

namespace rdservice {

namespace {

constexpr int STATISTICS = RecordStkUnClosedCompactsStatics;

const CStkUnClosedCompacts& compact(const IData& record) { return static_cast<const CStkUnClosedCompacts&>(record); }

}  // namespace

std::unique_ptr<CCompactStatistics> CAccountData::Private::statisticsOf(const std::vector<IDataPtr>& compacts) {
  auto statistics = std::make_unique<CCompactStatistics>();
  for (std::size_t i = 0; i < compacts.size(); ++i) {
    if (i + PREFETCH_AHEAD < compacts.size())
      prefetch(compacts[i + PREFETCH_AHEAD].get(), sizeof(CStkUnClosedCompacts));
    statistics->add(compact(*compacts[i]));
  }
  return statistics;
}

void CAccountData::Private::countChange(int typeId, const IData* before, const IData* after) {
  if (typeId != RecordStkUnClosedCompacts || statistics == nullptr) return;
  if (before != nullptr) statistics->subtract(compact(*before));
  if (after != nullptr) statistics->add(compact(*after));
}

void CAccountData::Private::forgetStatistics(int typeId) {
  if (typeId == RecordStkUnClosedCompacts || typeId == STATISTICS) statistics.reset();
}

void CAccountData::Private::storeStatistics(CChanges& changes) {
  if (statistics == nullptr) return;
  const CCompactStatistics::CChange change = statistics->takeChange();
  if (change.statistics.empty() && !change.isWholeSet) return;
  CTypeEntry& type = types[STATISTICS];
  CTypeStore held;
  if (change.isWholeSet) {
    std::swap(held, type.store);
    ++type.generation;
  }
  std::size_t guess = 0;
  for (const IDataPtr& statistic : change.statistics) {
    CItem item{&statistic, statistic->getKey(), 0, STATISTICS};
    item.hash = CHashedPlaces::hash(item.key);
    const std::size_t before = held.find(item.hash, item.key);
    if (before != CTypeStore::NONE) type.store.append(item.hash, held.at(before), held.basis(before));
    storeItem(type, item, false, guess);
    if (item.isChanged) changes.add(std::move(item.key), std::move(item.held));
  }
}

}  // namespace rdservice
