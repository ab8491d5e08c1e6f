// Orders, and what the client fetches of an account when it has logged in.

#include "counter/CBookLoader.h"
#include "counter/CSqlCounter.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/CStkOrder.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/TraderCenter.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>

#include <boost/make_shared.hpp>

#include <atomic>
#include <limits>

namespace {

using kit::CTestRuntime;
using rdservice::CStkOrder;
using rdservice::IDataPtr;
using testing::ElementsAre;
using VN::CPlaceCommandParameter;
using VN::CTradeClient;

constexpr const char* A = "3.1001";

rdservice::CAccountDataPtr dataOf(const char* key) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
}

rdservice::CCodeOrderParam order(const char* accountKey, std::int64_t volume) {
  rdservice::CCodeOrderParam param;
  param.operationType = rdservice::OperationDirectReturn;
  param.stockInfo = {"SH", "600000", "浦发银行", "E01"};
  if (const auto account = dataOf(accountKey)) param.accountInfo = account->getAccountInfo();
  param.volume = volume;
  return param;
}

CPlaceCommandParameter batch(std::vector<rdservice::CCodeOrderParam> orders,
                             std::map<std::string, double> ratios = {}) {
  CPlaceCommandParameter parameter;
  parameter.tradeType = rdservice::TraderTypeStockCredit;
  parameter.batchNo = 5;
  parameter.remark = "还券";
  parameter.orders = std::move(orders);
  parameter.accountRatios = std::move(ratios);
  return parameter;
}

/// The orders in the account's store: state and reason.
std::vector<std::string> ordersOf(const char* key) {
  std::vector<std::string> all;
  for (const IDataPtr& record : dataOf(key)->getData(rdservice::RecordStkOrder)) {
    const auto& order = static_cast<const CStkOrder&>(*record);
    all.push_back(std::string(1, order.state) + order.reason);
  }
  return all;
}

TEST(Orders, OneRequestForEachOrderAndAccount) {
  CTestRuntime runtime;
  const auto nan = std::numeric_limits<double>::quiet_NaN();
  auto stock = batch({order(A, 100)});
  stock.tradeType = rdservice::TraderTypeStock;
  auto nameless = order(A, 100);
  nameless.stockInfo.code.clear();
  auto unpriced = order(A, 100);
  unpriced.price = nan;
  const struct {
    const char* what;
    CPlaceCommandParameter parameter;
    std::vector<std::string> sent;  ///< account and volume; empty when nothing is sent
  } cases[] = {
      {"own accounts", batch({order(A, 100), order("3.1002", 7)}), {"3.1001 100", "3.1002 7"}},
      {"one whole account", batch({order(A, 300)}, {{A, 1.0}}), {"3.1001 300"}},
      {"shares of accounts", batch({order(A, 300)}, {{A, 1.0 / 3}, {"3.1002", 0.5}}), {"3.1001 100", "3.1002 150"}},
      {"a part of a share is dropped", batch({order(A, 99)}, {{A, 0.5}}), {"3.1001 49"}},
      {"no order", batch({}), {}},
      {"less than a share", batch({order(A, 100), order(A, 0)}), {}},
      {"less than a share of an account", batch({order(A, 1)}, {{A, 0.5}}), {}},
      {"no share", batch({order(A, 100)}, {{A, nan}}), {}},
      {"unknown account", batch({order(A, 100), order("3.9999", 1)}), {}},
      {"unknown account of a share", batch({order(A, 100)}, {{A, 1}, {"3.9999", 1}}), {}},
      {"no security", batch({nameless}), {}},
      {"no price", batch({unpriced}), {}},
      {"not credit", stock, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const std::size_t before = runtime.counter().held().size();
    EXPECT_EQ(CTradeClient::instance()->placeCommands(c.parameter), !c.sent.empty());
    std::vector<std::string> sent;
    const auto held = runtime.counter().held();
    for (std::size_t i = before; i < held.size(); ++i) {
      ASSERT_EQ(held[i]->getBaseId(), rdservice::RequestPlaceOrder);
      const auto& request = static_cast<const rdservice::CPlaceOrderReq&>(*held[i]);
      sent.push_back(request.accountKey + " " + std::to_string(request.volume));
      EXPECT_EQ(request.exchangeId + request.code + request.shareholderId + request.remark, "SH600000E01还券");
      EXPECT_EQ(request.operationType, 23);
      EXPECT_EQ(request.batchNo, 5);
    }
    EXPECT_EQ(sent, c.sent);
  }
}

TEST(Orders, TheOutcomeStandsInTheAccountsStore) {
  CTestRuntime runtime;
  kit::CScriptedCounter& counter = runtime.counter();
  const auto made = boost::make_shared<CStkOrder>();
  made->accountInfo = dataOf(A)->getAccountInfo();
  made->orderId = "1";
  const auto filled = boost::make_shared<CStkOrder>(*made);
  filled->state = '1';
  const auto place = [&] {
    ASSERT_TRUE(CTradeClient::instance()->placeCommands(batch({order(A, 100)})));
    runtime.settle();
  };
  place();
  counter.reply(0, {made});
  runtime.settle();
  EXPECT_THAT(ordersOf(A), ElementsAre("0"));
  counter.push({filled});
  runtime.settle();
  EXPECT_THAT(ordersOf(A), ElementsAre("1"));

  // The answer may come behind the push that it is older than.
  place();
  made->orderId = filled->orderId = "2";
  counter.push({filled});
  counter.reply(1, {made});
  runtime.settle();
  EXPECT_THAT(ordersOf(A), ElementsAre("1", "1"));

  // Without an order at the counter, the client says why there is none.
  place();
  place();
  counter.fail(2, 8, "资金账号未登录");
  counter.fail(3, 8, "柜台繁忙");
  runtime.settle();
  EXPECT_THAT(ordersOf(A), ElementsAre("1", "1", "2资金账号未登录", "2柜台繁忙"));
  const auto last = boost::static_pointer_cast<CStkOrder>(dataOf(A)->getData(rdservice::RecordStkOrder).back());
  EXPECT_EQ(last->name.str() + last->code.str() + last->remark, "浦发银行600000还券");
  EXPECT_EQ(last->volume, 100);
}

TEST(Orders, AnUnansweredOrderIsNotCalledRefused) {
  auto config = kit::testConfig();
  config.counter.requestTimeoutMs = 100;
  CTestRuntime runtime(config);
  ASSERT_TRUE(CTradeClient::instance()->placeCommands(batch({order(A, 100)})));
  EXPECT_TRUE(kit::waitUntil([] { return !ordersOf(A).empty(); }));
  EXPECT_THAT(ordersOf(A), ElementsAre("3柜台未在规定时间内应答"));
}

TEST(LogIn, FetchesPositionsStatisticsOrdersAndQuotes) {
  CTestRuntime runtime;
  const auto position = boost::make_shared<rdservice::CPositionStatics>();
  position->accountInfo = dataOf(A)->getAccountInfo();
  position->exchangeId = "SH";
  position->code = "600000";
  position->currentVolume = 500;
  const auto statics = boost::make_shared<rdservice::CStkUnClosedCompactsStatics>();
  statics->accountInfo = position->accountInfo;
  statics->lendingVolume = 300;
  const auto made = boost::make_shared<CStkOrder>();
  made->accountInfo = position->accountInfo;
  runtime.counter().keep({position, statics, made});
  EXPECT_TRUE(dataOf(A)->getData(rdservice::RecordPositionStatics).empty());
  CTradeClient::instance()->setLogin(A, true);
  runtime.settle();
  const auto holding = [] {
    const auto found = rdservice::CPositionStaticsHelper::getPosition(dataOf(A), "SH", "600000", '0', '1', 1, "", '0');
    return found == nullptr ? -1 : found->currentVolume;
  };
  EXPECT_EQ(holding(), 500);
  EXPECT_EQ(dataOf(A)->getData(rdservice::RecordStkUnClosedCompactsStatics).size(), 1U);
  EXPECT_EQ(ordersOf(A).size(), 1U);
  EXPECT_TRUE(dataOf("3.1002")->getData(rdservice::RecordPositionStatics).empty());

  const auto quote = boost::make_shared<rdservice::CPriceData>();
  quote->exchangeId = "SH";
  quote->code = "600000";
  quote->lastPrice = 11.25;
  position->currentVolume = 400;
  runtime.counter().push({quote, position});
  runtime.settle();
  EXPECT_EQ(rdservice::CPriceDataHelper::getLastPrice(19999, "SH", "600000"), 11.25);
  EXPECT_EQ(holding(), 400);
  // What the account has no longer is gone at the next log-in.
  runtime.counter().keep({});
  CTradeClient::instance()->setLogin(A, true);
  runtime.settle();
  EXPECT_EQ(holding(), -1);
  EXPECT_TRUE(dataOf(A)->getData(rdservice::RecordStkUnClosedCompactsStatics).empty());
}

TEST(ChangeDetails, AreHandedOnWithTheReplysObjectAndNotAnnounced) {
  CTestRuntime runtime;
  std::atomic<int> announced{0};
  const auto subscription =
      CTradeClient::instance()->subscribeCompactChange([&](bool, const auto&, int) { ++announced; });
  const auto request = boost::make_shared<rdservice::CQueryDataReq>();
  request->accountInfo = VN::getUserConfig()->getAccountData(QString::fromLatin1(A));
  request->dataType = rdservice::RecordStkCompactChange;
  std::vector<std::string> replies;
  const auto ask = [&] {
    CTradeClient::instance()->queryData(
        request,
        [&](const utils::RDError& error, const std::vector<IDataPtr>& records, const bson::BSONObj& extra) {
          replies.push_back(std::to_string(error.errorCode()) + " " + std::to_string(records.size()) + " " +
                            extra.getStringField("msg"));
        },
        0, 0);
  };
  const auto change = boost::make_shared<rdservice::CStkCompactChange>();
  change->accountInfo = dataOf(A)->getAccountInfo();
  for (int i = 0; i < 3; ++i) ask();
  ASSERT_EQ(runtime.counter().held().size(), 3U);
  bson::BSONObjBuilder builder;
  builder.append("msg", "流水不全");
  runtime.counter().reply(0, {change}, builder.obj());
  runtime.counter().reply(1, {change});
  runtime.counter().fail(2, 7, "柜台繁忙");
  runtime.settle();
  EXPECT_THAT(replies, ElementsAre("0 1 流水不全", "0 1 ", "7 0 "));
  EXPECT_EQ(announced, 0);
  EXPECT_TRUE(dataOf(A)->getData(rdservice::RecordStkCompactChange).empty());
}

TEST(Orders, AReturnRunsThroughClientAndCounter) {
  QTemporaryDir folder;
  const auto write = [&](const char* name, const char* text) {
    QFile file(folder.filePath(QString::fromLatin1(name)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) > 0);
  };
  write("accounts.csv", "account_id,broker_type,counter_type\n1001,3,90\n");
  write("instruments.csv", "exchange,code,name\nSH,600000,浦发银行\n");
  write("unclosed_compacts.csv",
        "account,exchange,code,compact_type,compact_no,open_date,lending_volume,unpaid_amount\n"
        "1001,SH,600000,1,C1,today-9,200,2000\n1001,SH,600000,1,C2,today-8,300,3000\n");
  write("positions.csv", "account,exchange,code,current_volume,available_volume\n1001,SH,600000,400,400\n");
  write("quotes.csv", "exchange,code,last_price\nSH,600000,11.25\n");
  const auto database = folder.filePath(QStringLiteral("counter.db")).toStdString();
  const auto book = counter::CBookLoader(folder.path().toStdString(), QDate::currentDate()).load(database);
  ASSERT_EQ(book.errorText(), "");

  counter::CSqlCounterOptions options;
  options.databasePath = database;
  CTestRuntime runtime(kit::testConfig(), std::make_unique<counter::CSqlCounter>(options));
  runtime.client().start();
  const auto position = [] {
    return rdservice::CPositionStaticsHelper::getPosition(dataOf(A), "SH", "600000", '0', '1', 1, "", '0');
  };
  ASSERT_TRUE(kit::waitUntil([&] {
    return dataOf(A) != nullptr && position() != nullptr &&
           rdservice::CPriceDataHelper::getLastPrice(19999, "SH", "600000") == 11.25;
  }));
  EXPECT_TRUE(
      kit::waitUntil([] { return dataOf(A)->getData(rdservice::RecordStkUnClosedCompactsStatics).size() == 1; }));
  ASSERT_TRUE(CTradeClient::instance()->placeCommands(batch({order(A, 350), order(A, 100)}, {{A, 1.0}})));
  ASSERT_TRUE(kit::waitUntil([] { return ordersOf(A).size() == 2 && ordersOf(A)[0] == "1"; }));
  EXPECT_EQ(position()->currentVolume, 50);
  EXPECT_EQ(ordersOf(A)[1], "2可用数量不足: 可用 50，委托 100");
  std::map<std::string, std::int64_t> owed;
  for (const IDataPtr& record : dataOf(A)->getData(rdservice::RecordStkUnClosedCompacts)) {
    const auto& compact = static_cast<const rdservice::CStkUnClosedCompacts&>(*record);
    owed[compact.fieldA] = compact.lendingVolume;
  }
  EXPECT_EQ(owed, (std::map<std::string, std::int64_t>{{"C1", 0}, {"C2", 150}}));
  EXPECT_EQ(dataOf(A)->getData(rdservice::RecordStkClosedCompacts).size(), 1U);
}

}  // namespace
