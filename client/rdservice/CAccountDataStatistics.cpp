// How the statistics of an account's unclosed compacts follow them. What the counter tells of statistics stands until
// the account's unclosed compacts are all known; from then on the statistics are made of these.

#include "rdservice/CAccountData_p.h"
#include "rdservice/prefetch.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/reply_marks.h"

#include <utility>

namespace rdservice {

namespace {

constexpr int STATISTICS = RecordStkUnClosedCompactsStatics;

const CStkUnClosedCompacts& compact(const IData& record) { return static_cast<const CStkUnClosedCompacts&>(record); }

}  // namespace

CCompactStatistics CAccountData::Private::countOf(int typeId, const std::vector<IDataPtr>& records) {
  CCompactStatistics counted;
  if (typeId != RecordStkUnClosedCompacts) return counted;
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (i + PREFETCH_AHEAD < records.size()) prefetch(records[i + PREFETCH_AHEAD].get(), sizeof(CStkUnClosedCompacts));
    counted.add(compact(*records[i]));
  }
  return counted;
}

void CAccountData::Private::countChange(int typeId, const IData* before, const IData* after) {
  if (typeId != RecordStkUnClosedCompacts) return;
  if (before != nullptr) statistics.subtract(compact(*before));
  if (after != nullptr) statistics.add(compact(*after));
}

void CAccountData::Private::countAnew(int typeId, CCompactStatistics&& counted, bool isWholeSet) {
  if (typeId == RecordStkUnClosedCompacts) {
    statistics = std::move(counted);
    areStatisticsMade = false;
    if (isWholeSet) makeStatistics();
  } else if (typeId == STATISTICS && !isWholeSet) {
    areStatisticsMade = false;
  }
}

void CAccountData::Private::makeStatistics() {
  if (!std::exchange(areStatisticsMade, true)) statistics.startOver();
}

void CAccountData::Private::takeWholeReply(std::size_t stored) {
  if (stored == wholeCount && stored == types[RecordStkUnClosedCompacts].store.size()) makeStatistics();
}

void CAccountData::Private::storeStatistics(CChanges& changes) {
  if (!areStatisticsMade) return;
  const CCompactStatistics::CChange change = statistics.takeChange();
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

void noteWholeReply(CAccountData& account, const std::vector<IDataPtr>& records, std::uint64_t mark) {
  CAccountData::Private& d = CAccountData::Private::of(account);
  const utils::CWriteLock lock(d.mutex);
  d.wholeMark = mark;
  d.wholeCount = records.size();
}

}  // namespace rdservice
