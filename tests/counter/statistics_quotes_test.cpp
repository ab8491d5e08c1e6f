#include "book_kit.h"

#include "counter/CBookGenerator.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CStkUnClosedCompactsStatics.h"
#include "rdservice/CStructDes.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <cmath>
#include <map>

namespace counter {
namespace {

using rdservice::CPriceData;
using rdservice::CStkUnClosedCompacts;
using rdservice::CStkUnClosedCompactsStatics;
using rdservice::IDataPtr;

constexpr const char* ACCOUNT = "3.6001";

TEST(Statistics, AreTheSumsOverTheUnclosedCompacts) {
  QTemporaryDir folder;
  const auto database = folder.filePath(QStringLiteral("counter.db")).toStdString();
  ASSERT_EQ(CBookGenerator({3000, 50, 7, 10}).write(folder.path().toStdString()), "");
  ASSERT_EQ(CBookLoader(folder.path().toStdString(), CTestBook::today()).load(database).errorText(), "");
  CTestCounter client({database});
  EXPECT_FALSE(client.ask(dataRequest("3.60010001", rdservice::RecordStkUnClosedCompactsStatics)).error.isSuccess())
      << "not logged in";
  std::size_t rows = 0;
  for (const auto& account : client.ask(accountsRequest()).records) {
    const auto key = account->getKey();
    client.ask(loginRequest(key));
    std::map<std::string, CStkUnClosedCompactsStatics> sums;
    for (const auto& record : client.ask(compactsRequest(key)).records) {
      const auto& c = static_cast<const CStkUnClosedCompacts&>(*record);
      auto& sum = sums[CStkUnClosedCompactsStatics::genKey(c.exchangeId.str(), c.code.str(), c.compactType, c.source,
                                                           c.accountInfo)];
      sum.financingVolume += c.financingVolume;
      sum.lendingVolume += c.lendingVolume;
      sum.compactAmount += c.compactAmount;
      sum.unpaidAmount += c.unpaidAmount;
      sum.repaidAmount += c.repaidAmount;
      sum.interestAmount += c.interestAmount;
      sum.feeAmount += c.feeAmount;
      sum.penaltyAmount += c.penaltyAmount;
    }
    const auto reply = client.ask(dataRequest(key, rdservice::RecordStkUnClosedCompactsStatics));
    EXPECT_EQ(reply.error.errorMsg(), "");
    EXPECT_EQ(reply.records.size(), sums.size());
    rows += reply.records.size();
    for (const auto& record : reply.records) {
      const auto& got = static_cast<const CStkUnClosedCompactsStatics&>(*record);
      ASSERT_EQ(sums.count(got.getKey()), 1U) << got.getKey();
      const auto& want = sums[got.getKey()];
      EXPECT_EQ(got.accountInfo->getKey(), key);
      EXPECT_EQ(got.financingVolume, want.financingVolume);
      EXPECT_EQ(got.lendingVolume, want.lendingVolume);
      for (const auto amount :
           {&CStkUnClosedCompactsStatics::compactAmount, &CStkUnClosedCompactsStatics::unpaidAmount,
            &CStkUnClosedCompactsStatics::repaidAmount, &CStkUnClosedCompactsStatics::interestAmount,
            &CStkUnClosedCompactsStatics::feeAmount, &CStkUnClosedCompactsStatics::penaltyAmount})
        EXPECT_NEAR(got.*amount, want.*amount, 0.001) << got.getKey();
    }
  }
  EXPECT_GT(rows, 400U);
}

class Quotes : public testing::Test {
 protected:
  Quotes() {
    m_book.setFile("instruments.csv",
                   "exchange,code,name,price_tick\nSH,600000,浦发银行,0.01\nSZ,000001,平安银行,0.01\n"
                   "SH,510050,基金,0.001\nSH,600001,无行情,0.01\n");
    m_book.setFile("quotes.csv",
                   "exchange,code,last_price,close_price\nSH,600000,10.9,10\nSZ,000001,0.02,0\nSH,510050,2.5,2.5\n");
    EXPECT_EQ(m_book.load().errorText(), "");
  }
  static std::map<std::string, double> subscribe(CTestCounter& client, const char* keys) {
    auto request = boost::make_shared<rdservice::CSubscribeQuotesReq>();
    request->stockKeys = keys;
    return prices(client.ask(request).records);
  }
  static std::map<std::string, double> prices(const std::vector<IDataPtr>& records) {
    std::map<std::string, double> all;
    for (const auto& record : records)
      if (const auto quote = boost::dynamic_pointer_cast<CPriceData>(record)) all[quote->getKey()] = quote->lastPrice;
    return all;
  }

  CTestBook m_book;
};

TEST_F(Quotes, AreToldAndPushedToWhomSubscribes) {
  using CPrices = std::map<std::string, double>;
  CTestCounter client({m_book.database()});
  EXPECT_EQ(subscribe(client, "SH600000|SH600001|XX9|"), (CPrices{{"SH600000", 10.9}}));
  EXPECT_EQ(subscribe(client, ""), CPrices());
  auto now = subscribe(client, "SH600000|SH510050|");
  EXPECT_EQ(now, (CPrices{{"SH600000", 10.9}, {"SH510050", 2.5}}));
  client.counter.setQuoteWalk(3, std::chrono::milliseconds(1));
  for (int i = 0; i < 200; ++i) {
    const auto pushed = prices(client.nextPush());
    EXPECT_FALSE(pushed.empty());
    for (const auto& [key, price] : pushed) {
      ASSERT_EQ(now.count(key), 1U) << key;
      const double tick = key == "SH510050" ? 0.001 : 0.01;
      const double steps = (price - now[key]) / tick;
      EXPECT_NEAR(steps, std::round(steps), 1e-6);
      EXPECT_TRUE(std::abs(steps) > 0.5 && std::abs(steps) < 3.5) << key << " " << now[key] << " " << price;
      const double close = key == "SH510050" ? 2.5 : 10;
      EXPECT_TRUE(price > close * 0.8999 && price < close * 1.1001) << key << " " << price;
      now[key] = price;
    }
  }
  // Off: what was under way comes before the compact, and nothing after it.
  client.ask(loginRequest(ACCOUNT));
  const auto compact = client.ask(compactsRequest(ACCOUNT)).records.at(0);
  client.counter.setQuoteWalk(0, std::chrono::milliseconds(1));
  client.counter.changeCompacts({compact});
  for (auto pushed = client.nextPush(); pushed[0]->getBaseId() == rdservice::RecordPriceData;
       pushed = client.nextPush())
    for (const auto& [key, price] : prices(pushed)) now[key] = price;
  EXPECT_EQ(subscribe(client, "SH600000|SH510050|"), now) << "what is pushed is stored";
  for (const auto& [key, price] : subscribe(client, "SZ000001|")) EXPECT_GE(price, 0.01) << key;
  client.counter.changeCompacts({compact});
  EXPECT_EQ(client.nextPush()[0]->getBaseId(), rdservice::RecordStkUnClosedCompacts);
}

TEST_F(Quotes, WalkAlikeForTheSameSeed) {
  const auto walk = [this](unsigned seed) {
    EXPECT_EQ(m_book.load().errorText(), "");
    CSqlCounterOptions options{m_book.database()};
    options.quoteSeed = seed;
    CTestCounter client(options);
    subscribe(client, "SH600000|SZ000001|SH510050|");
    client.counter.setQuoteWalk(1, std::chrono::milliseconds(1));
    std::vector<std::map<std::string, double>> pushes;
    for (int i = 0; i < 20; ++i) pushes.push_back(prices(client.nextPush()));
    return pushes;
  };
  EXPECT_EQ(walk(1), walk(1));
  EXPECT_NE(walk(1), walk(2));
}

}  // namespace
}  // namespace counter
