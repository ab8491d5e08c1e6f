#pragma once

#include <string>

namespace rdservice {

/// A security as an order names it.
struct CStockInfo {
  std::string exchangeId;     ///< letters only
  std::string code;           ///< begins with a digit
  std::string name;           ///< for people; may be empty
  std::string shareholderId;  ///< the holder's number at the exchange, as the position has it; may be empty
};

}  // namespace rdservice
