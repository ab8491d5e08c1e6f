#include "compacts/tables/compact_fold.h"

#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"

#include <boost/make_shared.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <unordered_map>

namespace VN {

using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsStatics;
using rdservice::CStkUnClosedCompactsStaticsPtr;

namespace {

/// What a statistic is of. Equal texts are one text of the pool, so that addresses tell; only an account may be known
/// by two objects.
struct CGroup {
  const std::string* exchangeId;
  const std::string* code;
  const rdservice::CAccountInfo* account;
  char compactType;
  char source;

  friend bool operator==(const CGroup& a, const CGroup& b) {
    return a.code == b.code && a.compactType == b.compactType && a.source == b.source && a.exchangeId == b.exchangeId &&
           a.account == b.account;
  }
};

struct CGroupHash {
  std::size_t operator()(const CGroup& group) const {
    constexpr std::size_t ODD = 0x9E3779B97F4A7C15;
    const std::hash<const void*> hash;
    const std::size_t kind = static_cast<std::size_t>(group.compactType) * 256 + static_cast<std::size_t>(group.source);
    return ((hash(group.code) * ODD + hash(group.exchangeId)) * ODD + hash(group.account)) * ODD + kind * ODD;
  }
};

CStkUnClosedCompactsStaticsPtr makeStatistic(const CStkUnClosedCompacts& compact) {
  const auto statistic = boost::make_shared<CStkUnClosedCompactsStatics>();
  statistic->exchangeId = compact.exchangeId;
  statistic->code = compact.code;
  statistic->compactType = compact.compactType;
  statistic->source = compact.source;
  statistic->accountInfo = compact.accountInfo;
  return statistic;
}

/// Compacts and statistics have the same volumes and amounts.
template <class Summand>
void add(CStkUnClosedCompactsStatics& sum, const Summand& summand) {
  sum.financingVolume += summand.financingVolume;
  sum.lendingVolume += summand.lendingVolume;
  sum.compactAmount += summand.compactAmount;
  sum.unpaidAmount += summand.unpaidAmount;
  sum.repaidAmount += summand.repaidAmount;
  sum.interestAmount += summand.interestAmount;
  sum.feeAmount += summand.feeAmount;
  sum.penaltyAmount += summand.penaltyAmount;
}

}  // namespace

std::vector<CStkUnClosedCompactsStaticsPtr> foldCompacts(const std::vector<rdservice::IDataPtr>& records) {
  std::unordered_map<CGroup, CStkUnClosedCompactsStaticsPtr, CGroupHash> groups;
  for (const rdservice::IDataPtr& record : records) {
    if (!record || record->getBaseId() != rdservice::RecordStkUnClosedCompacts) continue;
    const auto& compact = static_cast<const CStkUnClosedCompacts&>(*record);
    const CGroup group{&compact.exchangeId.str(), &compact.code.str(), compact.accountInfo.get(), compact.compactType,
                       compact.source};
    CStkUnClosedCompactsStaticsPtr& statistic = groups[group];
    if (!statistic) statistic = makeStatistic(compact);
    add(*statistic, compact);
  }
  std::map<std::string, CStkUnClosedCompactsStaticsPtr> byKey;
  for (const auto& [group, statistic] : groups) {
    CStkUnClosedCompactsStaticsPtr& known = byKey[statistic->getKey()];
    if (known)
      add(*known, *statistic);
    else
      known = statistic;
  }
  std::vector<CStkUnClosedCompactsStaticsPtr> statistics;
  statistics.reserve(byKey.size());
  for (const auto& [key, statistic] : byKey) statistics.push_back(statistic);
  return statistics;
}

}  // namespace VN
