#pragma once

#include "gw/table/CShownRows.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace GW {

/// A column whose distinct values are offered to be chosen from. GUI thread.
class IFilterSource {
 public:
  virtual ~IFilterSource() = default;

  /// In the column's sort order; only values that some row has. Codes stay with their values as long as the source
  /// lives.
  virtual std::vector<CShownRows::CValue> values() = 0;
  virtual QString text(std::uint32_t code) const = 0;
  /// Only rows with one of the values are shown; none: every row.
  virtual void setFilter(const std::optional<std::vector<std::uint32_t>>& codes) = 0;
};

}  // namespace GW
