#include "book_kit.h"

#include "counter/CBookGenerator.h"
#include "rdservice/CInstrumentInfo.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CQueryAppointmentInfoReq.h"
#include "rdservice/CQueryAppointmentInfoResp.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "rdservice/rdservice_enums.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace counter {
namespace {

QByteArray readAll(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return file.readAll();
}

TEST(CBookGenerator, writesTheSampleBookOfTheRepository) {
  QTemporaryDir folder;
  ASSERT_EQ(CBookGenerator({}).write(folder.path().toStdString()), "");
  const QDir sample(QStringLiteral(SAMPLE_BOOK_DIR));
  const auto names = sample.entryList({QStringLiteral("*.csv")}, QDir::Files, QDir::Name);
  EXPECT_EQ(names, QDir(folder.path()).entryList(QDir::Files, QDir::Name));
  for (const auto& name : names)
    EXPECT_TRUE(readAll(sample.filePath(name)) == readAll(folder.filePath(name))) << name.toStdString();
}

TEST(CBookGenerator, theSampleBookIsSound) {
  QTemporaryDir folder;
  const auto database = folder.filePath(QStringLiteral("counter.db")).toStdString();
  const auto result = CBookLoader(SAMPLE_BOOK_DIR, CTestBook::today()).load(database);
  ASSERT_EQ(result.errorText(), "");

  CTestCounter client({database});
  std::map<std::size_t, int> accountsBySize;
  std::multiset<std::size_t> closedSizes;
  const auto today = CTestBook::today().toJulianDay();
  for (const auto& account : client.ask(accountsRequest()).records) {
    client.ask(loginRequest(account->getKey()));
    const auto compacts = client.ask(compactsRequest(account->getKey())).records;
    ++accountsBySize[compacts.size()];
    std::set<int> priorities;
    std::set<std::string> open;
    bool openedToday = compacts.empty();
    for (const auto& record : compacts) {
      const auto& c = static_cast<const rdservice::CStkUnClosedCompacts&>(*record);
      const bool isLending = c.compactType == rdservice::CompactTypeSecuritiesLending;
      EXPECT_LT(std::abs(c.compactAmount - c.repaidAmount - c.unpaidAmount), 0.001);
      EXPECT_GE(c.interestAmount, 0);
      EXPECT_TRUE((isLending ? c.financingVolume : c.lendingVolume) == 0 && c.financingVolume + c.lendingVolume > 0);
      EXPECT_EQ((c.financingVolume + c.lendingVolume) % 100, 0);
      EXPECT_EQ(c.expiryDate - c.fieldB, c.renewalFlag == '1' ? 360 : 180);
      EXPECT_LE(c.fieldB, today);
      EXPECT_TRUE(c.repayPriority == 0 || priorities.insert(c.repayPriority).second) << c.repayPriority;
      open.insert(c.getKey());
      openedToday = openedToday || c.fieldB == today;
    }
    EXPECT_TRUE(openedToday) << account->getKey();

    const auto closed = client.ask(dataRequest(account->getKey(), rdservice::RecordStkClosedCompacts)).records;
    closedSizes.insert(closed.size());
    auto lastClosed = std::int64_t{0};
    for (const auto& record : closed) {
      const auto& c = static_cast<const rdservice::CStkClosedCompacts&>(*record);
      EXPECT_TRUE(open.count(c.getKey()) == 0) << c.getKey() << " is open and closed";
      EXPECT_EQ(c.repaidAmount, c.compactAmount);
      EXPECT_TRUE(c.interestAmount > 0 && c.interestAmount < c.compactAmount * 0.06) << c.getKey();
      EXPECT_EQ(c.feeAmount > 0, c.compactType == rdservice::CompactTypeSecuritiesLending) << c.getKey();
      EXPECT_TRUE(c.volume > 0 && c.volume % 100 == 0);
      EXPECT_TRUE(c.fieldB < c.closeDate && lastClosed <= c.closeDate && c.closeDate <= today) << c.getKey();
      lastClosed = c.closeDate;
    }
  }
  EXPECT_EQ(closedSizes, (std::multiset<std::size_t>{0, 0, 10, 16, 24, 60, 240}));
  EXPECT_EQ(accountsBySize, (std::map<std::size_t, int>{{0, 2}, {48, 1}, {64, 1}, {86, 1}, {320, 1}, {5000, 1}}));
}

TEST(CBookGenerator, changeDetailsAppointmentsPositionsAndQuotesGoWithTheCompacts) {
  QTemporaryDir folder;
  const auto database = folder.filePath(QStringLiteral("counter.db")).toStdString();
  ASSERT_EQ(CBookLoader(SAMPLE_BOOK_DIR, CTestBook::today()).load(database).errorText(), "");
  CTestCounter client({database});
  const auto today = CTestBook::today().toJulianDay();
  int larger = 0;
  int smaller = 0;
  int none = 0;
  int renewals = 0;
  std::size_t appointed = 0;
  for (const auto& account : client.ask(accountsRequest()).records) {
    client.ask(loginRequest(account->getKey()));
    struct CTold {
      std::int64_t volume = 0;
      double amount = 0;
      std::int64_t lastDay = 0;
      int details = 0;
    };
    std::map<std::string, CTold> told;  // by compact number
    for (const auto& record : client.ask(dataRequest(account->getKey(), rdservice::RecordStkCompactChange)).records) {
      const auto& change = static_cast<const rdservice::CStkCompactChange&>(*record);
      auto& sum = told[change.compactNo];
      sum.volume += change.changeVolume;
      sum.amount += change.changeAmount;
      ++sum.details;
      EXPECT_TRUE(change.changeDate >= std::max<std::int64_t>(sum.lastDay, change.openDate) &&
                  change.changeDate <= today);
      EXPECT_EQ(change.remainingVolume, sum.volume);
      EXPECT_NEAR(change.remainingAmount, sum.amount, 0.001);
      EXPECT_EQ(change.changeVolume > 0, sum.details == 1) << "the first opens it, the others lower it";
      sum.lastDay = change.changeDate;
      if (change.changeKind.str() == "展期") ++renewals;
    }
    auto query = boost::make_shared<rdservice::CQueryAppointmentInfoReq>();
    query->accountInfo = boost::static_pointer_cast<rdservice::CAccountInfo>(account);
    query->startDate = 20200101;
    query->endDate = 20240315;
    const auto offered = client.ask(query).records;
    std::map<std::string, rdservice::IDataPtr> appointments;
    for (const auto& record : static_cast<const rdservice::CQueryAppointmentInfoResp&>(*offered.at(0)).records)
      appointments[record->getKey()] = record;
    appointed += appointments.size();
    std::size_t matching = 0;
    std::map<std::string, std::int64_t> owed;  // by stock key
    for (const auto& record : client.ask(compactsRequest(account->getKey())).records) {
      const auto& c = static_cast<const rdservice::CStkUnClosedCompacts&>(*record);
      EXPECT_EQ(told[c.fieldA].volume, c.financingVolume + c.lendingVolume) << c.getKey();
      EXPECT_NEAR(told[c.fieldA].amount, c.unpaidAmount, 0.001) << c.getKey();
      if (c.renewalFlag == '1') --renewals;
      if (const auto found = appointments.find(c.getKey()); found != appointments.end()) {
        const auto& a = static_cast<const rdservice::StockSMTQueryAppointmentInfoResp&>(*found->second);
        matching += a.expiryDate == c.expiryDate && a.compactType == c.compactType && a.source == c.source &&
                    a.unpaidAmount == c.unpaidAmount && a.volume == c.financingVolume + c.lendingVolume &&
                    a.interestAmount == c.interestAmount && a.renewalTimes == c.renewalFlag - '0' &&
                    c.expiryDate >= today && a.maxRenewalDays > 0;
      }
      owed[c.exchangeId.str() + c.code.str()] += c.lendingVolume;
    }
    EXPECT_EQ(matching, appointments.size()) << account->getKey();
    std::map<std::string, std::int64_t> held;
    for (const auto& record : client.ask(dataRequest(account->getKey(), rdservice::RecordPositionStatics)).records) {
      const auto& position = static_cast<const rdservice::CPositionStatics&>(*record);
      EXPECT_TRUE(position.availableVolume >= 0 && position.availableVolume <= position.currentVolume);
      EXPECT_TRUE(position.currentVolume > 0 && position.costPrice > 0 && !position.shareholderId.empty());
      held[position.exchangeId.str() + position.code.str()] = position.currentVolume;
    }
    for (const auto& [stock, volume] : owed)
      if (volume > 0) ++(held[stock] == 0 ? none : held[stock] < volume ? smaller : larger);
  }
  EXPECT_GT(appointed, 100U);
  EXPECT_EQ(renewals, 0) << "one for each renewed compact";
  EXPECT_TRUE(larger > 50 && smaller > 30 && none > 30) << larger << " " << smaller << " " << none;

  auto request = boost::make_shared<rdservice::CSubscribeQuotesReq>();
  const auto instruments = client.ask(instrumentsRequest()).records;
  for (const auto& instrument : instruments) request->stockKeys += instrument->getKey() + "|";
  const auto quotes = client.ask(request).records;
  ASSERT_EQ(quotes.size(), instruments.size());
  for (std::size_t i = 0; i < quotes.size(); ++i) {
    const auto& quote = static_cast<const rdservice::CPriceData&>(*quotes[i]);
    const double steps = quote.lastPrice / static_cast<const rdservice::CInstrumentInfo&>(*instruments[i]).priceTick;
    EXPECT_NEAR(steps, std::round(steps), 1e-6) << quote.getKey();
    EXPECT_TRUE(std::abs(quote.lastPrice / quote.closePrice - 1) < 0.035) << quote.getKey();
  }
}

TEST(CBookGenerator, saysWhyItCannotWrite) {
  QTemporaryDir folder;
  const auto blocked = folder.filePath(QStringLiteral("a"));
  QFile(blocked).open(QIODevice::WriteOnly);
  EXPECT_EQ(CBookGenerator({}).write(blocked.toStdString()), blocked.toStdString() + ": the folder cannot be created");
  QDir().mkpath(folder.filePath(QStringLiteral("b/accounts.csv")));  // a folder where a file belongs
  const auto error = CBookGenerator({}).write(folder.filePath(QStringLiteral("b")).toStdString());
  EXPECT_NE(error.find("accounts.csv: "), std::string::npos) << error;
  EXPECT_GT(error.size(), error.find("accounts.csv: ") + 20) << error;  // and a reason
}

}  // namespace
}  // namespace counter
