#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <vector>

/// The account of all records.
rdservice::CAccountInfoPtr benchAccount();

/// Unclosed compacts with random unpaid amounts, in 200 securities; the same for the same seed.
std::vector<rdservice::IDataPtr> makeRecords(std::int64_t count, unsigned seed);
