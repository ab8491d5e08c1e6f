#include "compacts/tables/compact_records.h"

#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/stock_key.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace VN {

using rdservice::CStkClosedCompacts;
using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;

namespace {

constexpr int RENEWAL_COUNTERS[] = {200, 102};

}  // namespace

rdservice::CAccountDataPtr accountDataOf(const std::string& account) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account);
}

rdservice::CAccountInfoPtr accountInfoOf(const rdservice::IData& record) {
  switch (record.getBaseId()) {
    case rdservice::RecordStkUnClosedCompacts: return static_cast<const CStkUnClosedCompacts&>(record).accountInfo;
    case rdservice::RecordStkClosedCompacts: return static_cast<const CStkClosedCompacts&>(record).accountInfo;
    default: return nullptr;
  }
}

int counterTypeOf(const rdservice::IData& record) {
  const rdservice::CAccountInfoPtr account = accountInfoOf(record);
  return account ? account->counterType : 0;
}

int compactTypeOf(const rdservice::IData& record) {
  switch (record.getBaseId()) {
    case rdservice::RecordStkUnClosedCompacts: return static_cast<const CStkUnClosedCompacts&>(record).compactType;
    case rdservice::RecordStkClosedCompacts: return static_cast<const CStkClosedCompacts&>(record).compactType;
    default: return rdservice::CompactTypeAll;
  }
}

bool isOfType(const rdservice::IData& record, int compactType) {
  return compactType == rdservice::CompactTypeAll || compactTypeOf(record) == compactType;
}

rdservice::CPositionStaticsPtr positionOf(const rdservice::CAccountDataPtr& store, const std::string& exchangeId,
                                          const std::string& code) {
  return rdservice::CPositionStaticsHelper::getPosition(store, exchangeId, code, rdservice::EntrustDirectionBuy,
                                                        rdservice::HedgeFlagSpeculation, rdservice::PositionKindHeld,
                                                        std::string(), '0');
}

bool isRenewalCounter(int counterType) {
  return std::find(std::begin(RENEWAL_COUNTERS), std::end(RENEWAL_COUNTERS), counterType) != std::end(RENEWAL_COUNTERS);
}

std::vector<IDataPtr> storePriorities(const std::string& account, const std::vector<IDataPtr>& responses,
                                      const std::map<std::string, std::string>& labels, const char* modifyTag) {
  std::vector<IDataPtr> changed;
  const rdservice::CAccountDataPtr store = accountDataOf(account);
  if (!store) return changed;
  for (const IDataPtr& record : responses) {
    const auto response = boost::dynamic_pointer_cast<rdservice::CCreditRepayPriorityResp>(record);
    const auto label = response ? labels.find(response->fieldA) : labels.end();
    if (label == labels.end()) continue;
    const rdservice::CStockKeyParts stock = rdservice::splitStockKey(label->second);
    const std::string key = CStkUnClosedCompacts::genKey(store->getAccountInfo(), stock.exchangeId, stock.code,
                                                         std::atoi(response->fieldB.c_str()), response->fieldA);
    const IDataPtr held = store->modifyData(rdservice::RecordStkUnClosedCompacts, key, [&](rdservice::IData& stored) {
      auto& compact = static_cast<CStkUnClosedCompacts&>(stored);
      compact.repayPriority = response->repayPriority;
      if (modifyTag != nullptr) compact.modifyTag = modifyTag;
    });
    if (held) changed.push_back(held);
  }
  return changed;
}

std::vector<IDataPtr> pageOf(const std::vector<IDataPtr>& records, int page, int pageSize) {
  const auto size = static_cast<std::size_t>(pageSize);
  const std::size_t begin = std::min(records.size(), static_cast<std::size_t>(page - 1) * size);
  const std::size_t end = std::min(records.size(), begin + size);
  const auto at = [&records](std::size_t index) { return records.begin() + static_cast<std::ptrdiff_t>(index); };
  return {at(begin), at(end)};
}

}  // namespace VN
