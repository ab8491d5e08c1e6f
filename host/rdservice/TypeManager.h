#pragma once

#include "host_api.h"

#include <string>
#include <string_view>
#include <vector>

namespace rdservice {

/// One value of an enumeration with the name that users see.
struct CEnumItem {
  int value;
  std::string name;  ///< UTF-8
};

/// Names of the trading service's enumeration values. Any thread.
class HOST_API TypeManager {
 public:
  /// Name of `value` in the enumeration `typeName` ("rdservice::EKVCompactBrushSource") for a trader type; the decimal
  /// text of the value when the enumeration does not have it.
  static std::string getEnumItemName(std::string_view typeName, int value, int traderType);

  /// Every value of the enumeration, in order; empty for an unknown one.
  static const std::vector<CEnumItem>& enumItems(std::string_view typeName);
};

/// Name of an operation (EOperationType) as users see it; the decimal text of an unknown one. Any thread.
HOST_API std::string operationValueToString(int operationType);

}  // namespace rdservice
