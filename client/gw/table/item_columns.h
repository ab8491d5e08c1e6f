#pragma once

#include "gw/table/CItemColumn.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace GW {

/// The columns that anybody has set a cell of, by id. They are few, so that a search from the front is fastest.
using CItemColumns = std::vector<std::pair<int, CItemColumn>>;

/// Null when nobody has set a cell of the column.
inline const CItemColumn* findColumn(const CItemColumns& columns, int id) {
  const auto it = std::find_if(columns.begin(), columns.end(), [id](const auto& column) { return column.first == id; });
  return it == columns.end() ? nullptr : &it->second;
}

/// Adds it when it is missing.
inline CItemColumn& columnOf(CItemColumns& columns, int id) {
  const CItemColumn* known = findColumn(columns, id);
  return known != nullptr ? const_cast<CItemColumn&>(*known) : columns.emplace_back(id, CItemColumn()).second;
}

}  // namespace GW
