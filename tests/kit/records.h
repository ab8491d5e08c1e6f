#pragma once

#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkUnClosedCompacts.h"

#include <string>
#include <vector>

namespace GW {
class CBaseHighPerformanceTable;
}

namespace kit {

/// An unclosed compact of SH 600000, financing unless said otherwise; `number` is its compact number.
rdservice::CStkUnClosedCompactsPtr compact(const rdservice::CAccountInfoPtr& account, const std::string& number,
                                           double unpaid = 1000, char type = '0');

/// A closed compact of the same security.
rdservice::CStkClosedCompactsPtr closedCompact(const rdservice::CAccountInfoPtr& account, const std::string& number,
                                               double repaid = 1000, char type = '0');

/// Id of the column with that title; -1 when there is none.
int columnOf(const GW::CBaseHighPerformanceTable& table, const std::string& title);

/// The displayed texts of the columns with those titles, a line each row, cells joined by " | ".
std::vector<std::string> visible(const GW::CBaseHighPerformanceTable& table, const std::vector<std::string>& titles);

}  // namespace kit
