#pragma once

#include "gw/CTableColumn.h"
#include "gw/table/CCell.h"

#include <QString>

namespace GW {

/// What the cell shows: the field's text, a delegate's text while the item is visible (nothing for boxes), the value
/// or text of an added column.
QString cellText(const CTableColumn& column, const CCell& cell);

}  // namespace GW
