#include "rdservice/records.h"

#include "rdservice/CStructDes.h"

#include <boost/smart_ptr/make_shared.hpp>

namespace test {

namespace {

constexpr std::int32_t OPEN_DAY = 2460370;  // 2024-02-29

template <class Record>
boost::shared_ptr<Record> makeCompact(const std::string& compactNo) {
  auto record = boost::make_shared<Record>();
  record->accountInfo = creditAccount();
  record->exchangeId = "SH";
  record->code = "600000";
  record->fieldA = compactNo;
  record->fieldB = OPEN_DAY;
  return record;
}

}  // namespace

rdservice::CAccountInfoPtr creditAccount() {
  static const auto s_account = [] {
    auto account = boost::make_shared<rdservice::CAccountInfo>();
    account->accountId = "10010001";
    account->brokerType = 3;
    return account;
  }();
  return s_account;
}

rdservice::CStkUnClosedCompactsPtr openCompact(const std::string& compactNo, std::int64_t volume) {
  auto record = makeCompact<rdservice::CStkUnClosedCompacts>(compactNo);
  record->financingVolume = volume;
  return record;
}

rdservice::CStkClosedCompactsPtr closedCompact(const std::string& compactNo) {
  return makeCompact<rdservice::CStkClosedCompacts>(compactNo);
}

std::string openKey(const std::string& compactNo) {
  return rdservice::CStkUnClosedCompacts::genKey(creditAccount(), "SH", "600000", OPEN_DAY, compactNo);
}

std::string numbersOf(const std::vector<rdservice::IDataPtr>& records) {
  std::string numbers;
  for (const auto& record : records) {
    if (!numbers.empty()) numbers += ' ';
    const auto* field = record == nullptr ? nullptr : record->getStructDes().fieldByName("compact_no");
    numbers += field == nullptr ? "-" : field->get<std::string>(*record);
  }
  return numbers;
}

}  // namespace test
