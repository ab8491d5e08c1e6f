#include "bench_records.h"

#include "rdservice/CStkUnClosedCompacts.h"

#include <boost/make_shared.hpp>

#include <random>

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
  std::vector<rdservice::IDataPtr> records;
  records.reserve(std::size_t(count));
  for (std::int64_t i = 0; i < count; ++i) {
    const auto record = boost::make_shared<rdservice::CStkUnClosedCompacts>();
    record->accountInfo = benchAccount();
    record->exchangeId = i % 2 == 0 ? "SH" : "SZ";
    record->code = std::to_string(600000 + i % 200);
    record->name = "证券" + std::to_string(i % 200);
    record->fieldA = "C" + std::to_string(i);
    record->fieldB = 2460000 + int(i % 180);
    record->expiryDate = record->fieldB + 180;
    record->unpaidAmount = double(random() % 100000000) / 100;
    record->compactAmount = record->unpaidAmount + double(i % 1000);
    record->repaidAmount = double(i % 1000);
    record->interestAmount = double(i % 777) / 100;
    record->financingVolume = (i % 50) * 100;
    records.push_back(record);
  }
  return records;
}
