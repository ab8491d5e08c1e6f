#include "rdservice/records.h"

#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CStructDes.h"
#include "rdservice/TypeManager.h"
#include "rdservice/field_text.h"
#include "rdservice/stock_key.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

using namespace rdservice;

namespace {

constexpr std::int32_t TODAY = 2460370;  // 2024-02-29

}  // namespace

TEST(FieldText, parsesOrSaysWhatWasExpected) {
  const struct {
    const char* column;
    const char* text;
    const char* machine;   ///< what is read, or null when refused
    const char* expected;  ///< part of the error
  } cases[] = {
      {"repay_priority", "600", "600", nullptr},
      {"repay_priority", "1000000", nullptr, "a whole number from 0 to 999999"},
      {"repay_priority", "-1", nullptr, "from 0 to 999999"},
      {"repay_priority", "6.0", nullptr, "a whole number"},
      {"repay_priority", "", nullptr, "a whole number"},
      {"financing_volume", "9223372036854775807", "9223372036854775807", nullptr},
      {"financing_volume", "9223372036854775808", nullptr, "a whole number"},
      {"financing_volume", "1,000", nullptr, "a whole number"},
      {"unpaid_amount", "-0.1", "-0.1", nullptr},
      {"unpaid_amount", "100000000000000000000", "100000000000000000000", nullptr},
      {"unpaid_amount", "1e5", nullptr, "a number such as"},
      {"unpaid_amount", "nan", nullptr, "a number such as"},
      {"unpaid_amount", "1.5x", nullptr, "a number such as"},
      {"open_date", "20240229", "2024-02-29", nullptr},
      {"open_date", "", "", nullptr},
      {"open_date", "2023-02-29", nullptr, "yyyy-MM-dd, yyyyMMdd, today"},
      {"open_date", "2024-2-29", nullptr, "yyyy-MM-dd"},
      {"open_date", "1399-12-31", nullptr, "yyyy-MM-dd"},
      {"open_date", "today", "2024-02-29", nullptr},
      {"open_date", "today-60", "2023-12-31", nullptr},
      {"open_date", "today+1", "2024-03-01", nullptr},
      {"open_date", "today1", nullptr, "today"},
      {"open_date", "today+", nullptr, "today"},
      {"open_date", "today+-1", nullptr, "today"},
      {"open_date", "today-999999", nullptr, "today"},
      {"compact_type", "1", "1", nullptr},
      {"compact_type", "2", nullptr, "one of 0 (融资), 1 (融券)"},
      {"compact_type", " ", nullptr, "one of"},
      {"source", "", nullptr, "one of 0 (普通), 1 (专项)"},
      {"exchange", "SH", "SH", nullptr},
      {"exchange", "S1", nullptr, "letters only"},
      {"exchange", "", nullptr, "letters only"},
      {"code", "600000", "600000", nullptr},
      {"code", "A60", nullptr, "begins with a digit"},
      {"code", "6|0", nullptr, "without \"|\""},
      {"compact_no", "a_b___c", "a_b___c", nullptr},
      {"compact_no", "a____b", nullptr, "without"},
      {"compact_no", "a,b", nullptr, "comma"},
      {"compact_no", "a\tb", nullptr, "tab"},
      {"compact_no", "a\nb", nullptr, "line break"},
      {"compact_no", "", nullptr, "a compact number"},
      {"name", "浦发|银行", "浦发|银行", nullptr},
      {"account", "3.1", nullptr, "account"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.column) + " = '" + c.text + "'");
    const auto record = test::openCompact("C1");
    const auto before = record->copy();
    const CFieldDes& field = *record->getStructDes().fieldByName(c.column);
    std::string error;
    const bool isRead = parseField(field, c.text, *record, error, {TODAY});
    ASSERT_EQ(isRead, c.machine != nullptr) << error;
    if (isRead) {
      EXPECT_EQ(machineText(field, *record), c.machine);
      continue;
    }
    EXPECT_EQ(error.find(std::string(c.column) + ": expected"), 0u) << error;
    EXPECT_NE(error.find(c.expected), std::string::npos) << error;
    EXPECT_NE(error.find("got \"" + std::string(c.text) + "\""), std::string::npos) << error;
    EXPECT_TRUE(sameFields(*record, *before)) << "a refused text changes nothing";
  }
}

TEST(FieldText, otherRecordsAndContexts) {
  std::string error;
  CStkUnClosedCompacts compact;
  const auto& des = CStkUnClosedCompacts::structDes();
  EXPECT_FALSE(parseField(*des.fieldByName("open_date"), "today", compact, error)) << "without a day of today";
  ASSERT_TRUE(parseField(*des.fieldByName("open_date"), "2024-02-29", compact, error));
  EXPECT_EQ(compact.fieldB, TODAY);

  CQueryCompactReqV2 query;
  const auto& type = *CQueryCompactReqV2::structDes().fieldByName("compact_type");
  EXPECT_TRUE(parseField(type, "32", query, error)) << "no restriction, in a request: " << error;
  EXPECT_FALSE(parseField(type, "50", query, error));

  CAccountInfo account;
  EXPECT_FALSE(parseField(*CAccountInfo::structDes().fieldByName("account_id"), "A1", account, error));
  EXPECT_FALSE(parseField(*CAccountInfo::structDes().fieldByName("auto_login"), "2", account, error));
}

TEST(FieldText, amountsSurviveWritingAndReading) {
  const auto& field = *CStkUnClosedCompacts::structDes().fieldByName("unpaid_amount");
  for (const double amount : {0.1 + 0.2, 1.0 / 3, 12345678901.23, -0.0, std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::denorm_min()}) {
    CStkUnClosedCompacts written;
    CStkUnClosedCompacts read;
    written.unpaidAmount = amount;
    std::string error;
    ASSERT_TRUE(parseField(field, machineText(field, written), read, error)) << error;
    EXPECT_TRUE(sameFields(written, read)) << amount;
  }
}

TEST(FieldText, asUsersSeeIt) {
  const auto shown = [](const IData& record, const char* column) {
    return fieldText(*record.getStructDes().fieldByName(column), record);
  };
  const auto record = test::openCompact("C1", -1234567);
  record->lendingVolume = 999;
  record->compactAmount = 1234.5;
  record->unpaidAmount = -999999.999;
  record->repaidAmount = -0.001;
  record->interestAmount = std::numeric_limits<double>::quiet_NaN();
  record->compactType = '1';
  record->source = '7';
  const struct {
    const char* column;
    const char* text;
  } cases[] = {
      {"account", "10010001"},
      {"exchange", "SH"},
      {"open_date", "2024-02-29"},
      {"expiry_date", ""},
      {"compact_type", "融券"},
      {"source", "55"},
      {"renewal_flag", "未展期"},
      {"repay_priority", "0"},
      {"financing_volume", "-1,234,567"},
      {"lending_volume", "999"},
      {"compact_amount", "1,234.50"},
      {"unpaid_amount", "-1,000,000.00"},
      {"repaid_amount", "0.00"},
      {"interest_amount", "-"},
  };
  for (const auto& c : cases) EXPECT_EQ(shown(*record, c.column), c.text) << c.column;
  EXPECT_EQ(shown(CInstrumentInfo(), "price_tick"), "0.01");
  EXPECT_EQ(shown(CQueryCompactReqV2(), "compact_type"), "全部");
}

TEST(FieldText, accountsStocksAndEnumerations) {
  CAccountInfo account;
  account.accountId = "1001";
  EXPECT_EQ(accountDisplayID(account), "1001");
  account.name = "张三";
  EXPECT_EQ(accountDisplayID(account), "1001(张三)");

  const struct {
    const char* key;
    const char* exchange;
    const char* code;
  } stocks[] = {{"SH600000", "SH", "600000"}, {"HK0700A", "HK", "0700A"}, {"SH", "SH", ""}, {"600000", "", "600000"}};
  for (const auto& stock : stocks) {
    const auto parts = splitStockKey(stock.key);
    EXPECT_EQ(parts.exchangeId, stock.exchange);
    EXPECT_EQ(parts.code, stock.code);
    EXPECT_EQ(makeStockKey(parts.exchangeId, parts.code), stock.key);
  }

  EXPECT_EQ(TypeManager::getEnumItemName("rdservice::EKVCompactType", 32, 8), "全部");
  EXPECT_EQ(TypeManager::getEnumItemName("rdservice::EKVCompactBrushSource", '1', 8), "专项");
  EXPECT_EQ(TypeManager::getEnumItemName("rdservice::EKVRenewalFlag", '1', 8), "已展期");
  EXPECT_EQ(TypeManager::getEnumItemName("rdservice::Nothing", 5, 8), "5");
  EXPECT_TRUE(TypeManager::enumItems("rdservice::Nothing").empty());
}

TEST(InternedText, threadsGetOneHandleForOneText) {
  constexpr int TEXTS = 2000;
  std::vector<CInternedText> seen[3];
  std::vector<std::thread> threads;
  for (auto& mine : seen)
    threads.emplace_back([&mine] {
      for (int i = 0; i < TEXTS; ++i) mine.emplace_back("interned " + std::to_string(i));
    });
  for (auto& thread : threads) thread.join();
  for (int i = 0; i < TEXTS; ++i) {
    const auto index = static_cast<std::size_t>(i);
    EXPECT_EQ(seen[0][index].str(), "interned " + std::to_string(i));
    EXPECT_TRUE(seen[0][index] == seen[1][index] && seen[1][index] == seen[2][index]);
  }
  EXPECT_TRUE(CInternedText() == CInternedText("") && CInternedText() == CInternedText(std::string_view()));
}
