#pragma once

#include "gw/CTableColumn.h"
#include "gw/table/CCell.h"

#include "rdservice/CExactSum.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace GW {

/// The exact sum of a column's numbers, kept while rows come, change and go. GUI thread.
class CColumnSum {
 public:
  /// Whether the column's cells can be summed up: volumes, amounts and other numbers that are no codes, and added
  /// columns.
  static bool isSummable(const CTableColumn& column);

  void add(const CTableColumn& column, const CCell& cell) { change(column, cell, 1); }
  /// The cells from slot `first` on. `items` are the column's cells by slot, null for none.
  void addAll(const CTableColumn& column, const std::vector<rdservice::IDataPtr>& records, const CItemColumn* items,
              std::size_t first);
  /// One cell becomes another.
  void replace(const CTableColumn& column, const CCell& before, const CCell& after);
  void subtract(const CTableColumn& column, const CCell& cell) { change(column, cell, -1); }

  /// As the column shows numbers; "-" while a cell is not finite or too large to be summed.
  QString text(const CTableColumn& column) const;

 private:
  void change(const CTableColumn& column, const CCell& cell, int sign);

  rdservice::CExactSum m_sum;
};

}  // namespace GW
