#include "book_kit.h"

#include "counter/counter_errors.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStructDes.h"
#include "rdservice/rdservice_enums.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <atomic>
#include <map>
#include <tuple>

namespace counter {
namespace {

using rdservice::CStkClosedCompacts;
using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;
using utils::RDError;

constexpr const char* ACCOUNT = "3.6001";

const CStkUnClosedCompacts& compact(const IDataPtr& record) {
  return static_cast<const CStkUnClosedCompacts&>(*record);
}

const CStkClosedCompacts& closedCompact(const IDataPtr& record) {
  return static_cast<const CStkClosedCompacts&>(*record);
}

boost::shared_ptr<CStkUnClosedCompacts> editable(const IDataPtr& record) {
  return boost::static_pointer_cast<CStkUnClosedCompacts>(record->copy());
}

class SqlCounter : public testing::Test {
 protected:
  SqlCounter() {
    // As the unclosed ones of the book, but for their dates.
    m_book.setFile("closed_compacts.csv",
                   "account,exchange,code,compact_type,compact_no,open_date,close_date\n"
                   "6001,SH,600000,0,A1,today-90,today-9\n"
                   "6002,SH,600000,0,B1,today-90,today-8\n"
                   "6001,SZ,000001,1,A2,today-90,today-8\n"
                   "6001,SH,600000,0,A3,today-80,today-7\n"
                   "6001,SZ,000001,1,A4,today-70,today\n");
    EXPECT_EQ(m_book.load().errorText(), "");
  }

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
    bool repeats;
    const char* numbers;
  } CASES[] = {
      {' ', "", 0, 0, false, "A1 A2 A3 A4"},
      {' ', "", 3, 0, false, "A1 A2 A3"},
      {' ', "", 999999, 0, false, "A1 A2 A3 A4"},
      {' ', "0000000002", 0, 0, false, "A3 A4"},
      {' ', "0000000002", 1, 0, false, "A3"},
      {' ', "0000000004", 5, 0, false, ""},
      {' ', "00000000025", 1, 0, false, "A3"},  // whose record is gone meanwhile
      {'0', "", 0, 0, false, "A1 A3"},
      {'1', "", 1, 0, false, "A2"},
      {'1', "0000000002", 0, 0, false, "A4"},
      {' ', "", 0, 3, false, "A1 A2 A3"},
      {' ', "", 2, 3, false, "A1 A2"},
      {' ', "0000000001", 9, 3, false, "A2 A3 A4"},
      // A repeated record comes on top of the count, so that a count of one gets on.
      {' ', "", 1, 0, true, "A1"},
      {' ', "0000000001", 1, 0, true, "A1 A2"},
      {' ', "0000000002", 9, 1, true, "A2 A3"},
      {' ', "0000000004", 2, 0, true, "A4"},
      {' ', "00000000025", 1, 0, true, "A3"},
      {'1', "0000000002", 1, 0, true, "A2 A4"},
      {'0', "0000000002", 1, 0, true, "A3"},
  };
  for (const int dataType : {rdservice::RecordStkUnClosedCompacts, rdservice::RecordStkClosedCompacts})
    for (const auto& c : CASES) {
      auto limited = options();
      limited.maxCompacts = {{90, c.counterLimit}, {102, 1}};
      limited.repeatingTypes = {c.repeats ? 90 : 102};
      CTestCounter client(limited);
      client.ask(loginRequest(ACCOUNT));
      const auto reply = client.ask(compactsRequest(ACCOUNT, c.compactType, c.position, c.count, dataType));
      EXPECT_EQ(reply.error.errorMsg(), "");
      EXPECT_EQ(compactNumbers(reply.records), c.numbers)
          << dataType << " " << c.compactType << c.position << " " << c.count << " " << c.repeats;
      for (const auto& record : reply.records) EXPECT_EQ(record->getBaseId(), dataType);
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
  const auto closed = client.ask(dataRequest(ACCOUNT, rdservice::RecordStkClosedCompacts)).records;
  ASSERT_EQ(compactNumbers(closed), "A1 A2 A3 A4");
  EXPECT_EQ(closedCompact(closed[3]).closeDate, CTestBook::today().toJulianDay());
  EXPECT_EQ(closedCompact(closed[3]).positionString, "0000000004");
  EXPECT_EQ(closedCompact(closed[3]).accountInfo, accounts[0]);
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

TEST_F(SqlCounter, latencyDelaysRepliesAndHoldsUpNoReader) {
  CTestCounter client(options(1));
  client.counter.setLatency(std::chrono::hours(1));
  std::vector<std::future<CReply>> late;
  for (int i = 0; i < 10; ++i) late.push_back(client.send(accountsRequest()));
  client.counter.setLatency(std::chrono::milliseconds(0));
  // The one reader comes to this request only after the ten.
  EXPECT_TRUE(client.ask(accountsRequest()).error.isSuccess());
  for (const auto& reply : late) EXPECT_EQ(reply.wait_for(std::chrono::seconds(0)), std::future_status::timeout);

  const auto latency = std::chrono::milliseconds(30);
  client.counter.setLatency(latency);
  const auto begin = std::chrono::steady_clock::now();
  auto reply = client.send(accountsRequest());
  EXPECT_EQ(get(std::move(reply)).records.size(), 2U);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, latency);
}

TEST_F(SqlCounter, failsAndFallsSilentAsOftenAsAsked) {
  auto faulty = options(1);
  faulty.failEvery = 2;
  CTestCounter client(faulty);
  std::vector<int> codes;
  for (int i = 0; i < 5; ++i) codes.push_back(client.ask(loginRequest(ACCOUNT)).error.errorCode());
  EXPECT_EQ(codes, (std::vector<int>{0, CounterSimulated, 0, CounterSimulated, 0}));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(client.nextLogin(), "3.6001 2") << "only log-ins that succeeded are reported";

  client.counter.setFailEvery(0);
  client.counter.setSilentEvery(3);
  std::string answered;  // written by the one reader only
  for (int i = 1; i <= 6; ++i)
    client.counter.request(accountsRequest(),
                           [&answered, i](const auto&, const auto&, const auto&) { answered += std::to_string(i); });
  client.counter.setSilentEvery(0);
  client.ask(accountsRequest());  // answered after the six
  EXPECT_EQ(answered, "1245");
}

TEST_F(SqlCounter, stopEndsEverything) {
  const auto token = std::make_shared<int>();
  std::atomic<int> replies{0};
  CTestCounter client(options(1));
  const auto count = [&replies, token](const auto&, const auto&, const auto&) { ++replies; };
  client.counter.setLatency(std::chrono::hours(1));
  for (int i = 0; i < 5; ++i) client.counter.request(accountsRequest(), count);
  client.counter.setLatency(std::chrono::milliseconds(0));

  std::promise<void> entered;
  std::promise<void> released;
  std::atomic<bool> ended{false};
  client.counter.request(accountsRequest(), [&](const auto&, const auto&, const auto&) {
    entered.set_value();
    released.get_future().wait();
    ended = true;
  });
  entered.get_future().wait();
  for (int i = 0; i < 5; ++i) client.counter.request(accountsRequest(), count);  // wait behind the reply that runs
  auto stopped = std::async(std::launch::async, [&] {
    client.counter.stop();
    return ended.load();
  });
  released.set_value();
  EXPECT_TRUE(stopped.get()) << "stop returned while a reply was running";
  client.counter.stop();
  client.counter.request(accountsRequest(), count);
  client.counter.changeRandomCompacts(ACCOUNT, 1, 1);
  EXPECT_LE(replies, 5) << "those behind the reply may have been answered, those with latency not";
  EXPECT_EQ(token.use_count(), 2) << "a dropped request was kept";  // this one and that in `count`
}

TEST_F(SqlCounter, pushesWhatChangesAtTheBroker) {
  CTestCounter client(options());
  client.ask(loginRequest(ACCOUNT));
  const auto before = client.ask(compactsRequest(ACCOUNT)).records;

  auto changed = editable(before[1]);
  changed->unpaidAmount = 150;
  changed->repaidAmount = 50;
  auto added = editable(before[1]);
  added->fieldA = "A9";
  added->positionString = "0000000009";
  // One record that cannot be written keeps the whole change from happening.
  auto stranger = editable(before[0]);
  stranger->accountInfo = boost::make_shared<rdservice::CAccountInfo>();
  auto taken = editable(added);
  taken->positionString = "0000000001";
  client.counter.changeCompacts({changed, stranger});
  client.counter.changeCompacts({changed, taken});
  client.counter.changeCompacts({added->copy(), boost::make_shared<CStkUnClosedCompacts>()});
  EXPECT_EQ(compactNumbers(client.ask(compactsRequest(ACCOUNT)).records), "A1 A2 A3 A4");

  changed->interestAmount = 7;
  client.counter.changeCompacts({changed, added});
  const auto pushed = client.nextPush();  // the refused ones pushed nothing
  ASSERT_EQ(compactNumbers(pushed), "A2 A9");
  EXPECT_TRUE(sameFields(*pushed[0], *changed));
  EXPECT_EQ(compact(pushed[0]).accountInfo, compact(before[0]).accountInfo);
  EXPECT_NE(pushed[0], changed) << "the caller's record may be published, the pushed one is not";
  const auto after = client.ask(compactsRequest(ACCOUNT)).records;
  ASSERT_EQ(compactNumbers(after), "A1 A2 A3 A4 A9");
  EXPECT_TRUE(sameFields(*after[1], *changed));
  EXPECT_TRUE(sameFields(*after[0], *before[0]));
}

TEST_F(SqlCounter, closesACompact) {
  CTestCounter client(options());
  client.ask(loginRequest(ACCOUNT));
  const auto before = client.ask(compactsRequest(ACCOUNT)).records;
  auto owing = editable(before[1]);  // of securities lending
  owing->lendingVolume = 300;
  owing->compactAmount = 250;
  owing->repaidAmount = 50;
  owing->interestAmount = 7;
  owing->penaltyAmount = 2;
  owing->feeAmount = 3;
  owing->equityCompensation = 4;
  client.counter.changeCompacts({owing});
  client.counter.changeRandomCompacts(ACCOUNT, 0, 1);  // the rows are known from here on
  client.nextPush();

  const int day = static_cast<int>(CTestBook::today().toJulianDay());
  const auto key = owing->getKey();
  client.counter.closeCompact("3.6002", key, day);  // none of these three changes anything
  client.counter.closeCompact("3.9", key, day);
  client.counter.closeCompact(ACCOUNT, key + "x", day);
  client.counter.closeCompact(ACCOUNT, key, day);
  const auto pushed = client.nextPush();
  ASSERT_EQ(pushed.size(), 2U);
  ASSERT_EQ(pushed[0]->getBaseId(), rdservice::RecordStkUnClosedCompacts);
  ASSERT_EQ(pushed[1]->getBaseId(), rdservice::RecordStkClosedCompacts);
  auto settled = *owing;
  settled.lendingVolume = 0;
  settled.repaidAmount = 250;
  settled.unpaidAmount = settled.interestAmount = settled.penaltyAmount = 0;
  settled.feeAmount = settled.equityCompensation = 0;
  EXPECT_TRUE(sameFields(*pushed[0], settled));
  const auto& closed = closedCompact(pushed[1]);
  EXPECT_EQ(closed.getKey(), key);
  EXPECT_EQ(closed.accountInfo, compact(before[0]).accountInfo);
  EXPECT_EQ(std::tie(closed.compactType, closed.volume, closed.closeDate), std::make_tuple('1', 300, day));
  EXPECT_EQ(std::tie(closed.compactAmount, closed.repaidAmount, closed.interestAmount, closed.feeAmount),
            std::make_tuple(250, 250, 9, 3));
  EXPECT_EQ(closed.positionString, "0000000005");

  EXPECT_EQ(compactNumbers(client.ask(compactsRequest(ACCOUNT)).records), "A1 A3 A4");
  const auto stored = client.ask(dataRequest(ACCOUNT, rdservice::RecordStkClosedCompacts)).records;
  ASSERT_EQ(compactNumbers(stored), "A1 A2 A3 A4 A2");
  EXPECT_TRUE(sameFields(*stored[4], closed));

  client.counter.closeCompact(ACCOUNT, key, day);  // once only
  client.counter.changeRandomCompacts(ACCOUNT, 99, 1);
  EXPECT_EQ(client.nextPush().size(), 3U);
}

TEST_F(SqlCounter, aClosedCompactComesBehindTheOthersWhateverTheirPositions) {
  for (const auto& [last, expected] : std::map<std::string, std::string>{
           {"7", "8"}, {"0199", "0200"}, {"99", "990000000001"}, {"Z", "Z0000000001"}, {"a-09", "a-10"}}) {
    m_book.setFile("closed_compacts.csv",
                   "account,exchange,code,compact_type,compact_no,open_date,close_date,position_string\n"
                   "6001,SH,600000,0,C1,today-90,today,0\n6001,SH,600000,0,C2,today-90,today," +
                       last + "\n");
    ASSERT_EQ(m_book.load().errorText(), "");
    CTestCounter client(options());
    client.ask(loginRequest(ACCOUNT));
    client.counter.closeCompact(ACCOUNT, client.ask(compactsRequest(ACCOUNT)).records[3]->getKey(), 1);
    EXPECT_EQ(closedCompact(client.nextPush().at(1)).positionString, expected);
    const auto next = compactsRequest(ACCOUNT, ' ', last, 0, rdservice::RecordStkClosedCompacts);
    EXPECT_EQ(compactNumbers(client.ask(next).records), "A4") << last;
  }
}

TEST_F(SqlCounter, changesRandomCompactsAlikeForTheSameSeed) {
  const auto changes = [](unsigned seed) {
    CTestBook book;
    EXPECT_TRUE(book.load().isLoaded());
    CTestCounter client({book.database()});
    client.ask(loginRequest(ACCOUNT));
    std::map<std::string, IDataPtr> held;
    for (const auto& record : client.ask(compactsRequest(ACCOUNT)).records) held[record->getKey()] = record;
    std::string text;
    for (const int count : {2, 99, 0, 1}) {  // the third pushes nothing
      client.counter.changeRandomCompacts(ACCOUNT, count, seed);
      if (count == 0) continue;
      const auto pushed = client.nextPush();
      EXPECT_EQ(pushed.size(), static_cast<std::size_t>(std::min(count, 4)));
      for (const auto& record : pushed) {
        const auto& now = compact(record);
        const auto& old = compact(held[record->getKey()]);
        EXPECT_GT(now.interestAmount, old.interestAmount);
        EXPECT_LT(now.unpaidAmount, old.unpaidAmount);
        EXPECT_DOUBLE_EQ(now.unpaidAmount + now.repaidAmount, old.unpaidAmount + old.repaidAmount);
        held[record->getKey()] = record;
        text += now.fieldA + " " + std::to_string(now.unpaidAmount) + "\n";
      }
    }
    for (const auto& record : client.ask(compactsRequest(ACCOUNT)).records)
      EXPECT_TRUE(sameFields(*record, *held[record->getKey()])) << "pushed and stored differ";
    return text;
  };
  EXPECT_EQ(changes(1), changes(1));
  EXPECT_NE(changes(1), changes(2));
}

TEST_F(SqlCounter, seesABookThatIsReplacedMeanwhile) {
  CTestCounter client(options());
  client.ask(loginRequest(ACCOUNT));
  const auto before = client.ask(accountsRequest()).records;
  m_book.setFile("accounts.csv",
                 "account_id,broker_type,counter_type,name\n6001,3,90,张伟\n6002,3,102,新名\n6003,3,90,\n");
  m_book.setFile("unclosed_compacts.csv",
                 "account,exchange,code,compact_type,compact_no,open_date\n6001,SH,600000,0,N1,today\n");
  ASSERT_EQ(m_book.load().errorText(), "");
  const auto after = client.ask(accountsRequest()).records;
  ASSERT_EQ(after.size(), 3U);
  EXPECT_EQ(after[0], before[0]) << "an unchanged account keeps its record";
  EXPECT_NE(after[1], before[1]);
  EXPECT_EQ(compactNumbers(client.ask(compactsRequest(ACCOUNT)).records), "N1");
}

}  // namespace
}  // namespace counter
