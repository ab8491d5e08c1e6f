#pragma once

#include "rdservice/CStkUnClosedCompactsStatics.h"

#include <vector>

namespace VN {

/// One statistic for each security, compact type, source and account of the unclosed compacts among the records, with
/// their volumes and amounts added up, in the order of the statistics' keys. Null and other records are skipped.
std::vector<rdservice::CStkUnClosedCompactsStaticsPtr> foldCompacts(const std::vector<rdservice::IDataPtr>& records);

}  // namespace VN
