// Repay priorities, renewals and appointments at the counter.

#include "book_kit.h"

#include "counter/CRenewalDesk.h"
#include "counter/counter_errors.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CQueryAppointmentInfoReq.h"
#include "rdservice/CQueryAppointmentInfoResp.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"
#include "rdservice/CStructDes.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

namespace counter {
namespace {

using rdservice::CAccountInfoPtr;
using rdservice::CCreditCompactRenewalApply;
using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;
using CAppointment = rdservice::StockSMTQueryAppointmentInfoResp;

constexpr const char* ACCOUNT = "3.6001";

std::int32_t julian(int year, int month, int day) {
  return static_cast<std::int32_t>(QDate(year, month, day).toJulianDay());
}

CAccountInfoPtr account(const char* id) {
  auto info = boost::make_shared<rdservice::CAccountInfo>();
  info->accountId = id;
  info->brokerType = rdservice::BrokerTypeCredit;
  return info;
}

class CompactRequests : public testing::Test {
 protected:
  CompactRequests() {
    m_book.setFile("unclosed_compacts.csv",
                   "account,exchange,code,compact_type,compact_no,open_date,expiry_date,repay_priority\n"
                   "6001,SH,600000,0,A1,2024-01-02,2090-01-01,1\n"
                   "6001,SZ,000001,1,A2,2024-01-02,2090-01-01,2\n"
                   "6001,SZ,000001,0,A3,2024-01-03,2090-01-01,0\n"
                   "6001,SH,600000,0,A4,2024-01-04,,7\n"
                   "6001,SH,600000,0,D1,2024-01-05,2090-01-01,0\n"
                   "6001,SZ,000001,0,D1,2024-01-05,2090-01-01,0\n"
                   "6002,SH,600000,0,A1,2024-01-02,2090-01-01,5\n");
    m_book.setFile("appointments.csv",
                   "account,exchange,code,compact_type,compact_no,open_date,expiry_date,max_renewal_days,renewed_days\n"
                   "6001,SZ,000001,1,A2,2024-01-02,2090-01-01,50,7\n"
                   "6001,SH,600000,0,A1,2024-01-02,2090-01-01,,\n"
                   "6001,SZ,000001,0,A3,2024-01-03,2090-01-01,,\n"
                   "6002,SH,600000,0,A1,2024-01-02,2090-01-01,,\n");
    load();
  }

  void load() { ASSERT_EQ(m_book.load().errorText(), ""); }

  CSqlCounterOptions options(const CRenewalRules& rules = {}) const {
    CSqlCounterOptions options;
    options.databasePath = m_book.database();
    options.renewalRules.emplace(90, rules);
    return options;
  }

  static boost::shared_ptr<const CStkUnClosedCompacts> compact(CTestCounter& client, const char* number) {
    for (const auto& record : client.ask(compactsRequest(ACCOUNT)).records)
      if (const auto one = boost::static_pointer_cast<const CStkUnClosedCompacts>(record); one->fieldA == number)
        return one;
    return nullptr;
  }

  static std::string priorities(CTestCounter& client) {
    std::string text;
    for (const char* key : {ACCOUNT, "3.6002"})
      for (const auto& record : client.ask(compactsRequest(key)).records)
        if (const auto& c = static_cast<const CStkUnClosedCompacts&>(*record); c.repayPriority != 0)
          text += fmt::format("{}{}={} ", key[5], c.fieldA, c.repayPriority);
    return text;
  }

  /// The next push but for what `request` itself may have pushed: a change of the other account.
  static void expectNoOtherPush(CTestCounter& client) {
    const auto other = client.ask(compactsRequest("3.6002")).records.at(0)->copy();
    client.counter.changeCompacts({other});
    EXPECT_EQ(client.nextPush().at(0)->getKey(), other->getKey());
  }

  static IDataPtr appointmentsRequest(const char* exchange, const char* code, int start, int end,
                                      const char* id = "6001") {
    auto request = boost::make_shared<rdservice::CQueryAppointmentInfoReq>();
    request->accountInfo = account(id);
    request->exchangeId = exchange;
    request->code = code;
    request->startDate = start;
    request->endDate = end;
    return request;
  }

  static std::vector<boost::shared_ptr<const CAppointment>> appointments(CTestCounter& client) {
    const auto reply = client.ask(appointmentsRequest("", "", 20240101, 20241231));
    std::vector<boost::shared_ptr<const CAppointment>> found;
    for (const auto& record : static_cast<const rdservice::CQueryAppointmentInfoResp&>(*reply.records.at(0)).records)
      found.push_back(boost::static_pointer_cast<const CAppointment>(record));
    return found;
  }

  CTestBook m_book;
};

boost::shared_ptr<rdservice::CSetCreditRepayPriorityReq> priorityRequest(
    const std::vector<std::pair<const char*, const char*>>& entries) {
  auto request = boost::make_shared<rdservice::CSetCreditRepayPriorityReq>();
  request->accountInfo = account("6001");
  for (const auto& [number, priority] : entries) {
    const int day = number[1] == '1' || number[1] == '2' ? 2 : number[1] - '0';
    request->openDates += number + std::string("|");
    request->orderNumbers += std::to_string(julian(2024, 1, number[0] == 'D' ? 5 : day)) + "|";
    request->priorities += priority + std::string("|");
  }
  return request;
}

TEST_F(CompactRequests, PrioritiesAreSetClearedOrRefusedEntryByEntry) {
  const struct {
    std::vector<std::pair<const char*, const char*>> entries;
    const char* answers;
    const char* changed;
    const char* after;
  } cases[] = {
      {{{"A1", "2"}, {"A2", "1"}}, "A1:2 A2:1 ", "A1 A2", "1A1=2 1A2=1 1A4=7 2A1=5 "},
      {{{"A3", "05"}, {"A1", ""}, {"A4", "0"}}, "A3:5 ", "A3 A1 A4", "1A2=2 1A3=5 2A1=5 "},
      {{{"A1", "1"}, {"A3", ""}}, "A1:1 ", "", "1A1=1 1A2=2 1A4=7 2A1=5 "},
      {{{"A3", "7"}, {"A4", "999999"}}, "A3:7 A4:999999 ", "A3 A4", "1A1=1 1A2=2 1A3=7 1A4=999999 2A1=5 "},
      {{{"A3", "2"}, {"A4", ""}}, "!合约[A3]偿还优先级: 同一账号的其他合约已使用优先级 2 ", "A4", "1A1=1 1A2=2 2A1=5 "},
      {{{"A3", "9"}, {"A1", "9"}},
       "A3:9 !合约[A1]偿还优先级: 同一账号的其他合约已使用优先级 9 ",
       "A3",
       "1A1=1 1A2=2 1A3=9 1A4=7 2A1=5 "},
      // A refused entry keeps its priority, and so refuses the one that counted on it.
      {{{"A3", "7"}, {"A4", "2"}},
       "!合约[A3]偿还优先级: 同一账号的其他合约已使用优先级 7 !合约[A4]偿还优先级: 同一账号的其他合约已使用优先级 2 ",
       "",
       "1A1=1 1A2=2 1A4=7 2A1=5 "},
      {{{"A3", "7"}, {"A4", "1"}, {"A1", "2"}, {"A2", "9"}},
       "A3:7 A4:1 A1:2 A2:9 ",
       "A3 A4 A1 A2",
       "1A1=2 1A2=9 1A3=7 1A4=1 2A1=5 "},
      {{{"A3", "1"}, {"A1", "1000000"}},
       "!合约[A3]偿还优先级: 同一账号的其他合约已使用优先级 1 "
       "!合约[A1]偿还优先级: 须为0 - 999999之间的整数，不能为\"1000000\" ",
       "",
       "1A1=1 1A2=2 1A4=7 2A1=5 "},
      {{{"A3", "-1"}, {"A3", "1x"}, {"A3", " 3"}, {"A3", "99999999999"}, {"A3", "3"}, {"A3", "4"}},
       "!合约[A3]偿还优先级: 须为0 - 999999之间的整数，不能为\"-1\" "
       "!合约[A3]偿还优先级: 须为0 - 999999之间的整数，不能为\"1x\" "
       "!合约[A3]偿还优先级: 须为0 - 999999之间的整数，不能为\" 3\" "
       "!合约[A3]偿还优先级: 须为0 - 999999之间的整数，不能为\"99999999999\" "
       "A3:3 !合约[A3]偿还优先级: 同一请求中重复设置 ",
       "A3",
       "1A1=1 1A2=2 1A3=3 1A4=7 2A1=5 "},
      {{{"X2", ""}, {"D1", "3"}, {"A3", "3"}},
       "!合约[X2]偿还优先级: 柜台没有此合约 !合约[D1]偿还优先级: 同一编号有多个合约 A3:3 ",
       "A3",
       "1A1=1 1A2=2 1A3=3 1A4=7 2A1=5 "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.answers);
    load();
    CTestCounter client(options());
    client.ask(loginRequest(ACCOUNT));
    client.ask(loginRequest("3.6002"));
    const auto reply = client.ask(priorityRequest(c.entries));
    EXPECT_TRUE(reply.error.isSuccess()) << reply.error.errorMsg();
    std::string answers;
    for (const auto& record : reply.records) {
      if (const auto refused = boost::dynamic_pointer_cast<rdservice::CErrorResp>(record)) {
        EXPECT_EQ(refused->errorCode, CounterRequestRefused);
        answers += "!" + refused->errorText + " ";
      } else {
        const auto& set = dynamic_cast<const rdservice::CCreditRepayPriorityResp&>(*record);
        const auto stored = compact(client, set.fieldA.c_str());
        EXPECT_EQ(set.fieldB, std::to_string(stored->fieldB));
        EXPECT_EQ(set.repayPriority, stored->repayPriority);
        answers += fmt::format("{}:{} ", set.fieldA, set.repayPriority);
      }
    }
    EXPECT_EQ(answers, c.answers);
    EXPECT_EQ(priorities(client), c.after);
    if (*c.changed != '\0') {
      const auto pushed = client.nextPush();
      EXPECT_EQ(compactNumbers(pushed), c.changed);
      for (const auto& record : pushed) {
        const auto& changed = static_cast<const CStkUnClosedCompacts&>(*record);
        EXPECT_TRUE(sameFields(changed, *compact(client, changed.fieldA.c_str())));
      }
    }
    expectNoOtherPush(client);
  }
}

TEST_F(CompactRequests, RequestsRefusedAsAWholeChangeNothing) {
  CTestCounter client(options());
  const auto request = priorityRequest({{"A1", "3"}});
  EXPECT_EQ(client.ask(request).error.errorCode(), CounterNotLoggedIn);
  client.ask(loginRequest(ACCOUNT));
  client.ask(loginRequest("3.6002"));
  client.counter.setFailEvery(1);
  EXPECT_EQ(client.ask(request).error.errorCode(), CounterSimulated);
  client.counter.setFailEvery(0);
  request->priorities += "|";
  const auto unequal = client.ask(request);
  EXPECT_EQ(unequal.error.errorMsg(), "偿还优先级请求的条目数不一致: 合约编号 1，开仓日期 1，优先级 2");
  EXPECT_TRUE(unequal.records.empty());
  const auto strange = priorityRequest({{"A1", "3"}});
  strange->accountInfo = nullptr;
  EXPECT_EQ(client.ask(strange).error.errorCode(), CounterUnknownAccount);
  EXPECT_EQ(priorities(client), "1A1=1 1A2=2 1A4=7 2A1=5 ");
  expectNoOtherPush(client);
}

TEST(RenewalRules, SayWhichCompactsAreExtended) {
  const std::int32_t today = julian(2024, 3, 15);
  const struct {
    CRenewalRules rules;
    int age;   ///< days since the opening
    int left;  ///< days until the expiry
    char flag;
    int times;
    std::int64_t days;
    const char* refusal;
  } cases[] = {
      {{}, 0, 180, '0', 9, 5000, ""},
      {{}, 200, -20, '0', 0, 1, ""},
      {{}, 10, 10, '0', 0, 0, "展期天数须大于0"},
      {{}, 10, 10, '0', 0, -1, "展期天数须大于0"},
      {{}, 10, 10, '0', 0, 2'147'483'647, "展期后的到期日超出范围"},
      {{30, 0, 0, true}, 10, 30, '0', 0, 1, ""},
      {{30, 0, 0, true}, 10, 31, '0', 0, 1, "距到期还有 31 天，到期前 30 天内方可展期"},
      {{30, 0, 0, true}, 10, 0, '0', 0, 1, ""},
      {{30, 0, 0, true}, 10, -1, '0', 0, 1, "合约已到期"},
      {{0, 182, 0, true}, 10, 9, '0', 0, 182, ""},
      {{0, 182, 0, true}, 10, 9, '0', 0, 183, "展期天数 183 超过上限 182"},
      {{0, 0, 2, true}, 10, 9, '1', 1, 1, ""},
      {{0, 0, 2, true}, 10, 9, '1', 2, 1, "合约已展期 2 次，不可再次展期"},
      {{0, 0, 1, true}, 10, 9, '1', 0, 1, "合约已展期 1 次，不可再次展期"},
      {{0, 0, 1, true}, 10, 9, '0', 0, 1, ""},
      {{0, 0, 0, false}, 0, 180, '0', 0, 1, "当日合约不可展期"},
      {{0, 0, 0, false}, 1, 179, '0', 0, 1, ""},
  };
  for (const auto& c : cases) {
    CStkUnClosedCompacts compact;
    compact.fieldB = today - c.age;
    compact.expiryDate = today + c.left;
    compact.renewalFlag = c.flag;
    compact.renewalTimes = c.times;
    EXPECT_EQ(renewalRefusal(c.rules, compact, c.days, today), c.refusal) << c.left << " " << c.days;
  }
}

boost::shared_ptr<CCreditCompactRenewalApply> application(const char* number, const char* stock, std::int32_t openDate,
                                                          std::int32_t flag, int days, std::int32_t newExpiry = 0) {
  auto apply = boost::make_shared<CCreditCompactRenewalApply>();
  apply->accountInfo = account("6001");
  apply->compactNumber = number;
  apply->exchangeId = std::string(stock, 2);
  apply->code = stock + 2;
  apply->openDate = openDate;
  apply->flag = flag;
  apply->renewalDays = days;
  apply->newExpiryDate = newExpiry;
  return apply;
}

TEST_F(CompactRequests, RenewalsMoveTheExpiryDateAndAreCounted) {
  CTestCounter client(options({0, 100, 2, true, ERenewalRefusal::Error}));
  const auto opened = julian(2024, 1, 2);
  const auto expiry = julian(2090, 1, 1);
  EXPECT_EQ(client.ask(application("A2", "SZ000001", opened, 1, 30)).error.errorCode(), CounterNotLoggedIn);
  client.ask(loginRequest(ACCOUNT));
  client.ask(loginRequest("3.6002"));
  const struct {
    boost::shared_ptr<CCreditCompactRenewalApply> application;
    const char* refusal;
    int moved;  ///< days by which the compact A2 has been extended afterwards
    int times;
  } steps[] = {
      {application("A2", "SZ000001", opened, 1, 51), "展期天数 51 超过上限 50", 0, 0},  // as its appointment offers
      {application("A1", "SH600000", opened, 1, 101), "展期天数 101 超过上限 100", 0, 0},
      {application("A2", "SZ000001", opened, 1, 30, expiry + 99), "", 30, 1},
      {application("A2", "SZ000001", opened, 0, 30, expiry + 30), "展期天数须大于0", 30, 1},
      {application("A2", "SZ000001", opened, 0, 0, expiry + 40), "展期天数须大于0", 30, 1},
      {application("A2", "SH600000", opened, 1, 5), "柜台没有此合约", 30, 1},
      {application("A2", "SZ000001", opened + 1, 1, 5), "柜台没有此合约", 30, 1},
      {application("A4", "SH600000", julian(2024, 1, 4), 1, 5), "合约没有到期日", 30, 1},
      {application("A2", "SZ000001", opened, 0, 20, expiry + 50), "", 50, 2},
      {application("A2", "SZ000001", opened, 1, 5), "合约已展期 2 次，不可再次展期", 50, 2},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.refusal);
    const auto reply = client.ask(step.application);
    EXPECT_EQ(reply.error.errorMsg(), step.refusal);
    EXPECT_TRUE(reply.records.empty() && reply.extra.isEmpty());
    const auto renewed = compact(client, "A2");
    EXPECT_EQ(renewed->expiryDate, expiry + step.moved);
    EXPECT_EQ(renewed->renewalTimes, step.times);
    EXPECT_EQ(renewed->renewalFlag, step.times > 0 ? '1' : '0');
    if (*step.refusal == '\0') {
      const auto pushed = client.nextPush();
      ASSERT_EQ(pushed.size(), 1U);
      EXPECT_TRUE(sameFields(*pushed[0], *renewed));
    }
    expectNoOtherPush(client);
    const auto appointed = appointments(client).at(0);
    EXPECT_EQ(appointed->expiryDate, expiry + step.moved);
    EXPECT_EQ(appointed->renewedDays, 7 + step.moved);
    EXPECT_EQ(appointed->renewalTimes, step.times);
  }
}

TEST_F(CompactRequests, RefusesRenewalsInTheWayThatTheBrokerHas) {
  const struct {
    ERenewalRefusal kind;
    const char* error;
    const char* record;
    const char* message;
  } cases[] = {
      {ERenewalRefusal::Error, "展期天数 9 超过上限 8", "", ""},
      {ERenewalRefusal::Record, "柜台拒绝展期", "展期天数 9 超过上限 8", ""},
      {ERenewalRefusal::Reply, "", "", "展期天数 9 超过上限 8"},
  };
  for (const auto& c : cases) {
    CTestCounter client(options({0, 8, 0, true, c.kind}));
    client.ask(loginRequest(ACCOUNT));
    client.ask(loginRequest("3.6002"));
    const auto reply = client.ask(application("A3", "SZ000001", julian(2024, 1, 3), 1, 9));
    EXPECT_EQ(reply.error.errorCode(), *c.error == '\0' ? 0 : CounterRequestRefused);
    EXPECT_EQ(reply.error.errorMsg(), c.error);
    ASSERT_EQ(reply.records.size(), *c.record == '\0' ? 0U : 1U);
    for (const auto& record : reply.records)
      EXPECT_EQ(dynamic_cast<const rdservice::CErrorResp&>(*record).errorText, c.record);
    EXPECT_EQ(reply.extra.isEmpty(), *c.message == '\0');
    EXPECT_EQ(reply.extra.getStringField("msg"), c.message);
    EXPECT_EQ(compact(client, "A3")->expiryDate, julian(2090, 1, 1));
    EXPECT_EQ(compact(client, "A3")->renewalFlag, '0');
    expectNoOtherPush(client);
  }
}

TEST_F(CompactRequests, AppointmentsAreFoundByAccountSecurityAndOpenDate) {
  CTestCounter client(options());
  EXPECT_EQ(client.ask(appointmentsRequest("", "", 20240101, 20240131)).error.errorCode(), CounterNotLoggedIn);
  client.ask(loginRequest(ACCOUNT));
  client.ask(loginRequest("3.6002"));
  const struct {
    const char* account;
    const char* exchange;
    const char* code;
    int start;
    int end;
    const char* numbers;
  } cases[] = {
      {"6001", "", "", 20240101, 20240131, "A2 A1 A3"}, {"6001", "SZ", "000001", 20240101, 20240131, "A2 A3"},
      {"6001", "", "", 20240103, 20240103, "A3"},       {"6001", "", "", 20240102, 20240102, "A2 A1"},
      {"6001", "SH", "600000", 20240103, 20240131, ""}, {"6001", "", "", 20231231, 20240101, ""},
      {"6002", "", "", 20240101, 20240131, "A1"},
  };
  for (const auto& c : cases) {
    const auto reply = client.ask(appointmentsRequest(c.exchange, c.code, c.start, c.end, c.account));
    ASSERT_EQ(reply.records.size(), 1U);
    const auto& answer = dynamic_cast<const rdservice::CQueryAppointmentInfoResp&>(*reply.records[0]);
    EXPECT_EQ(compactNumbers(answer.records), c.numbers);
    EXPECT_EQ(answer.resultFlag, *c.numbers == '\0' ? 0 : 1);
    for (const auto& record : answer.records) EXPECT_EQ(static_cast<CAppointment&>(*record).accountId, c.account);
  }
  EXPECT_EQ(client.ask(appointmentsRequest("", "", 20240230, 20240301)).error.errorMsg(), "日期无效: 20240230");

  client.counter.closeCompact(ACCOUNT, compact(client, "A1")->getKey(), julian(2024, 3, 15));
  client.nextPush();
  const auto left = appointments(client);
  ASSERT_EQ(left.size(), 2U) << "a closed compact has none any more";
  EXPECT_EQ(left[0]->fieldA + left[1]->fieldA, "A2A3");
}

}  // namespace
}  // namespace counter
