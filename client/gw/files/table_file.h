#pragma once

#include "gw/files/table_reading.h"

namespace GW {

/// Reads a table; what kind of file it is, its first bytes tell. A line of a text file comes as a row of one cell.
/// Any thread.
EReadResult readTableFile(const QString& path, const CTakeRow& takeRow, const CCancelFlag& isCancelled,
                          bool* isSpreadsheet = nullptr);

}  // namespace GW
