#include "vn/CTradeClient.h"

#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CStructDes.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/meta_types.h"
#include "vn/CUserConfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <atomic>
#include <thread>

namespace {

using kit::CTestRuntime;
using rdservice::IDataPtr;
using utils::RDError;
using VN::CTradeClient;

constexpr const char* A = "3.1001";

rdservice::CAccountDataPtr dataOf(const char* key) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
}

/// Counts the answers to one request.
struct CAnswers {
  std::atomic<int> count{0};
  std::atomic<int> code{99};
  std::vector<IDataPtr> records;
  std::thread::id thread;

  CTradeClient::CCompactReply handler() {
    return [this](const RDError& error, const std::vector<IDataPtr>& got, int, const bson::BSONObj&) {
      records = got;
      thread = std::this_thread::get_id();
      code = error.errorCode();
      ++count;
    };
  }
};

void query(CAnswers& answers) {
  const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
  request->accountKey = A;
  CTradeClient::instance()->queryUnclosedCompacts(request, answers.handler());
}

/// Two compacts come; only a reply that has all of the account's tells its statistics.
TEST(CTradeClient, OnlyAWholeReplyTellsTheStatistics) {
  const struct {
    const char* what;
    int limit;
    int requestCount;
    rdservice::EKVCompactType type;
    const char* position;
    bool isWhole;
  } cases[] = {
      {"fewer than asked for", 0, 3, rdservice::CompactTypeAll, "", true},
      {"fewer than the limit", 3, 100, rdservice::CompactTypeAll, "", true},
      {"as many as asked for", 0, 2, rdservice::CompactTypeAll, "", false},
      {"as many as the counter gives", 2, 100, rdservice::CompactTypeAll, "", false},
      {"one type", 0, 100, rdservice::CompactTypeFinancing, "", false},
      {"the rest", 0, 100, rdservice::CompactTypeAll, "C0", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    runtime::CClientConfig config = kit::testConfig();
    config.broker.counterTypes[90].maxCompacts = c.limit;
    CTestRuntime runtime(config);
    const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
    request->accountKey = A;
    request->requestCount = c.requestCount;
    request->compactType = c.type;
    request->positionString = c.position;
    CTradeClient::instance()->queryUnclosedCompacts(
        request, [](const RDError&, const std::vector<IDataPtr>& records, int, const bson::BSONObj&) {
          dataOf(A)->updateDatas(records);
        });
    const auto info = dataOf(A)->getAccountInfo();
    runtime.counter().reply(0, {kit::compact(info, "C1", 1000, '0'), kit::compact(info, "C2", 1000, '0')});
    runtime.settle();
    EXPECT_EQ(dataOf(A)->getData(rdservice::RecordStkUnClosedCompacts).size(), 2U);
    EXPECT_EQ(dataOf(A)->getData(rdservice::RecordStkUnClosedCompactsStatics).size(), c.isWhole ? 1U : 0U);
  }
}

TEST(CTradeClient, AnswersEveryRequestOnce) {
  CTestRuntime runtime;
  kit::CScriptedCounter& counter = runtime.counter();
  CAnswers first;
  CAnswers failed;
  query(first);
  query(failed);
  EXPECT_EQ(first.count, 0);
  counter.fail(1, 8, "柜台繁忙");
  counter.reply(0, {kit::compact(dataOf(A)->getAccountInfo(), "C1")});
  counter.reply(0, {});
  counter.reply(1, {});
  runtime.settle();
  EXPECT_EQ(first.count, 1);
  EXPECT_EQ(first.code, RDError::Success);
  EXPECT_EQ(first.records.size(), 1U);
  EXPECT_NE(first.thread, std::this_thread::get_id());
  EXPECT_EQ(failed.count, 1);
  EXPECT_EQ(failed.code, 8);
}

TEST(CTradeClient, ASilentCounterEndsInATimeOut) {
  runtime::CClientConfig config = kit::testConfig();
  config.counter.requestTimeoutMs = 100;
  CTestRuntime runtime(config);
  CAnswers answers;
  query(answers);
  EXPECT_TRUE(kit::waitUntil([&] { return answers.count == 1; }));
  EXPECT_EQ(answers.code, RDError::TimedOut);
  runtime.counter().reply(0, {});
  runtime.settle();
  EXPECT_EQ(answers.count, 1);
}

TEST(CTradeClient, StoppingAnswersWhatIsOut) {
  CAnswers out;
  CAnswers late;
  {
    CTestRuntime runtime;
    query(out);
    runtime.client().stop();
    query(late);
    EXPECT_EQ(late.count, 1);
  }
  EXPECT_EQ(out.count, 1);
  EXPECT_EQ(out.code, RDError::Stopped);
  EXPECT_EQ(late.code, RDError::Stopped);
}

TEST(CTradeClient, GenericQueriesReplaceTheSetAndAreAnnouncedEvenWhenTheyFail) {
  CTestRuntime runtime;
  std::vector<std::string> announced;
  utils::CMutex mutex;
  const auto subscription =
      CTradeClient::instance()->subscribeCompactChange([&](bool replaced, const std::string& account, int type) {
        const utils::CMutexLock lock(mutex);
        announced.push_back(account + (replaced ? " replaced " : " failed ") + std::to_string(type));
      });
  const auto request = boost::make_shared<rdservice::CQueryDataReq>();
  request->accountInfo = VN::getUserConfig()->getAccountData(QString::fromLatin1(A));
  request->dataType = rdservice::RecordStkUnClosedCompacts;
  const auto ask = [&] { CTradeClient::instance()->queryData(request, nullptr); };
  const auto compact = [](const char* number) { return kit::compact(dataOf(A)->getAccountInfo(), number); };
  ask();
  runtime.counter().reply(0, {compact("C1"), compact("C2")});
  runtime.settle();
  ask();
  runtime.counter().push({compact("C9")});  // opened after the query was sent: the answer does not know it
  runtime.settle();
  runtime.counter().reply(1, {compact("C2")});
  runtime.settle();
  std::vector<std::string> numbers;
  for (const IDataPtr& data : dataOf(A)->getData(rdservice::RecordStkUnClosedCompacts))
    numbers.push_back(boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(data)->fieldA);
  EXPECT_THAT(numbers, testing::ElementsAre("C2", "C9"));
  ask();
  runtime.counter().fail(2, 1, "柜台繁忙");
  runtime.settle();
  ask();
  runtime.counter().reply(3, {});
  runtime.settle();
  EXPECT_THAT(announced, testing::ElementsAre("3.1001 replaced 13916", "3.1001 replaced 13916", "3.1001 failed 13916",
                                              "3.1001 replaced 13916"));
  EXPECT_TRUE(dataOf(A)->getData(rdservice::RecordStkUnClosedCompacts).empty());
}

TEST(CTradeClient, TellsWhatBecameOfEachRepayPriority) {
  CTestRuntime runtime;
  const struct {
    const char* lists[3];
    std::size_t errorsOfFailure;
  } cases[] = {{{"A|B|C|", "1|2|3|", "7||x|"}, 3}, {{"A|", "", ""}, 1}, {{"", "", "||"}, 2}, {{"", "", ""}, 1}};
  std::vector<RDError> errors;
  std::vector<IDataPtr> responses;
  std::atomic<int> answers{0};
  std::size_t sent = 0;
  const auto make = [&](const char* const(&lists)[3]) {
    auto request = boost::make_shared<rdservice::CSetCreditRepayPriorityReq>();
    request->accountInfo = dataOf(A)->getAccountInfo();
    request->openDates = lists[0];
    request->orderNumbers = lists[1];
    request->priorities = lists[2];
    return request;
  };
  const auto send = [&](const rdservice::CSetCreditRepayPriorityReqPtr& request) {
    CTradeClient::instance()->setCreditRepayPriority(
        request, [&](const std::vector<RDError>& gotErrors, const std::vector<IDataPtr>& gotResponses) {
          errors = gotErrors;
          responses = gotResponses;
          ++answers;
        });
  };
  for (const auto& c : cases) {
    const auto request = make(c.lists);
    send(request);
    EXPECT_TRUE(sameFields(*runtime.counter().held().at(sent), *request));
    runtime.counter().fail(sent++, 8, "柜台繁忙");
    runtime.settle();
    ASSERT_EQ(errors.size(), c.errorsOfFailure) << c.lists[0];
    EXPECT_EQ(errors.back().errorMsg(), "柜台繁忙");
    EXPECT_TRUE(responses.empty());
  }
  send(make(cases[0].lists));
  const auto set = boost::make_shared<rdservice::CCreditRepayPriorityResp>();
  set->fieldA = "A";
  set->fieldB = "1";
  const auto refused = boost::make_shared<rdservice::CErrorResp>();
  refused->errorCode = 9;
  refused->errorText = "不是数字";
  runtime.counter().reply(sent, {set, nullptr, refused, kit::compact(dataOf(A)->getAccountInfo(), "C1")});
  runtime.settle();
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_EQ(errors[0].errorMsg(), "不是数字");
  ASSERT_EQ(responses.size(), 1U);
  EXPECT_EQ(responses[0]->getKey(), "1____A");

  const auto strange = make(cases[0].lists);
  strange->accountInfo = nullptr;
  send(strange);
  EXPECT_TRUE(kit::waitUntil([&] { return answers == 6; }));
  ASSERT_EQ(errors.size(), 3U);
  EXPECT_EQ(errors[0].errorCode(), RDError::NoAccount);
  EXPECT_EQ(runtime.counter().held().size(), 5U);
}

TEST(CTradeClient, AsksForAppointmentsOfAnAccountOnly) {
  CTestRuntime runtime;
  std::atomic<int> code{99};
  IDataPtr data;
  std::string message;
  const auto ask = [&](const rdservice::CAccountInfoPtr& account) {
    const auto request = boost::make_shared<rdservice::CQueryAppointmentInfoReq>();
    request->accountInfo = account;
    code = 99;
    CTradeClient::instance()->queryAppointmentInfo(
        request, [&, caller = std::this_thread::get_id()](const RDError& error, const IDataPtr& got,
                                                          const bson::BSONObj& extra) {
          EXPECT_NE(std::this_thread::get_id(), caller);
          data = got;
          message = extra.getStringField("msg");
          code = error.errorCode();
        });
  };
  ask(nullptr);
  EXPECT_TRUE(kit::waitUntil([&] { return code == RDError::NoAccount; }));
  EXPECT_TRUE(runtime.counter().held().empty());
  const auto answer = boost::make_shared<rdservice::CErrorResp>();
  answer->errorCode = 7;
  bson::BSONObjBuilder extra;
  extra.append("msg", "提示");
  ask(dataOf(A)->getAccountInfo());
  runtime.counter().reply(0, {answer}, extra.obj());
  runtime.settle();
  EXPECT_EQ(code, RDError::Success);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(data->getKey(), answer->getKey());
  EXPECT_EQ(message, "提示");
  ask(dataOf(A)->getAccountInfo());
  runtime.counter().reply(1, {});
  runtime.settle();
  EXPECT_EQ(code, RDError::Success);
  EXPECT_EQ(data, nullptr);
}

TEST(CTradeClient, LoginStatusFollowsTheCounter) {
  CTestRuntime runtime;
  CTradeClient* client = CTradeClient::instance();
  std::vector<rdservice::EBROKER_LOGIN_STATUS> logins;
  QObject here;
  QObject::connect(client, &CTradeClient::sigLoginStatus, &here,
                   [&](const rdservice::CAccountInfoPtr&, rdservice::EBROKER_LOGIN_STATUS status, const std::string&) {
                     logins.push_back(status);
                   });
  EXPECT_EQ(client->getLoginStatus(A), rdservice::LoginStatusReady);
  EXPECT_EQ(client->getLoginStatus("3.9999"), rdservice::LoginStatusNone);
  client->setLogin(A, false);
  runtime.settle();
  EXPECT_EQ(client->getLoginStatus(A), rdservice::LoginStatusLoggedOut);
  client->setLogin(A, true);
  runtime.settle();
  EXPECT_EQ(client->getLoginStatus(A), rdservice::LoginStatusReady);
  EXPECT_THAT(logins, testing::ElementsAre(rdservice::LoginStatusLoggedOut, rdservice::LoginStatusLoggingIn,
                                           rdservice::LoginStatusReady));
}

}  // namespace
