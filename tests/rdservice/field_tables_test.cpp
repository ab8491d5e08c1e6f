#include "rdservice/records.h"

#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CQueryAppointmentInfoReq.h"
#include "rdservice/CQueryAppointmentInfoResp.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CQueryDataReq.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkOrder.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/CStructDes.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "rdservice/TypeManager.h"
#include "rdservice/field_text.h"
#include "rdservice/service_requests.h"

#include <gtest/gtest.h>

#include <boost/smart_ptr/make_shared.hpp>

#include <cstdint>
#include <set>

using namespace rdservice;

namespace {

template <class... Records>
std::vector<IDataPtr> makeAll() {
  return {boost::make_shared<Records>()...};
}

/// One empty record of every type.
std::vector<IDataPtr> everyRecord() {
  return makeAll<CAccountInfo, CInstrumentInfo, CStkUnClosedCompacts, CStkClosedCompacts, CStkUnClosedCompactsStatics,
                 CStkCompactChange, CCreditRepayPriorityResp, CQueryCompactReqV2, CQueryDataReq, CLoginReq,
                 CQueryAccountsReq, CQueryInstrumentsReq, CPositionStatics, CPriceData, CStkOrder, CPlaceOrderReq,
                 CSubscribeQuotesReq, CSetCreditRepayPriorityReq, CCreditCompactRenewalApply, CQueryAppointmentInfoReq,
                 CQueryAppointmentInfoResp, StockSMTQueryAppointmentInfoResp, CErrorResp>();
}

bool isPrice(const CFieldDes& field) { return std::string_view(field.name).find("price") != std::string_view::npos; }

/// A valid text that differs from what an empty record holds in the field.
std::string otherText(const CFieldDes& field, const IData& empty) {
  if (field.format == EFieldFormat::Date) return "2024-02-29";
  if (field.format == EFieldFormat::Enum) {
    const int last = TypeManager::enumItems(field.enumType).back().value;
    return field.type == EFieldType::Char ? std::string(1, static_cast<char>(last)) : std::to_string(last);
  }
  if (field.type == EFieldType::Double) return isPrice(field) ? "1234.5" : "-1234.5";
  if (std::string_view(field.name) == "exchange") return "SH";
  return machineText(field, empty) == "1" ? "0" : "1";
}

void setField(const CFieldDes& field, const std::string& text, IData& record) {
  std::string error;
  if (field.type == EFieldType::Account)
    field.edit<CAccountInfoPtr>(record) = test::creditAccount();
  else
    ASSERT_TRUE(parseField(field, text, record, error)) << error;
}

}  // namespace

TEST(FieldTables, numbersNamesAndTypesFitTogether) {
  std::set<std::string> structNames;
  std::set<int> typeIds;
  for (const auto& record : everyRecord()) {
    const CStructDes& des = record->getStructDes();
    SCOPED_TRACE(des.name());
    EXPECT_EQ(des.typeId(), record->getBaseId());
    EXPECT_TRUE(structNames.insert(des.name()).second);
    EXPECT_TRUE(typeIds.insert(des.typeId()).second);
    std::set<int> numbers;
    std::set<std::string> names;
    for (const CFieldDes& field : des) {
      SCOPED_TRACE(field.name);
      EXPECT_TRUE(field.number > 0 && field.number < 100);
      EXPECT_TRUE(numbers.insert(field.number).second);
      EXPECT_TRUE(names.insert(field.name).second);
      EXPECT_EQ(des.fieldByNumber(field.number), &field);
      EXPECT_EQ(des.fieldByName(field.name), &field);
      EXPECT_EQ(des.fieldByFileId(des.typeId() * 100 + field.number), &field);
      EXPECT_EQ(des.fieldByFileId((des.typeId() + 1) * 100 + field.number), nullptr);
      const bool isEnum = field.format == EFieldFormat::Enum;
      EXPECT_EQ(isEnum, field.enumType != nullptr && !TypeManager::enumItems(field.enumType).empty());
      const bool isAmount = field.type == EFieldType::Double && !isPrice(field);
      EXPECT_EQ(isAmount, field.format == EFieldFormat::Amount);
    }
  }
}

TEST(FieldTables, everyRowReachesItsOwnMember) {
  for (const auto& empty : everyRecord()) {
    const CStructDes& des = empty->getStructDes();
    for (const CFieldDes& field : des) {
      SCOPED_TRACE(std::string(des.name()) + "." + field.name);
      const IDataPtr record = empty->copy();
      EXPECT_TRUE(sameFields(*record, *empty));
      EXPECT_EQ(fingerprint(*record), fingerprint(*empty));
      const std::string text = field.type == EFieldType::Account ? "3.10010001" : otherText(field, *empty);
      setField(field, text, *record);
      EXPECT_EQ(machineText(field, *record), text);
      EXPECT_FALSE(sameFields(*record, *empty));
      EXPECT_NE(fingerprint(*record), fingerprint(*empty));
      EXPECT_TRUE(sameFields(*record, *record->copy()));
      for (const CFieldDes& other : des) {
        if (&other == &field) continue;
        EXPECT_EQ(machineText(other, *record), machineText(other, *empty)) << other.name;
      }
    }
  }
}

TEST(FieldTables, fileIdsThatLayoutsRelyOn) {
  const struct {
    const CStructDes& des;
    int fileId;
    const char* name;
    bool hidden;
  } cases[] = {
      {CStkUnClosedCompacts::structDes(), 1391603, "code", false},
      {CStkUnClosedCompacts::structDes(), 1391605, "source", false},
      {CStkUnClosedCompacts::structDes(), 1391614, "compact_no", false},
      {CStkUnClosedCompacts::structDes(), 1391615, "open_date", false},
      {CStkUnClosedCompacts::structDes(), 1391618, "repay_priority", false},
      {CStkUnClosedCompacts::structDes(), 1391620, "position_string", true},
      {CStkUnClosedCompacts::structDes(), 1391621, "modify_tag", true},
      {CStkUnClosedCompacts::structDes(), 1391622, "name", false},
      {CStkClosedCompacts::structDes(), 1391503, "code", false},
      {CStkClosedCompacts::structDes(), 1391514, "position_string", true},
      {CStkClosedCompacts::structDes(), 1391522, "name", false},
      {CStkUnClosedCompactsStatics::structDes(), 1391713, "account", false},
      {CStkCompactChange::structDes(), 1390703, "code", false},
  };
  for (const auto& c : cases) {
    const CFieldDes* field = c.des.fieldByFileId(c.fileId);
    ASSERT_NE(field, nullptr) << c.fileId;
    EXPECT_STREQ(field->name, c.name);
    EXPECT_EQ(field->hidden, c.hidden) << c.fileId;
  }
  EXPECT_STREQ(CStkUnClosedCompacts::structDes().begin()[3].name, "name") << "the name is shown behind the code";
}

TEST(Records, keys) {
  CStkCompactChange change;
  change.accountInfo = test::creditAccount();
  change.changeDate = 2460371;
  change.serialNo = "S7";
  CCreditRepayPriorityResp answer;
  answer.fieldA = "C1";
  answer.fieldB = "2460370";
  CQueryCompactReqV2 query;
  query.accountKey = "3.1";
  query.positionString = "p";
  query.requestCount = 200;
  CStkOrder order;
  order.accountInfo = test::creditAccount();
  order.orderDate = 2460371;
  order.orderId = "00000007";
  CQueryDataReq dataQuery;
  dataQuery.accountInfo = test::creditAccount();
  dataQuery.dataType = 13907;
  CInstrumentInfo instrument;
  instrument.exchangeId = "SZ";
  instrument.code = "000001";
  const struct {
    std::string key;
    const char* expected;
  } cases[] = {
      {test::creditAccount()->getKey(), "3.10010001"},
      {test::openCompact("C1")->getKey(), "3.10010001____SH____600000____2460370____C1"},
      {test::closedCompact("C1")->getKey(), "3.10010001____SH____600000____2460370____C1"},
      {CStkUnClosedCompacts::genKey(nullptr, "SH", "1", -5, ""), "____SH____1____-5____"},
      {CStkUnClosedCompactsStatics::genKey("SH", "600000", '1', '0', test::creditAccount()),
       "SH____600000____1____0____3.10010001"},
      {change.getKey(), "3.10010001____2460371____S7"},
      {answer.getKey(), "2460370____C1"},
      {query.getKey(), "3.1____32____p____200"},
      {dataQuery.getKey(), "3.10010001____13907"},
      {instrument.getKey(), "SZ000001"},
      {order.getKey(), "3.10010001____2460371____00000007"},
      {CPositionStatics::genKey(test::creditAccount(), "SH", "600000", '0', '1'),
       "3.10010001____SH____600000____0____1"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.key, c.expected);
  const std::string digits(300, '7');
  for (std::size_t size = 0; size <= digits.size(); size += size < 40 ? 1 : 65) {
    const std::string part = digits.substr(0, size);
    EXPECT_EQ(CStkUnClosedCompacts::genKey(test::creditAccount(), part, "x", INT32_MIN, part),
              "3.10010001____" + part + "____x____-2147483648____" + part);
  }

  const auto one = test::openCompact("C1");
  EXPECT_EQ(one->getHashKey(7), test::openCompact("C1", 5)->getHashKey(7));
  EXPECT_NE(one->getHashKey(7), one->getHashKey(8));
  EXPECT_NE(one->getHashKey(7), test::closedCompact("C1")->getHashKey(7)) << "same key, another type";
}
