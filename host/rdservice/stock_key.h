#pragma once

#include "host_api.h"

#include <string>
#include <string_view>

namespace rdservice {

/// Exchange and instrument code, split out of a stock key.
struct CStockKeyParts {
  std::string exchangeId;
  std::string code;
};

/// Exchange id immediately followed by the instrument code.
HOST_API std::string makeStockKey(std::string_view exchangeId, std::string_view code);

/// The parts of a stock key. Exchange ids hold letters only and codes begin with a digit, so the first digit divides
/// them; a text without a digit is all exchange.
HOST_API CStockKeyParts splitStockKey(std::string_view stockKey);

}  // namespace rdservice
