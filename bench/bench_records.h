#pragma once

#include "rdservice/CAccountInfo.h"
#include "rdservice/IData.h"

#include <cstdint>
#include <vector>

/// The account of all records.
rdservice::CAccountInfoPtr benchAccount();

constexpr int BENCH_NAMES = 200;  ///< securities
constexpr int BENCH_PUSH = 100;   ///< records of a push

/// Unclosed compacts with unpaid amounts of which no two are equal, in random order; the same for the same seed.
std::vector<rdservice::IDataPtr> makeRecords(std::int64_t count, unsigned seed);

/// Batches of changed copies: every other one has another unpaid amount, the others another interest.
std::vector<std::vector<rdservice::IDataPtr>> makePushes(const std::vector<rdservice::IDataPtr>& records, int count,
                                                         unsigned seed);
