#include "book_kit.h"

#include "counter/record_kinds.h"
#include "rdservice/field_text.h"
#include "rdservice/rdservice_enums.h"

#include <QFile>

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <random>

namespace counter {
namespace {

using rdservice::CStkUnClosedCompacts;

struct CBadBook {
  const char* file;
  const char* text;
  const char* errors;
};

const CBadBook BAD_BOOKS[] = {
    {"accounts.csv", "",
     "accounts.csv:1:1: the file is empty; expected a header with account_id, broker_type, "
     "counter_type, name, alias, auto_login\n"},
    {"accounts.csv", "account_id,broker_type\n6001,3\n",
     "accounts.csv:1:1: column \"counter_type\" is missing; expected at least account_id, broker_type, counter_type\n"},
    {"accounts.csv", "account_id,名,broker_type,counter_type,broker_type\n",
     "accounts.csv:1:12: unknown column \"名\"; expected one of account_id, broker_type, counter_type, name, alias, "
     "auto_login\n"
     "accounts.csv:1:39: column \"broker_type\" stands here again; expected each column once\n"},
    {"accounts.csv", "account_id,broker_type,counter_type\n6001,3,90\n6002,3,102\n6001,2,90\n",
     "accounts.csv:4:1: account_id: expected values that no record before has\n"},
    {"accounts.csv", "account_id,broker_type,counter_type,auto_login\n6001,3,90,0\n6002,4,x,2\n",
     "accounts.csv:3:6: broker_type: expected one of 1 (期货), 2 (普通证券), 3 (信用), 6 (股票期权), 11 (机构信用), "
     "got \"4\"\n"
     "accounts.csv:3:8: counter_type: expected a whole number from -2147483648 to 2147483647, got \"x\"\n"
     "accounts.csv:3:10: auto_login: expected a whole number from 0 to 1, got \"2\"\n"},
    // Whether the accounts of the compacts exist cannot be told, and so is not complained about.
    {"accounts.csv", "account_id,broker_type,counter_type\n6001,3,90\nx,3,102\n",
     "accounts.csv:3:1: account_id: expected an account id, which begins with a digit, without \"|\", \"____\", comma, "
     "tab or line break, got \"x\"\n"},
    {"accounts.csv", "account_id,broker_type,counter_type\n6001,3,90\n",
     "unclosed_compacts.csv:5:1: account: expected an account id of accounts.csv, got \"6002\"\n"},
    {"instruments.csv", "exchange,code,name\nSZ,000001,平安银行\nSH,600000,\n",
     "instruments.csv:3:11: name: expected a value, got nothing\n"},
    {"instruments.csv", "exchange,code,name\nSZ,000001,平安银行\n",
     "unclosed_compacts.csv:2:9: exchange, code: expected an instrument of instruments.csv, got \"SH600000\"\n"
     "unclosed_compacts.csv:5:9: exchange, code: expected an instrument of instruments.csv, got \"SH600000\"\n"
     "unclosed_compacts.csv:6:9: exchange, code: expected an instrument of instruments.csv, got \"SH600000\"\n"},
    {"unclosed_compacts.csv",
     "account,exchange,code,compact_type,compact_no,open_date,unpaid_amount\n"
     "6001,SH,600000,0,A1,today-30,1e3\n"
     "6001,SH,600000,2,,,1\n"
     "6001,SH,600000,0,A3\n"
     "6001,SH,600000,0,A4,tomorrow,1,2\n"
     "\"6001\",SH,600000,0,A5,2024-02-30,\n",
     "unclosed_compacts.csv:2:30: unpaid_amount: expected a number such as 1234.56, got \"1e3\"\n"
     "unclosed_compacts.csv:3:16: compact_type: expected one of 0 (融资), 1 (融券), got \"2\"\n"
     "unclosed_compacts.csv:3:18: compact_no: expected a value, got nothing\n"
     "unclosed_compacts.csv:3:19: open_date: expected a value, got nothing\n"
     "unclosed_compacts.csv:4:18: 5 cells; expected 7 as in the header\n"
     "unclosed_compacts.csv:5:32: 8 cells; expected 7 as in the header\n"
     "unclosed_compacts.csv:6:23: open_date: expected a date as yyyy-MM-dd, yyyyMMdd, today, today-30 or today+5, or "
     "nothing, got \"2024-02-30\"\n"},
    {"unclosed_compacts.csv",
     "compact_no,account,exchange,code,compact_type,open_date,position_string\n"
     "A1,6001,SH,600000,0,today,7\n"
     "A2,6001,SH,600000,0,today,7\n"
     "A1,6002,SH,600000,0,today,7\n"
     "A1,6001,SH,600000,1,today,8\n",
     "unclosed_compacts.csv:3:27: position_string: expected a position that no other record of the account has\n"
     "unclosed_compacts.csv:5:4: account, open_date, compact_no, exchange, code: expected values that no record before "
     "has\n"},
    {"closed_compacts.csv", "account,exchange,code,compact_type,compact_no,open_date,close_date,unpaid_amount\n",
     "closed_compacts.csv:1:68: unknown column \"unpaid_amount\"; expected one of account, exchange, code, name, "
     "compact_type, source, volume, compact_amount, repaid_amount, interest_amount, fee_amount, compact_no, open_date, "
     "close_date, repay_priority, position_string\n"},
    {"closed_compacts.csv",
     "account,exchange,code,compact_type,compact_no,open_date,close_date,volume\n"
     "6001,SH,600000,0,C1,today-9,,100\n"
     "6003,SZ,600000,0,C1,today-9,today,-\n"
     "6001,SZ,000001,0,C1,today-9,today,1\n"
     "6001,SZ,000001,1,C1,today-9,today-1,2\n",
     "closed_compacts.csv:2:29: close_date: expected a value, got nothing\n"
     "closed_compacts.csv:3:1: account: expected an account id of accounts.csv, got \"6003\"\n"
     "closed_compacts.csv:3:35: volume: expected a whole number, got \"-\"\n"
     "closed_compacts.csv:5:1: account, open_date, compact_no, exchange, code: expected values that no record before "
     "has\n"},
    {"change_details.csv",
     "account,exchange,code,compact_type,compact_no,open_date,change_date,change_kind,serial_no,change_volume\n"
     "6001,SH,600000,0,A1,today-30,today,融资买入,1,-100\n"
     "6001,SZ,000001,0,A1,today-30,today,卖券还款,1,5\n"
     "6001,SZ,000002,0,A1,,today,,2,x\n",
     "change_details.csv:3:1: account, change_date, serial_no: expected values that no record before has\n"
     "change_details.csv:4:21: open_date: expected a value, got nothing\n"
     "change_details.csv:4:28: change_kind: expected a value, got nothing\n"
     "change_details.csv:4:31: change_volume: expected a whole number, got \"x\"\n"
     "change_details.csv:4:9: exchange, code: expected an instrument of instruments.csv, got \"SZ000002\"\n"},
    {"positions.csv",
     "account,exchange,code,current_volume,available_volume,cost_price,direction\n"
     "6001,SH,600000,100,0,9.5,0\n"
     "6001,SH,600000,-100,-1,-0.5,2\n"
     "6001,SH,600000,100,100,,1\n"
     "6001,SH,600000,1e2,100,,0\n",
     "positions.csv:3:16: current_volume: expected a whole number, 0 or above, got \"-100\"\n"
     "positions.csv:3:21: available_volume: expected a whole number, 0 or above, got \"-1\"\n"
     "positions.csv:3:24: cost_price: expected a number such as 1234.56, 0 or above, got \"-0.5\"\n"
     "positions.csv:3:29: direction: expected one of 0 (买), 1 (卖), got \"2\"\n"
     "positions.csv:5:16: current_volume: expected a whole number, 0 or above, got \"1e2\"\n"},
    {"quotes.csv",
     "exchange,code,last_price,close_price\nSH,600000,9.5,-1\nSH,600001,1,\nSZ,000001,,1\nSZ,000001,1,1\n"
     "SZ,000001,2,1\n",
     "quotes.csv:2:15: close_price: expected a number such as 1234.56, 0 or above, got \"-1\"\n"
     "quotes.csv:3:4: exchange, code: expected an instrument of instruments.csv, got \"SH600001\"\n"
     "quotes.csv:4:11: last_price: expected a value, got nothing\n"
     "quotes.csv:6:1: exchange, code: expected values that no record before has\n"},
    {"appointments.csv",
     "account,exchange,code,compact_type,compact_no,open_date,expiry_date,renewal_times\n"
     "6001,SH,600000,0,A1,today-30,today+9,1\n"
     "6001,SH,600000,0,A1,today-30,today+9,-1\n"
     "6003,SH,600000,0,A1,today-30,,0\n",
     "appointments.csv:3:38: renewal_times: expected a whole number from 0 to 2147483647, got \"-1\"\n"
     "appointments.csv:4:1: account: expected an account id of accounts.csv, got \"6003\"\n"
     "appointments.csv:4:30: expiry_date: expected a value, got nothing\n"},
    {"unclosed_compacts.csv",
     "account,exchange,code,compact_type,compact_no,open_date\n6001,SH,600000,0,\xFF,today\n6001,SH,600000,0,\"A,"
     "today\n",
     "unclosed_compacts.csv:2:18: bytes that are not UTF-8; expected a file saved as UTF-8\n"
     "unclosed_compacts.csv:3:18: a quote without end; expected a closing quote within 1048576 bytes\n"},
};

TEST(CBookLoader, refusesBadBooksWholeAndLeavesTheDatabaseUntouched) {
  for (const auto& bad : BAD_BOOKS) {
    CTestBook book;
    book.setFile(bad.file, bad.text);
    EXPECT_EQ(book.load().errorText(), bad.errors);
    EXPECT_FALSE(QFile::exists(QString::fromStdString(book.database()))) << "a database was left behind";

    CTestBook loaded;
    ASSERT_EQ(loaded.load().errorText(), "");
    const auto before = loaded.content();
    loaded.setFile(bad.file, bad.text);
    const auto result = loaded.load();
    EXPECT_EQ(result.errorText(), bad.errors);
    EXPECT_TRUE(result.counts.empty());
    EXPECT_EQ(loaded.content(), before);
  }
}

TEST(CBookLoader, refusesAMissingFile) {
  CTestBook book;
  QFile::remove(QString::fromStdString(book.path("instruments.csv")));
  const auto result = book.load();
  ASSERT_EQ(result.errors.size(), 1U) << result.errorText();
  EXPECT_EQ(result.errors[0].text().find("instruments.csv: cannot be opened"), 0U) << result.errorText();
}

TEST(CBookLoader, listsAThousandErrorsAndCountsTheRest) {
  CTestBook book;
  std::string text = "exchange,code,name\n";
  for (int i = 0; i < 1200; ++i) text += "SH,x,y\n";
  book.setFile("instruments.csv", text);
  const auto result = book.load();
  EXPECT_EQ(result.errors.size(), 1000U);
  EXPECT_EQ(result.moreErrors, 200);
  EXPECT_NE(result.errorText().find("\nand 200 more\n"), std::string::npos);
}

TEST(CBookLoader, replacesTheFormerBook) {
  CTestBook book;
  book.setFile("closed_compacts.csv",
               "account,exchange,code,compact_type,compact_no,open_date,close_date,volume,interest_amount\n"
               "6001,SH,600000,1,C7,20240101,2024-03-01,1200,3.5\n");
  ASSERT_EQ(book.load().errorText(), "");
  EXPECT_NE(book.content().find("A4"), std::string::npos);
  const auto closedRow = "3.6001,SH,600000,浦发银行,1,0,1200,0,0,3.5,0,C7," +
                         std::to_string(QDate(2024, 1, 1).toJulianDay()) + "," +
                         std::to_string(QDate(2024, 3, 1).toJulianDay()) + ",0,0000000001,\n";
  EXPECT_NE(book.content().find(closedRow), std::string::npos) << book.content();
  QFile::remove(QString::fromStdString(book.path("closed_compacts.csv")));
  book.setFile("unclosed_compacts.csv",
               "account,exchange,code,compact_type,compact_no,open_date,name\n"
               "6002,SZ,000001,1,C1,today-15,\n"
               "6002,SZ,000001,1,C2,today+1,别名\n");
  const auto result = book.load();
  ASSERT_EQ(result.errorText(), "");
  ASSERT_EQ(result.counts.size(), 8U) << "orders are no part of a book";
  EXPECT_EQ(result.counts[2].kind, "unclosed_compacts");
  EXPECT_EQ(result.counts[2].records, 2);
  EXPECT_EQ(result.counts[3].kind, "closed_compacts");
  EXPECT_EQ(result.counts[3].records, 0) << "those of the former book are gone though this one has no file of them";
  const auto julian = [](int day) { return std::to_string(QDate(2024, 3, day).toJulianDay()); };
  const auto row = [](const std::string& number, const std::string& name, const std::string& date,
                      const std::string& position) {
    return "3.6002,SZ,000001," + name + ",1,0,0,0,0,0,0,0,0,0," + number + "," + date + ",0,0,0,0," + position +
           ",,0,\n";
  };
  EXPECT_EQ(book.content(),
            "6001,3,90,张伟,,1,\n6002,3,102,,,1,\n"
            "SH,600000,浦发银行,,0.01,\nSZ,000001,平安银行,,0.01,\n" +
                row("C1", "平安银行", std::to_string(QDate(2024, 2, 29).toJulianDay()), "0000000001") +
                row("C2", "别名", julian(16), "0000000002"));
}

/// A compact with a random value in every field.
boost::shared_ptr<CStkUnClosedCompacts> randomCompact(std::mt19937& random, int number) {
  constexpr const char* TEXTS[] = {"", "x", "浦发,银行", "say \"x\"", "two\nlines", " blank ", "\xF0\x9F\x98\x80\r\n'"};
  auto compact = boost::make_shared<CStkUnClosedCompacts>();
  for (const auto& field : CStkUnClosedCompacts::structDes()) {
    const auto bits = (static_cast<std::uint64_t>(random()) << 32) + random();
    switch (field.type) {
      case rdservice::EFieldType::Account: break;
      case rdservice::EFieldType::Text: field.edit<std::string>(*compact) = TEXTS[bits % std::size(TEXTS)]; break;
      case rdservice::EFieldType::Interned:
        field.edit<rdservice::CInternedText>(*compact) = TEXTS[bits % std::size(TEXTS)];
        break;
      case rdservice::EFieldType::Char: field.edit<char>(*compact) = bits % 2 == 0 ? '0' : '1'; break;
      case rdservice::EFieldType::Int32:
        field.edit<std::int32_t>(*compact) = static_cast<std::int32_t>(
            field.format == rdservice::EFieldFormat::Date ? 2232400 + bits % 3141069 : bits % 1000000);
        break;
      case rdservice::EFieldType::Int64: field.edit<std::int64_t>(*compact) = static_cast<std::int64_t>(bits); break;
      case rdservice::EFieldType::Double:
        field.edit<double>(*compact) = std::ldexp(static_cast<double>(bits), static_cast<int>(random() % 200) - 160);
        break;
    }
  }
  const bool isShanghai = number % 2 == 0;
  compact->exchangeId = isShanghai ? "SH" : "SZ";
  compact->code = isShanghai ? "600000" : "000001";
  if (compact->name.empty()) compact->name = "given";
  compact->fieldA = fmt::format("N{}", number);
  compact->positionString = fmt::format("{:05}", number);
  return compact;
}

TEST(CBookLoader, everyFieldSurvivesTheWayThroughFileAndDatabase) {
  std::mt19937 random(20240315);
  std::string text;
  for (const auto& field : CStkUnClosedCompacts::structDes())
    text += (text.empty() ? "" : ",") + std::string(field.name);
  text += "\r\n";
  std::vector<boost::shared_ptr<CStkUnClosedCompacts>> written;
  for (int i = 0; i < 500; ++i) {
    written.push_back(randomCompact(random, i));
    std::string row;
    for (const auto& field : CStkUnClosedCompacts::structDes())
      row += field.type == rdservice::EFieldType::Account ? "6001" : "," + csvCell(machineText(field, *written.back()));
    text += row + "\r\n";
  }
  CTestBook book;
  book.setFile("unclosed_compacts.csv", text);
  ASSERT_EQ(book.load().errorText(), "");

  CTestCounter client({book.database()});
  const auto accounts = client.ask(accountsRequest()).records;
  ASSERT_EQ(accounts.size(), 2U);
  client.ask(loginRequest("3.6001"));
  const auto read = client.ask(compactsRequest("3.6001")).records;
  ASSERT_EQ(read.size(), written.size());
  for (std::size_t i = 0; i < written.size(); ++i) {
    written[i]->accountInfo = boost::static_pointer_cast<rdservice::CAccountInfo>(accounts[0]);
    EXPECT_TRUE(sameFields(*read[i], *written[i])) << i;
    EXPECT_EQ(static_cast<const CStkUnClosedCompacts&>(*read[i]).accountInfo, accounts[0]) << "not the shared account";
  }
}

}  // namespace
}  // namespace counter
