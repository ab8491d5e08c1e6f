#pragma once

#include "gw/files/table_reading.h"

namespace GW {

/// Reads the first sheet of an old binary spreadsheet, in a child process with bounds on memory and time. Any thread.
/// ReadNotReadable also when that program is not installed.
EReadResult readXls(const QString& path, const CTakeRow& takeRow, const CCancelFlag& isCancelled);

}  // namespace GW
