#include "bench_records.h"

#include "rdservice/CStkUnClosedCompacts.h"

#include <boost/make_shared.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

/// Cents from one amount to the next.
std::int64_t amountStep(std::int64_t count) {
  constexpr std::int64_t LARGEST = 10000000000;
  return LARGEST / count;
}

}  // namespace

rdservice::CAccountInfoPtr benchAccount() {
  static const auto info = [] {
    const auto made = boost::make_shared<rdservice::CAccountInfo>();
    made->accountId = "10010001";
    made->brokerType = 3;
    return made;
  }();
  return info;
}

std::vector<rdservice::IDataPtr> makeRecords(std::int64_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<std::int64_t> amounts(static_cast<std::size_t>(count));
  std::iota(amounts.begin(), amounts.end(), std::int64_t{0});
  std::shuffle(amounts.begin(), amounts.end(), random);
  const std::int64_t step = amountStep(count);
  std::vector<rdservice::IDataPtr> records;
  records.reserve(amounts.size());
  for (std::int64_t i = 0; i < count; ++i) {
    const auto record = boost::make_shared<rdservice::CStkUnClosedCompacts>();
    record->accountInfo = benchAccount();
    record->exchangeId = i % 2 == 0 ? "SH" : "SZ";
    record->code = std::to_string(600000 + i % BENCH_NAMES);
    record->name = "证券" + std::to_string(i % BENCH_NAMES);
    record->fieldA = fmt::format("202611{:02}{:07}", i * 7919 % 28 + 1, i);
    record->fieldB = 2460000 + int(i % 180);
    record->expiryDate = record->fieldB + 180;
    record->unpaidAmount = double(amounts[std::size_t(i)] * step) / 100;
    record->compactAmount = record->unpaidAmount + double(i % 1000);
    record->repaidAmount = double(i % 1000);
    record->interestAmount = double(i % 777) / 100;
    record->financingVolume = (i % 50) * 100;
    records.push_back(record);
  }
  return records;
}

std::vector<std::vector<rdservice::IDataPtr>> makePushes(const std::vector<rdservice::IDataPtr>& records, int count,
                                                         unsigned seed) {
  std::mt19937 random(seed);
  const std::int64_t step = amountStep(static_cast<std::int64_t>(records.size()));
  std::int64_t cents = 1 + seed % 7;  // beside the amounts that the records have
  std::vector<std::vector<rdservice::IDataPtr>> pushes(static_cast<std::size_t>(count));
  for (auto& changed : pushes) {
    for (int i = 0; i < BENCH_PUSH; ++i) {
      changed.push_back(records[random() % records.size()]->copy());
      auto& compact = static_cast<rdservice::CStkUnClosedCompacts&>(*changed.back());
      if (i % 2 == 0)
        compact.unpaidAmount = double(std::int64_t(random() % records.size()) * step + cents++ % step) / 100;
      else
        compact.interestAmount += 1;
    }
  }
  return pushes;
}
