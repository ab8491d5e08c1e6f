#pragma once

#include "vn/CHpfDataTable.h"

#include <cstddef>

/// A field of a table's record type, and a text that its column has room for.
struct CFieldSample {
  int field;
  const char* sample;
};

inline int widthFor(const VN::CHpfDataTable& table, const char* sample) {
  constexpr int PADDING = 16;
  return table.fontMetrics().horizontalAdvance(QString::fromUtf8(sample)) + PADDING;
}

template <std::size_t N>
void setColumnWidths(VN::CHpfDataTable& table, const CFieldSample (&samples)[N]) {
  for (const CFieldSample& row : samples)
    table.setColumnWidth(table.getColumnIdByFileId(table.recordType() * 100 + row.field), widthFor(table, row.sample));
}
