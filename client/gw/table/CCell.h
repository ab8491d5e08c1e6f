#pragma once

#include "gw/table/CItemColumn.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <cstring>

namespace GW {

/// Where the content of one cell stands: in the row's record or among the column's items.
struct CCell {
  const rdservice::IData* record;
  const CItemColumn* items;  ///< null: nobody has set a cell of the column
  int index;                 ///< of the cell in `items`

  const QString& text() const {
    static const QString none;
    return items == nullptr ? none : items->text(index);
  }
  bool isVisible() const { return items == nullptr || items->isVisible(index); }
  bool isChecked() const { return items != nullptr && items->isChecked(index); }
  bool hasValue() const { return items != nullptr && items->hasValue(index); }
  qint64 value() const { return items == nullptr ? 0 : items->value(index); }
};

constexpr std::uint64_t TOP_BIT = std::uint64_t{1} << 63;

/// Numbers as unsigned ones in the same order.
inline std::uint64_t sortable(std::int64_t value) { return static_cast<std::uint64_t>(value) ^ TOP_BIT; }

inline std::uint64_t sortable(double value) {
  value += 0.0;  // -0.0 equals 0.0
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & TOP_BIT) != 0 ? ~bits : bits | TOP_BIT;
}

}  // namespace GW
