#pragma once

#include "host_api.h"
#include "rdservice/CAccountInfo.h"

namespace VN {

/// One of the user's trading accounts, as the user configuration lists them.
class HOST_API CAccount : public rdservice::CAccountInfo {
 public:
  CAccount();
  explicit CAccount(const rdservice::CAccountInfo& info);
  ~CAccount() override;
  CAccount(const CAccount&);
  CAccount& operator=(const CAccount&);

  rdservice::IDataPtr copy() const override;
};

using CAccountPtr = boost::shared_ptr<CAccount>;

/// Whether an account of that broker type trades in that trade type (`rdservice::EKvTraderType`; 8 is credit). With
/// `loose`, broker types that only behave like the exact one match too.
HOST_API bool isBrokerTypeMatchTradeType(int brokerType, int tradeType, bool loose);

}  // namespace VN
