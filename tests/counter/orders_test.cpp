// Orders at the counter: what they are refused for, and what filling them does to liabilities and positions.

#include "book_kit.h"

#include "counter/CSqlConnection.h"
#include "counter/counter_errors.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkOrder.h"
#include "rdservice/CStructDes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <cmath>
#include <map>
#include <set>

namespace counter {
namespace {

using rdservice::CPositionStatics;
using rdservice::CStkCompactChange;
using rdservice::CStkOrder;
using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;

constexpr const char* ACCOUNT = "3.6001";

double chargesOf(const CStkUnClosedCompacts& c) {
  return c.interestAmount + c.penaltyAmount + c.feeAmount + c.equityCompensation;
}

std::string describe(const CStkUnClosedCompacts& c) {
  return fmt::format("{} {} {:g}+{:g}", c.fieldA, c.financingVolume + c.lendingVolume, c.unpaidAmount, chargesOf(c));
}

template <class Record>
std::vector<boost::shared_ptr<const Record>> only(const std::vector<IDataPtr>& records) {
  std::vector<boost::shared_ptr<const Record>> found;
  for (const auto& record : records)
    if (const auto one = boost::dynamic_pointer_cast<const Record>(record)) found.push_back(one);
  return found;
}

class Orders : public testing::Test {
 protected:
  Orders() {
    m_book.setFile("unclosed_compacts.csv",
                   "account,exchange,code,compact_type,source,compact_no,open_date,financing_volume,lending_volume,"
                   "unpaid_amount,interest_amount,fee_amount,repay_priority\n"
                   "6001,SH,600000,1,0,L1,today-30,0,300,3000,0,0,0\n"
                   "6001,SH,600000,1,0,L2,today-40,0,200,2000,5,0,0\n"
                   "6001,SH,600000,1,1,S1,today-50,0,400,4000,0,0,0\n"
                   "6001,SH,600000,0,0,F1,today-20,1000,0,1000,10,2.5,0\n"
                   "6001,SZ,000001,0,0,F2,today-10,500,0,500,0,0,3\n"
                   "6001,SZ,000001,0,1,F3,today-60,700,0,700,0,0,1\n"
                   "6002,SH,600000,1,0,L1,today-90,0,100,1000,0,0,0\n"
                   "6002,SH,600000,0,0,F9,today-90,100,0,1000,0,0,1\n");
    m_book.setFile("positions.csv",
                   "account,exchange,code,current_volume,available_volume,hedge_flag\n"
                   "6001,SH,600000,1000,900,1\n"
                   "6001,SH,600000,77777,77777,2\n"
                   "6001,SZ,000001,100,100,1\n");
    m_book.setFile("quotes.csv", "exchange,code,last_price\nSH,600000,10\n");
    m_book.setFile("change_details.csv",
                   "account,exchange,code,compact_type,compact_no,open_date,change_date,change_kind,serial_no\n"
                   "6001,SH,600000,1,L1,today-30,today-30,融券卖出,Txyz\n");
    EXPECT_EQ(m_book.load().errorText(), "");
  }

  CSqlCounterOptions options() const {
    CSqlCounterOptions options;
    options.databasePath = m_book.database();
    return options;
  }

  static IDataPtr request(int operation, const char* stock, std::int64_t volume, double price = 0) {
    auto order = boost::make_shared<rdservice::CPlaceOrderReq>();
    order->accountKey = ACCOUNT;
    order->exchangeId = std::string(stock, 2);
    order->code = stock + 2;
    order->operationType = operation;
    order->volume = volume;
    order->price = price;
    order->remark = "remark";
    return order;
  }

  static std::string position(CTestCounter& client, const char* stock) {
    for (const auto& held :
         only<CPositionStatics>(client.ask(dataRequest(ACCOUNT, rdservice::RecordPositionStatics)).records))
      if (held->exchangeId.str() + held->code.str() == stock && held->hedgeFlag == '1')
        return fmt::format("{}/{}", held->currentVolume, held->availableVolume);
    return "none";
  }

  static std::map<std::string, boost::shared_ptr<const CStkUnClosedCompacts>> compacts(CTestCounter& client) {
    std::map<std::string, boost::shared_ptr<const CStkUnClosedCompacts>> all;
    for (const auto& compact : only<CStkUnClosedCompacts>(client.ask(compactsRequest(ACCOUNT)).records))
      all[compact->fieldA] = compact;
    return all;
  }

  CTestBook m_book;
};

TEST_F(Orders, FilledOnesLowerLiabilitiesAndPositions) {
  const struct {
    int operation;
    const char* stock;
    std::int64_t volume;
    double price;
    const char* reason;  ///< null when it is filled
    std::set<std::string> changed;
    const char* position;
    double filledAmount;
  } cases[] = {
      {23, "SH600000", 100, 0, nullptr, {"L2 100 1000+5"}, "900/800", 0},
      {23, "SH600000", 1, 0, nullptr, {"L2 199 1990+5"}, "999/899", 0},
      {23, "SH600000", 450, 0, nullptr, {"L2 0 0+5", "L1 50 500+0"}, "550/450", 0},
      {23, "SH600000", 500, 0, nullptr, {"L2 0 0+5", "L1 closed"}, "500/400", 0},
      {23, "SH600000", 501, 0, "超过未还融券数量: 未还 500，委托 501", {}, "1000/900", 0},
      {23, "SH600000", 901, 0, "可用数量不足: 可用 900，委托 901", {}, "1000/900", 0},
      {23, "SZ000001", 100, 0, "超过未还融券数量: 未还 0，委托 100", {}, "100/100", 0},
      {1012, "SH600000", 400, 0, nullptr, {"S1 closed"}, "600/500", 0},
      {1012, "SH600000", 401, 0, "超过未还融券数量: 未还 400，委托 401", {}, "1000/900", 0},
      {22, "SH600000", 500, 0, nullptr, {"L2 0 0+5", "L1 closed"}, "1000/900", 5000},
      {22, "SH600000", 10, 9.87, nullptr, {"L2 190 1900+5"}, "1000/900", 98.7},
      {1021, "SH600000", 100, 0, nullptr, {"S1 300 3000+0"}, "1000/900", 1000},
      // Money: the compact with a priority first, of each the principal first; a special one is not touched.
      {24, "SH600000", 10, 0, nullptr, {"F2 400 400+0"}, "990/890", 100},
      {24, "SH600000", 60, 0, nullptr, {"F2 closed", "F1 900 900+12.5"}, "940/840", 600},
      {24, "SH600000", 150, 0, nullptr, {"F2 closed", "F1 0 0+12.5"}, "850/750", 1500},
      {24, "SH600000", 151, 0, nullptr, {"F2 closed", "F1 0 0+2.5"}, "849/749", 1510},
      {24, "SH600000", 900, 0, nullptr, {"F2 closed", "F1 closed"}, "100/0", 9000},
      {24, "SZ000001", 100, 4.999, nullptr, {"F2 0 0.1+0"}, "0/0", 499.9},
      {24, "SZ000001", 100, 0, "证券没有行情，须给出委托价格", {}, "100/100", 0},
      {24, "SZ000001", 101, 4, "可用数量不足: 可用 100，委托 101", {}, "100/100", 0},
      {25, "SH600000", 100, 0, "柜台不支持此业务: 直接还款", {}, "1000/900", 0},
      {77, "SH600000", 100, 0, "柜台不支持此业务: 77", {}, "1000/900", 0},
      {23, "SH600000", 0, 0, "委托数量须大于0", {}, "1000/900", 0},
      {23, "SH600000", -5, 0, "委托数量须大于0", {}, "1000/900", 0},
      {24, "SH600000", 100, -1, "委托价格不能小于0", {}, "1000/900", 0},
      {23, "SH600001", 100, 0, "柜台没有此证券: SH600001", {}, "none", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(fmt::format("{} {} {} {}", c.operation, c.stock, c.volume, c.price));
    ASSERT_EQ(m_book.load().errorText(), "");
    CTestCounter client(options());
    client.ask(loginRequest(ACCOUNT));
    client.ask(loginRequest("3.6002"));
    const auto before = compacts(client);
    const auto others = client.ask(compactsRequest("3.6002")).records;
    const bool isFilled = c.reason == nullptr;

    const auto reply = client.ask(request(c.operation, c.stock, c.volume, c.price));
    ASSERT_EQ(reply.records.size(), 1U) << reply.error.errorMsg();
    const auto& order = static_cast<const CStkOrder&>(*reply.records[0]);
    EXPECT_EQ(order.reason, isFilled ? "" : c.reason);
    EXPECT_EQ(order.state, isFilled ? '0' : '2');
    EXPECT_EQ(order.orderId + order.remark, "00000001remark");
    const auto first = client.nextPush();
    ASSERT_TRUE(sameFields(*only<CStkOrder>(first).at(0), order));
    EXPECT_NE(first.back(), reply.records[0]) << "one record must not go two ways";

    // What the filling pushes is what is stored.
    std::set<std::string> pushedNumbers;
    if (isFilled) {
      const auto pushed = client.nextPush();
      const auto& filled = *only<CStkOrder>(pushed).at(0);
      EXPECT_EQ(filled.state, '1');
      EXPECT_EQ(filled.filledVolume, c.volume);
      EXPECT_DOUBLE_EQ(filled.filledAmount, c.filledAmount);
      EXPECT_TRUE(sameFields(filled, *client.ask(dataRequest(ACCOUNT, rdservice::RecordStkOrder)).records.at(0)));
      const auto now = compacts(client);
      for (const auto& compact : only<CStkUnClosedCompacts>(pushed)) {
        pushedNumbers.insert(compact->fieldA);
        if (const auto stored = now.find(compact->fieldA); stored != now.end())
          EXPECT_TRUE(sameFields(*compact, *stored->second)) << compact->fieldA;
        else
          EXPECT_EQ(describe(*compact), compact->fieldA + " 0 0+0");
      }
    }
    const auto after = compacts(client);
    std::set<std::string> changed;
    std::set<std::string> changedNumbers;
    std::set<std::string> closed;
    for (const auto& [number, compact] : before) {
      const auto now = after.find(number);
      const auto text = now == after.end() ? number + " closed" : describe(*now->second);
      if (text == describe(*compact)) continue;
      changed.insert(text);
      changedNumbers.insert(number);
      if (now == after.end()) closed.insert(compact->getKey());
    }
    EXPECT_EQ(changed, c.changed);
    EXPECT_EQ(pushedNumbers, changedNumbers);
    std::set<std::string> closedStored;
    for (const auto& record : client.ask(dataRequest(ACCOUNT, rdservice::RecordStkClosedCompacts)).records)
      closedStored.insert(record->getKey());
    EXPECT_EQ(closedStored, closed);
    EXPECT_EQ(position(client, c.stock), c.position);

    // The change details tell the whole change.
    std::map<std::string, std::pair<std::int64_t, double>> told;
    for (const auto& change :
         only<CStkCompactChange>(client.ask(dataRequest(ACCOUNT, rdservice::RecordStkCompactChange)).records)) {
      if (change->serialNo == "Txyz") continue;
      told[change->compactNo].first += change->changeVolume;
      told[change->compactNo].second += change->changeAmount;
    }
    EXPECT_EQ(told.size(), changedNumbers.size());
    for (const auto& [number, sums] : told) {
      const auto& was = *before.at(number);
      const auto now = after.find(number) == after.end() ? CStkUnClosedCompacts() : *after.at(number);
      EXPECT_EQ(sums.first, now.financingVolume + now.lendingVolume - was.financingVolume - was.lendingVolume);
      EXPECT_NEAR(sums.second, now.unpaidAmount + chargesOf(now) - was.unpaidAmount - chargesOf(was), 0.001) << number;
    }
    const auto othersNow = client.ask(compactsRequest("3.6002")).records;
    ASSERT_EQ(othersNow.size(), others.size());
    for (std::size_t i = 0; i < others.size(); ++i) EXPECT_TRUE(sameFields(*others[i], *othersNow[i]));
  }
}

TEST_F(Orders, AreTakenFromLoggedInAccountsOnly) {
  CTestCounter client(options());
  EXPECT_EQ(client.ask(request(23, "SH600000", 100)).error.errorCode(), CounterNotLoggedIn);
  auto stranger = boost::static_pointer_cast<rdservice::CPlaceOrderReq>(request(23, "SH600000", 100));
  stranger->accountKey = "3.9";
  EXPECT_EQ(client.ask(stranger).error.errorCode(), CounterUnknownAccount);
  client.ask(loginRequest(ACCOUNT));
  client.counter.setFailEvery(1);
  EXPECT_EQ(client.ask(request(23, "SH600000", 100)).error.errorCode(), CounterSimulated);
  client.counter.setFailEvery(0);
  EXPECT_TRUE(client.ask(dataRequest(ACCOUNT, rdservice::RecordStkOrder)).records.empty());
  for (int i = 1; i <= 12; ++i) client.ask(request(23, "SH600000", 0));
  const auto orders = only<CStkOrder>(client.ask(dataRequest(ACCOUNT, rdservice::RecordStkOrder)).records);
  ASSERT_EQ(orders.size(), 12U) << "refused ones stand there too, each with its number";
  EXPECT_EQ(orders.back()->orderId, "00000012");
}

TEST_F(Orders, ThoseLeftWhenTheCounterStopsAreDoneAfterItsNextStart) {
  {
    auto slow = options();
    slow.fillDelay = std::chrono::hours(1);
    CTestCounter client(slow);
    client.ask(loginRequest(ACCOUNT));
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(client.ask(request(23, "SH600000", 300)).error.isSuccess());
    EXPECT_EQ(position(client, "SH600000"), "1000/300") << "what an order waits for is held back";
    EXPECT_EQ(client.ask(compactsRequest(ACCOUNT)).records.size(), 6U);
  }
  CTestCounter client(options());
  const auto filled = only<CStkOrder>(client.nextPush()).at(0);
  const auto refused = only<CStkOrder>(client.nextPush()).at(0);
  EXPECT_EQ(filled->orderId + filled->state, "000000011");
  EXPECT_EQ(refused->orderId + refused->state, "000000022");
  EXPECT_EQ(refused->reason, "超过未还融券数量: 未还 200，委托 300") << "the first has returned what was owed";
  client.ask(loginRequest(ACCOUNT));
  EXPECT_EQ(position(client, "SH600000"), "700/600");
}

TEST_F(Orders, AFailingDatabaseLeavesNothingHalfDone) {
  const struct {
    const char* trigger;
    char state;  ///< of the order; blank for none
    const char* position;
  } cases[] = {
      {"CREATE TRIGGER t BEFORE UPDATE ON positions WHEN new.current_volume < old.current_volume "
       "BEGIN SELECT RAISE(ABORT, 'full'); END",
       '0', "1000/400"},
      {"CREATE TRIGGER t BEFORE INSERT ON orders BEGIN SELECT RAISE(ABORT, 'full'); END", ' ', "1000/900"},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(m_book.load().errorText(), "");
    {
      std::string error;
      const CSqlConnection connection(m_book.database());
      connection.run(QStringLiteral("DROP TRIGGER IF EXISTS t"), error);
      ASSERT_TRUE(connection.run(QString::fromUtf8(c.trigger), error)) << error;
    }
    CTestCounter client(options());
    client.ask(loginRequest(ACCOUNT));
    const auto before = client.ask(compactsRequest(ACCOUNT)).records;
    const bool isPlaced = client.ask(request(23, "SH600000", 500)).error.isSuccess();
    EXPECT_EQ(isPlaced, c.state != ' ');
    if (isPlaced) client.nextPush();
    client.counter.changeCompacts({before[0]});  // behind the filling
    EXPECT_EQ(compactNumbers(client.nextPush()), "L1") << "nothing else was pushed";
    const auto after = client.ask(compactsRequest(ACCOUNT)).records;
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) EXPECT_TRUE(sameFields(*before[i], *after[i]));
    EXPECT_EQ(client.ask(dataRequest(ACCOUNT, rdservice::RecordStkCompactChange)).records.size(), 1U);
    EXPECT_TRUE(client.ask(dataRequest(ACCOUNT, rdservice::RecordStkClosedCompacts)).records.empty());
    EXPECT_EQ(position(client, "SH600000"), c.position);
    const auto orders = only<CStkOrder>(client.ask(dataRequest(ACCOUNT, rdservice::RecordStkOrder)).records);
    EXPECT_EQ(orders.empty() ? ' ' : orders[0]->state, c.state);
  }
}

}  // namespace
}  // namespace counter
