// How the statistics of an account's unclosed compacts follow them. What the counter tells of statistics stands until
// the account's unclosed compacts are all known; from then on the statistics are made of these.

#include "rdservice/CAccountData_p.h"
#include "rdservice/prefetch.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/reply_marks.h"

#include <algorithm>
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
    if (isWholeSet) {
      makeStatistics();
    } else {
      wholeReplies.clear();
      droppedAt = ++lastVersion;
    }
  } else if (typeId == STATISTICS && !isWholeSet) {
    areStatisticsMade = false;
  }
}

void CAccountData::Private::makeStatistics() {
  if (!std::exchange(areStatisticsMade, true)) statistics.startOver();
}

void CAccountData::Private::takeReply(std::uint64_t mark, std::size_t stored) {
  const auto whole = wholeReplies.find(mark);
  if (whole != wholeReplies.end() && stored == whole->second && stored == statistics.compacts()) makeStatistics();
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
  std::vector<CItem> items;
  items.reserve(change.statistics.size());
  for (const IDataPtr& statistic : change.statistics) {
    items.push_back({&statistic, statistic->getKey(), 0, STATISTICS});
    items.back().hash = CHashedPlaces::hash(items.back().key);
  }
  std::sort(items.begin(), items.end(), [](const CItem& a, const CItem& b) { return a.key < b.key; });
  std::size_t guess = 0;
  for (CItem& item : items) {
    const std::size_t before = held.find(item.hash, item.key);
    if (before != CTypeStore::NONE) type.store.append(item.hash, held.at(before), held.basis(before));
    storeItem(type, item, false, guess);
    if (item.isChanged) changes.add(std::move(item.key), std::move(item.held));
  }
}

void noteWholeReply(CAccountData& account, const std::vector<IDataPtr>& records, std::uint64_t mark) {
  CAccountData::Private& d = CAccountData::Private::of(account);
  const utils::CWriteLock lock(d.mutex);
  if (mark < d.droppedAt) return;
  constexpr std::size_t MOST = 8;  // of some replies nobody stores the records
  d.wholeReplies[mark] = records.size();
  if (d.wholeReplies.size() > MOST) d.wholeReplies.erase(d.wholeReplies.begin());
}

}  // namespace rdservice
