#include "rdservice/stock_key.h"

#include <algorithm>

namespace rdservice {

std::string makeStockKey(std::string_view exchangeId, std::string_view code) {
  std::string key;
  key.reserve(exchangeId.size() + code.size());
  return key.append(exchangeId).append(code);
}

CStockKeyParts splitStockKey(std::string_view stockKey) {
  const std::size_t digit = std::min(stockKey.find_first_of("0123456789"), stockKey.size());
  return {std::string(stockKey.substr(0, digit)), std::string(stockKey.substr(digit))};
}

}  // namespace rdservice
