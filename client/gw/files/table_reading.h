#pragma once

#include "gw/files.h"

#include <QStringList>

#include <atomic>
#include <functional>

namespace GW {

/// Takes one row; false ends the reading, which then counts as cancelled.
using CTakeRow = std::function<bool(QStringList&& cells)>;

/// Set from another thread to end a reading or writing soon.
using CCancelFlag = std::atomic<bool>;

}  // namespace GW
