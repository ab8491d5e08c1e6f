#include "book_kit.h"

#include "counter/counter_errors.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/rdservice_enums.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <set>

namespace counter {
namespace {

using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;
using utils::RDError;

constexpr const char* ACCOUNT = "3.6001";

const CStkUnClosedCompacts& compact(const IDataPtr& record) {
  return static_cast<const CStkUnClosedCompacts&>(*record);
}

boost::shared_ptr<CStkUnClosedCompacts> editable(const IDataPtr& record) {
  return boost::static_pointer_cast<CStkUnClosedCompacts>(record->copy());
}

class SqlCounter : public testing::Test {
 protected:
  SqlCounter() { EXPECT_EQ(m_book.load().errorText(), ""); }

  CSqlCounterOptions options(int readers = 2) const {
    CSqlCounterOptions options;
    options.databasePath = m_book.database();
    options.readers = readers;
    return options;
  }

  CTestBook m_book;
};

TEST_F(SqlCounter, answersByPositionTypeAndCount) {
  const struct {
    int compactType;
    const char* position;
    int count;
    int counterLimit;  ///< 0 for none
    const char* numbers;
  } CASES[] = {
      {' ', "", 0, 0, "A1 A2 A3 A4"},
      {' ', "", 3, 0, "A1 A2 A3"},
      {' ', "", 999999, 0, "A1 A2 A3 A4"},
      {' ', "0000000002", 0, 0, "A3 A4"},
      {' ', "0000000002", 1, 0, "A3"},
      {' ', "0000000004", 5, 0, ""},
      {'0', "", 0, 0, "A1 A3"},
      {'1', "", 1, 0, "A2"},
      {'1', "0000000002", 0, 0, "A4"},
      {' ', "", 0, 3, "A1 A2 A3"},
      {' ', "", 2, 3, "A1 A2"},
      {' ', "0000000001", 9, 3, "A2 A3 A4"},
  };
  for (const auto& c : CASES) {
    auto limited = options();
    limited.maxCompacts = {{90, c.counterLimit}};
    CTestCounter client(limited);
    client.ask(loginRequest(ACCOUNT));
    const auto reply = client.ask(compactsRequest(ACCOUNT, c.compactType, c.position, c.count));
    EXPECT_EQ(reply.error.errorMsg(), "");
    EXPECT_EQ(compactNumbers(reply.records), c.numbers) << c.compactType << c.position << " " << c.count;
  }
}

TEST_F(SqlCounter, answersTheOtherRequests) {
  CTestCounter client(options());
  const auto accounts = client.ask(accountsRequest()).records;
  ASSERT_EQ(accounts.size(), 2U);
  EXPECT_EQ(accounts[0]->getKey(), ACCOUNT);
  EXPECT_EQ(client.ask(accountsRequest()).records, accounts) << "accounts are shared records";
  const auto instruments = client.ask(instrumentsRequest()).records;
  ASSERT_EQ(instruments.size(), 2U);
  EXPECT_EQ(instruments[1]->getKey(), "SZ000001");
  EXPECT_EQ(static_cast<const rdservice::CInstrumentInfo&>(*instruments[1]).priceTick, 0.01);
  client.ask(loginRequest(ACCOUNT));
  const auto data = client.ask(dataRequest(ACCOUNT, rdservice::RecordStkUnClosedCompacts)).records;
  EXPECT_EQ(compactNumbers(data), "A1 A2 A3 A4");
  EXPECT_EQ(compact(data[0]).accountInfo, accounts[0]);
}

TEST_F(SqlCounter, keepsTheLoginStateOfEachAccount) {
  CTestCounter client(options());
  const auto code = [&](const IDataPtr& request) { return client.ask(request).error.errorCode(); };
  EXPECT_EQ(client.ask(compactsRequest(ACCOUNT)).error.errorMsg(), "资金账号未登录: 6001(张伟)");
  EXPECT_EQ(code(loginRequest(ACCOUNT)), 0);
  EXPECT_EQ(client.nextLogin(), "3.6001 2");
  EXPECT_EQ(code(compactsRequest(ACCOUNT)), 0);
  EXPECT_EQ(code(compactsRequest("3.6002")), CounterNotLoggedIn);
  EXPECT_EQ(code(dataRequest("3.6002", rdservice::RecordStkUnClosedCompacts)), CounterNotLoggedIn);
  EXPECT_EQ(code(accountsRequest()), 0) << "reading the accounts again logs nobody out";
  EXPECT_EQ(code(compactsRequest(ACCOUNT)), 0);
  EXPECT_EQ(code(loginRequest(ACCOUNT, false)), 0);
  EXPECT_EQ(client.nextLogin(), "3.6001 0");
  EXPECT_EQ(code(compactsRequest(ACCOUNT)), CounterNotLoggedIn);

  for (const auto* unknown : {"3.9", "2.6001", "6001", "", "' OR 1=1 --"}) {
    EXPECT_EQ(code(loginRequest(unknown)), CounterUnknownAccount) << unknown;
    EXPECT_EQ(code(compactsRequest(unknown)), CounterUnknownAccount) << unknown;
  }
  client.ask(loginRequest(ACCOUNT));
  EXPECT_EQ(code(dataRequest(ACCOUNT, 12345)), RDError::Unsupported);
  EXPECT_EQ(code(boost::make_shared<CStkUnClosedCompacts>()), RDError::Unsupported) << "a record is no request";
}

TEST_F(SqlCounter, latencyHoldsUpNoWorker) {
  const auto LATENCY = std::chrono::milliseconds(300);
  auto slow = options(1);
  slow.latency = LATENCY;
  CTestCounter client(slow);
  std::atomic<int> slowReplies{0};
  std::atomic<bool> allLate{true};
  std::promise<void> allReplied;
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < 10; ++i)
    client.counter.request(accountsRequest(), [&](const auto&, const auto&, const auto&) {
      if (std::chrono::steady_clock::now() - begin < LATENCY) allLate = false;
      if (++slowReplies == 10) allReplied.set_value();
    });
  // The one reader has to work through the ten before it comes to these two, and only the latency differs.
  client.counter.setLatency(std::chrono::hours(1));
  auto never = client.send(accountsRequest());
  ASSERT_EQ(allReplied.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  client.counter.setLatency(std::chrono::milliseconds(0));
  EXPECT_TRUE(client.ask(accountsRequest()).error.isSuccess());
}

}  // namespace
}  // namespace counter
