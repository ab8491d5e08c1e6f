#pragma once

#include "gw/CTableChanges.h"
#include "gw/CTableColumn.h"

namespace GW {

/// The text of a cell; without a delegate or field it is empty.
inline QString cellTextOf(const CTableColumn& column, int columnId, const CShownRow& row) {
  if (column.delegate) {
    const CItemState& item = itemOf(row.items, columnId);
    return item.visible ? item.text : QString();
  }
  return column.field == nullptr ? QString() : QString::fromStdString(rdservice::fieldText(*column.field, *row.record));
}

}  // namespace GW
