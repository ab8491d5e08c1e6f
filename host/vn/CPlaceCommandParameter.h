#pragma once

#include "rdservice/CCodeOrderParam.h"

#include <map>
#include <string>
#include <vector>

namespace VN {

/// A batch of orders for `CTradeClient::placeCommands`.
struct CPlaceCommandParameter {
  int batchNo = 0;    ///< the user's number of the batch, noted with its orders; 0 for none
  int tradeType = 0;  ///< kind of the commands, EKvTraderType; this client places those of credit accounts, 8
  int priceMode = 0;  ///< 0: each order at its own price; this client knows no other
  std::vector<rdservice::CCodeOrderParam> orders;
  int confirmed = 0;   ///< 1: the user has been asked already
  std::string remark;  ///< noted with the orders; may be empty
  /// By account key, the share of each order's volume that the account places, above 0; shares of a share are dropped.
  /// Empty: each order is placed whole for its own account.
  std::map<std::string, double> accountRatios;
};

}  // namespace VN
