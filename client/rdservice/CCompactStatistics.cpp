#include "rdservice/CCompactStatistics.h"

#include "rdservice/hash_mix.h"

#include <boost/smart_ptr/make_shared.hpp>

#include <string>
#include <utility>

namespace rdservice {

namespace {

using CCompact = CStkUnClosedCompacts;
using CStatistic = CStkUnClosedCompactsStatics;

struct CVolume {
  std::int64_t CCompact::*of;
  std::int64_t CStatistic::*sum;
};
constexpr CVolume VOLUME_FIELDS[] = {{&CCompact::financingVolume, &CStatistic::financingVolume},
                                     {&CCompact::lendingVolume, &CStatistic::lendingVolume}};

struct CAmount {
  double CCompact::*of;
  double CStatistic::*sum;
};
constexpr CAmount AMOUNT_FIELDS[] = {
    {&CCompact::compactAmount, &CStatistic::compactAmount}, {&CCompact::unpaidAmount, &CStatistic::unpaidAmount},
    {&CCompact::repaidAmount, &CStatistic::repaidAmount},   {&CCompact::interestAmount, &CStatistic::interestAmount},
    {&CCompact::feeAmount, &CStatistic::feeAmount},         {&CCompact::penaltyAmount, &CStatistic::penaltyAmount}};

bool isOwed(const CCompact& compact) {
  return compact.financingVolume != 0 || compact.lendingVolume != 0 || compact.unpaidAmount != 0 ||
         compact.interestAmount != 0 || compact.feeAmount != 0 || compact.penaltyAmount != 0;
}

std::uint64_t number(const void* address) { return reinterpret_cast<std::uintptr_t>(address); }

}  // namespace

bool CCompactStatistics::CGroup::operator==(const CGroup& other) const {
  return code == other.code && compactType == other.compactType && source == other.source &&
         exchangeId == other.exchangeId;
}

std::size_t CCompactStatistics::CGroupHash::operator()(const CGroup& group) const {
  const std::uint64_t kind =
      static_cast<unsigned char>(group.compactType) * 256U + static_cast<unsigned char>(group.source);
  return mixHash(mixHash(number(group.code), number(group.exchangeId)), kind);
}

void CCompactStatistics::change(const CStkUnClosedCompacts& compact, int sign) {
  if (!isOwed(compact)) return;
  m_compacts += static_cast<std::size_t>(sign);
  const CGroup group{&compact.exchangeId.str(), &compact.code.str(), compact.compactType, compact.source};
  CSums& sums = m_groups[group];
  if (sums.compacts == 0) {
    sums.exchangeId = compact.exchangeId;
    sums.code = compact.code;
    sums.account = compact.accountInfo;
  }
  for (std::size_t i = 0; i < VOLUMES; ++i) sums.volumes[i] += sign * (compact.*VOLUME_FIELDS[i].of);
  for (std::size_t i = 0; i < AMOUNTS; ++i) sums.amounts[i].change(compact.*AMOUNT_FIELDS[i].of, sign);
  sums.compacts += static_cast<std::size_t>(sign);
  if (!std::exchange(sums.isChanged, true)) m_changed.push_back(group);
}

IDataPtr CCompactStatistics::statisticOf(const CGroups::value_type& group) {
  const auto& [key, sums] = group;
  const auto statistic = boost::make_shared<CStatistic>();
  statistic->exchangeId = sums.exchangeId;
  statistic->code = sums.code;
  statistic->compactType = key.compactType;
  statistic->source = key.source;
  statistic->accountInfo = sums.account;
  for (std::size_t i = 0; i < VOLUMES; ++i) (*statistic).*VOLUME_FIELDS[i].sum = sums.volumes[i];
  for (std::size_t i = 0; i < AMOUNTS; ++i) (*statistic).*AMOUNT_FIELDS[i].sum = sums.amounts[i].value();
  return statistic;
}

CCompactStatistics::CChange CCompactStatistics::takeChange() {
  CChange change;
  std::vector<CGroups::const_iterator> changed;
  for (const CGroup& group : std::exchange(m_changed, {})) {
    const auto found = m_groups.find(group);
    found->second.isChanged = false;
    if (found->second.compacts > 0) {
      changed.push_back(found);
    } else {
      m_groups.erase(found);  // no iterator to another one suffers
      m_isOtherSet = true;
    }
  }
  change.isWholeSet = std::exchange(m_isOtherSet, false);
  if (change.isWholeSet) {
    change.statistics = all();
  } else {
    for (const auto& group : changed) change.statistics.push_back(statisticOf(*group));
  }
  return change;
}

std::vector<IDataPtr> CCompactStatistics::all() const {
  std::vector<IDataPtr> statistics;
  statistics.reserve(m_groups.size());
  for (const auto& group : m_groups) statistics.push_back(statisticOf(group));
  return statistics;
}

}  // namespace rdservice
