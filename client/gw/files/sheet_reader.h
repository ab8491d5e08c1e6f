#pragma once

#include "gw/files/table_reading.h"

class QIODevice;

namespace GW {

/// Reads the first visible sheet of an .xlsx row by row, so that only its shared texts are held in memory. `device` is
/// seekable. Any thread.
EReadResult readXlsx(QIODevice& device, const CTakeRow& takeRow, const CCancelFlag& isCancelled);

}  // namespace GW
