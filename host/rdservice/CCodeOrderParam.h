#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/CStockInfo.h"

#include <cstdint>

namespace rdservice {

/// One prepared order.
struct CCodeOrderParam {
  std::int32_t operationType = 0;  ///< EOperationType
  CStockInfo stockInfo;
  CAccountInfoPtr accountInfo;
  std::int64_t volume = 0;  ///< shares, at least 1
  double price = 0;         ///< yuan; 0 for the last price
};

}  // namespace rdservice
