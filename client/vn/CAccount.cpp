#include "vn/CAccount.h"

#include "rdservice/rdservice_enums.h"

#include <boost/make_shared.hpp>

namespace VN {

namespace {

struct CBrokerTypeMatch {
  int brokerType;
  int tradeType;
  bool exact;  // false: matches under the loose rule only
};

constexpr CBrokerTypeMatch MATCHES[] = {
    {rdservice::BrokerTypeStock, rdservice::TraderTypeStock, true},
    {rdservice::BrokerTypeCredit, rdservice::TraderTypeStock, false},
    {rdservice::BrokerTypeCredit, rdservice::TraderTypeStockCredit, true},
    {rdservice::BrokerTypeCreditInstitution, rdservice::TraderTypeStockCredit, false},
};

}  // namespace

CAccount::CAccount() = default;
CAccount::CAccount(const rdservice::CAccountInfo& info) : CAccountInfo(info) {}
CAccount::~CAccount() = default;
CAccount::CAccount(const CAccount&) = default;
CAccount& CAccount::operator=(const CAccount&) = default;

rdservice::IDataPtr CAccount::copy() const { return boost::make_shared<CAccount>(*this); }

bool isBrokerTypeMatchTradeType(int brokerType, int tradeType, bool loose) {
  for (const CBrokerTypeMatch& match : MATCHES)
    if (match.brokerType == brokerType && match.tradeType == tradeType) return match.exact || loose;
  return false;
}

}  // namespace VN
