// Statistics and change details: folding, replies, baskets, and the return of borrowed securities.

#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/compact_fields.h"
#include "compacts/tables/compact_fold.h"
#include "gw/CSimpleInputDialog.h"
#include "gw/view/CHpfTableView.h"
#include "gw/widget_events.h"
#include "kit/CExpectedBoxes.h"
#include "kit/CSignalCount.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CPositionStatics.h"
#include "rdservice/CPriceData.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/TraderCenter.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <map>
#include <random>

namespace {

using kit::CTestRuntime;
using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using VN::CCompactsChangeTable;
using VN::CCompactsStaticsTable;

constexpr const char* A = "3.1001";
constexpr const char* B = "3.1002";

rdservice::CAccountDataPtr dataOf(const std::string& key) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
}

boost::shared_ptr<CStkUnClosedCompacts> compact(const std::string& number, char type, char source,
                                                const char* code = "600000", std::int64_t volume = 100) {
  const auto record = kit::compact(dataOf(A)->getAccountInfo(), number, 1000, type);
  record->source = source;
  record->code = code;
  record->exchangeId = code[0] == '6' ? "SH" : "SZ";
  (type == '0' ? record->financingVolume : record->lendingVolume) = volume;
  record->positionString = number;
  return record;
}

IDataPtr position(const char* code, std::int64_t volume) {
  const auto record = boost::make_shared<rdservice::CPositionStatics>();
  record->accountInfo = dataOf(A)->getAccountInfo();
  record->exchangeId = code[0] == '6' ? "SH" : "SZ";
  record->code = code;
  record->name = "名称";
  record->currentVolume = volume;
  record->availableVolume = volume;
  record->shareholderId = "A123";
  return record;
}

class CStatisticsTest : public testing::Test {
 protected:
  void SetUp() override {
    m_table = std::make_unique<CCompactsStaticsTable>(nullptr);
    dataOf(A)->updateDatas({position("600000", 500), position("000001", 30)});
  }
  void TearDown() override { m_table.reset(); }

  std::size_t requests() const { return m_runtime.counter().held().size(); }
  /// Answers the query of everything: one batch with the records, then an empty one.
  void answer(const std::vector<IDataPtr>& records) {
    m_runtime.settle();
    m_runtime.counter().reply(requests() - 1, records);
    m_runtime.settle();
    if (records.empty()) return;
    m_runtime.counter().reply(requests() - 1, {});
    m_runtime.settle();
  }
  /// Chooses "统计行" from the table's menu.
  void switchStatistics() {
    QTimer::singleShot(0, m_table.get(), [] {
      auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      ASSERT_NE(menu, nullptr);
      for (QAction* action : menu->actions())
        if (action->text() == QStringLiteral("统计行")) action->trigger();
      menu->close();
    });
    Q_EMIT m_table->findChild<GW::CHpfTableView*>()->sigMenuRequested(QPoint(5, 5));
  }
  std::string holdingSum() const { return m_table->columnSumText(kit::columnOf(*m_table, "当前拥股")).toStdString(); }
  std::vector<std::string> shown() const {
    m_table->updateTable();
    return kit::visible(*m_table,
                        {"证券代码", "合约类型", "头寸来源", "融资未还数量", "融券未还数量", "当前拥股", "证券名称"});
  }

  CTestRuntime m_runtime;
  std::unique_ptr<CCompactsStaticsTable> m_table;
};

TEST_F(CStatisticsTest, OneRowForEachSecurityTypeAndSource) {
  m_table->setAccount(A, true, false);
  answer({compact("C1", '0', '0'), compact("C2", '0', '0', "600000", 50), compact("C3", '1', '0'),
          compact("C4", '0', '1'), compact("C5", '1', '0', "000001", 70), compact("C6", '0', '0', "300999", 10)});
  EXPECT_THAT(
      shown(),
      ElementsAre("600000 | 融资 | 普通 | 150 | 0 | 500 | 浦发银行", "600000 | 融资 | 专项 | 100 | 0 | 500 | 浦发银行",
                  "600000 | 融券 | 普通 | 0 | 100 | 500 | 浦发银行", "000001 | 融券 | 普通 | 0 | 70 | 30 | 平安银行",
                  "300999 | 融资 | 普通 | 10 | 0 | 0 | "));
  EXPECT_EQ(m_runtime.logged("[static compact] query success : data acc = 3.1001, data size = 6.").size(), 1U);
  const auto lines = m_runtime.logged("[static compact] mapStatics size = 5");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].file, "CCompactsStaticsTable.cpp");
  EXPECT_EQ(holdingSum(), "1,530");
  switchStatistics();
  EXPECT_EQ(holdingSum(), "");
  EXPECT_TRUE(m_table->statisticMap().empty());

  // Another query adds and replaces; a refresh begins anew.
  m_table->refresh(B, true);
  EXPECT_EQ(m_table->rowCount(), 5) << "another account is not shown";
  m_table->refresh(A, true);
  EXPECT_EQ(m_table->rowCount(), 0);
  answer({compact("C1", '0', '0')});
  EXPECT_THAT(shown(), ElementsAre("600000 | 融资 | 普通 | 100 | 0 | 500 | 浦发银行"));
  EXPECT_EQ(holdingSum(), "") << "as the user has chosen";
  switchStatistics();
  EXPECT_EQ(holdingSum(), "500");
}

TEST_F(CStatisticsTest, EveryCombinationOfForceAndAccount) {
  const auto statistic = boost::make_shared<rdservice::CStkUnClosedCompactsStatics>();
  statistic->accountInfo = dataOf(A)->getAccountInfo();
  statistic->exchangeId = "SZ";
  statistic->code = "000001";
  statistic->lendingVolume = 9;
  dataOf(A)->updateDatas({compact("C1", '0', '0'), statistic});
  const std::string stored = "600000 | 融资 | 普通 | 100 | 0 | 500 | 浦发银行";
  const std::string cached = "000001 | 融资 | 普通 | 0 | 9 | 30 | 平安银行";
  std::size_t late = 0;  // a query that is overtaken
  const auto ask = [&] {
    m_table->refresh(A, true);
    m_runtime.settle();
    late = requests() - 1;
  };
  const struct {
    const char* what;
    std::function<void()> act;
    int signalCount;
    std::vector<std::string> rows;
    const char* line;
  } cases[] = {
      {"no account, forced", [&] { m_table->refresh("", true); }, 1, {}, nullptr},
      {"no query", [&] { m_table->setAccount(A, false, false); }, 0, {}, nullptr},
      {"the same account", [&] { m_table->setAccount(A, true, true); }, 1, {}, nullptr},
      {"from the data centre", [&] { m_table->refresh(A, false); }, 2, {stored}, "mapStatics size = 1"},
      {"failed",
       [&] {
         m_table->refresh(A, true);
         m_runtime.settle();
         m_runtime.counter().fail(requests() - 1, 7, "柜台繁忙");
       },
       1,
       {cached},
       "[static compact] query fail : acc = 3.1001, errmsg = 柜台繁忙."},
      {"overtaken by the data centre",
       [&] {
         ask();
         m_table->refresh(A, false);
         m_runtime.counter().reply(late, {});
       },
       3,
       {stored},
       "mapStatics size = 1"},
      {"refreshed before the fold",
       [&] {
         ask();
         const kit::CStrandLatch latch;
         m_runtime.counter().reply(late, {compact("C2", '1', '0')});
         m_runtime.settleWithoutStrand();
         m_runtime.counter().reply(late + 1, {});
         m_runtime.settleWithoutStrand();
         m_table->refresh(A, true);
       },
       1,
       {},
       "query success : data acc = 3.1001, data size = 1."},
      {"refreshed before the cached ones",
       [&] {
         ask();
         const kit::CStrandLatch latch;
         m_runtime.counter().fail(late, 7, "超时");
         m_runtime.settleWithoutStrand();
         m_table->refresh(A, true);
       },
       1,
       {},
       "query fail : acc = 3.1001, errmsg = 超时."},
      {"cleared",
       [&] {
         ask();
         m_table->clearData();
         m_runtime.counter().reply(late, {});
       },
       2,
       {},
       nullptr},
      {"stale",
       [&] {
         ask();
         m_table->setAccount(B, false, false);
         m_runtime.counter().reply(late, {compact("C3", '0', '0')});
         m_runtime.settle();
         EXPECT_EQ(requests(), late + 1) << "nobody waits for more batches";
       },
       1,
       {},
       "[static compact] acc changed : data acc = 3.1001, current acc = 3.1002."},
      {"stale, and the other one queried too",
       [&] {
         m_table->setAccount(A, true, false);
         m_runtime.settle();
         late = requests() - 1;
         m_table->setAccount(B, true, false);
         m_runtime.counter().reply(late, {});
       },
       1,
       {},
       "[static compact] acc changed : data acc = 3.1001, current acc = 3.1002."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    kit::CSignalCount done(m_table.get(), &CCompactsStaticsTable::sigQueryData);
    const std::size_t linesBefore = c.line != nullptr ? m_runtime.logged(c.line).size() : 0;
    c.act();
    m_runtime.settle();
    EXPECT_EQ(done.count(), c.signalCount);
    EXPECT_EQ(shown(), c.rows);
    if (c.line != nullptr) {
      EXPECT_EQ(m_runtime.logged(c.line).size(), linesBefore + 1);
    }
  }
  EXPECT_EQ(m_runtime.logged("query fail").size(), 2U) << "a query that was stopped has not failed";
}

TEST_F(CStatisticsTest, AFailedQueryShowsWhatThePushesMadeOfTheStatistics) {
  const auto all = boost::make_shared<rdservice::CQueryCompactReqV2>();
  all->accountKey = A;
  all->compactType = rdservice::CompactTypeAll;
  all->requestCount = 100;
  VN::CTradeClient::instance()->queryUnclosedCompacts(
      all, [](const utils::RDError&, const std::vector<IDataPtr>& records, int, const bson::BSONObj&) {
        dataOf(A)->updateDatas(records);
      });
  m_runtime.settle();
  m_runtime.counter().reply(requests() - 1, {compact("C1", '0', '0'), compact("C2", '0', '0', "600000", 50)});
  m_runtime.settle();
  m_runtime.counter().push({compact("C1", '0', '0', "600000", 40), compact("C3", '1', '1', "000001", 7)});
  m_runtime.settle();
  m_table->setAccount(A, false, false);
  m_table->refresh(A, true);
  m_runtime.settle();
  m_runtime.counter().fail(requests() - 1, 7, "柜台繁忙");
  m_runtime.settle();
  EXPECT_THAT(shown(), testing::UnorderedElementsAre("600000 | 融资 | 普通 | 90 | 0 | 500 | 浦发银行",
                                                     "000001 | 融券 | 专项 | 0 | 7 | 30 | 平安银行"));
}

/// The fold against one that says the rule in the plainest way.
TEST_F(CStatisticsTest, FoldsAsANaiveFoldDoes) {
  std::mt19937 random(7);
  std::vector<IDataPtr> records = {nullptr, position("600000", 1)};
  std::map<std::string, std::pair<std::int64_t, double>> expected;
  for (int i = 0; i < 3000; ++i) {
    const std::string code = std::to_string(600000 + random() % 40);
    auto record = compact("C" + std::to_string(i), random() % 2 ? '0' : '1', random() % 3 ? '0' : '1', code.c_str(),
                          std::int64_t(random() % 900));
    if (random() % 2 == 0)  // an account that two objects know
      record->accountInfo = boost::make_shared<rdservice::CAccountInfo>(*record->accountInfo);
    record->penaltyAmount = double(random() % 100);
    auto& sums = expected[rdservice::CStkUnClosedCompactsStatics::genKey(
        record->exchangeId.str(), code, record->compactType, record->source, record->accountInfo)];
    sums.first += record->financingVolume + record->lendingVolume;
    sums.second += record->penaltyAmount;
    records.push_back(record);
  }
  const auto statistics = VN::foldCompacts(records);
  ASSERT_EQ(statistics.size(), expected.size());
  auto next = expected.begin();
  for (const auto& statistic : statistics) {
    EXPECT_EQ(statistic->getKey(), next->first);
    EXPECT_EQ(statistic->financingVolume + statistic->lendingVolume, next->second.first);
    EXPECT_EQ(statistic->penaltyAmount, next->second.second);
    ++next;
  }
}

TEST_F(CStatisticsTest, MenuActionsSaveBaskets) {
  const auto price = boost::make_shared<rdservice::CPriceData>();
  price->exchangeId = "SH";
  price->code = "600000";
  price->lastPrice = 7.25;
  rdservice::TraderCenter::instance()->getDataCenter()->getMarketData()->updateData(price, false);
  m_table->setAccount(A, true, false);
  answer({compact("C1", '0', '0'), compact("C2", '0', '0', "300999", 10), compact("C3", '1', '0', "600000", 40),
          compact("C4", '0', '1', "600000", 60)});
  const auto line = [](const char* market, const char* code, const char* name, int operation, int volume,
                       double amount) {
    VN::CBasketStockData stock;
    stock.market = QString::fromUtf8(market);
    stock.code = QString::fromUtf8(code);
    stock.name = QString::fromUtf8(name);
    stock.operation = operation;
    stock.volume = volume;
    stock.amount = amount;
    return stock;
  };
  const struct {
    const char* action;
    const char* preset;
    const char* typed;  ///< null: as it is
    QList<VN::CBasketStockData> lines;
    bool isOtherAccount = false;  ///< by the time the user confirms
  } cases[] = {
      {"生成普通融资负债篮子",
       "融资负债篮子",
       nullptr,
       {line("SH", "600000", "浦发银行", 19, 100, 725), line("SZ", "300999", "", 19, 10, 0)}},
      {"生成专项融资负债篮子", "专项融资负债篮子", "我的", {line("SH", "600000", "浦发银行", 19, 60, 435)}},
      {"生成普通融券负债篮子", "融券负债篮子", "我的", {line("SH", "600000", "浦发银行", 18, 40, 290)}},
      {"生成专项融券负债篮子", "专项融券负债篮子", nullptr, {}},
      {"生成普通融资负债篮子", "融资负债篮子", "太晚", {}, true},
  };
  kit::CExpectedBoxes boxes;
  QStringList actions;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.action);
    if (!c.isOtherAccount) boxes.expect(QStringLiteral("提示"), QStringLiteral("篮子保存成功"), QMessageBox::Ok);
    QTimer::singleShot(0, m_table.get(), [&] {
      auto* const dialog = qobject_cast<GW::CSimpleInputDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      EXPECT_EQ(dialog->title(), QStringLiteral("保存篮子"));
      EXPECT_EQ(dialog->text(), QString::fromUtf8(c.preset));
      if (c.typed != nullptr) dialog->setText(QString::fromUtf8(c.typed));
      if (c.isOtherAccount) m_table->setAccount(B, false, false);
      QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
    });
    for (QAction* action : m_table->menuActions())
      if (action->text() == QString::fromUtf8(c.action)) action->trigger();
    const auto basket =
        VN::getUserConfig()->getBasketSettingNoCreate(QString::fromUtf8(c.typed != nullptr ? c.typed : c.preset));
    EXPECT_EQ(basket->isNamed(), !c.isOtherAccount);
    EXPECT_EQ(basket->stocks, c.lines);
  }
  EXPECT_EQ(VN::getUserConfig()->getBasketSettings().size(), 3);
}

TEST_F(CStatisticsTest, ReturnsWhatTheUserConfirms) {
  m_table->setAccount(A, false, false);
  constexpr std::int64_t FAR = 3000000000;  // beyond an int
  CCompactsStaticsTable::CStatisticMap statics;
  std::vector<IDataPtr> compacts = {compact("C1", '1', '0', "600000", 40),  compact("C2", '1', '1', "000001", 70),
                                    compact("C3", '1', '0', "300999", 10),  compact("C4", '0', '0'),
                                    compact("C5", '1', '1', "600000", 800), compact("C6", '1', '0', "600100", FAR),
                                    compact("C7", '1', '0', "000001", -FAR)};
  dataOf(A)->updateDatas({position("600100", FAR)});
  for (const char* code : {"7", "8"}) {  // of no market, so that the client places no order
    const auto lent = compact(code, '1', '0', code);
    const IDataPtr held = position(code, 100);
    lent->exchangeId = "";
    static_cast<rdservice::CPositionStatics&>(*held).exchangeId = "";
    compacts.push_back(lent);
    dataOf(A)->updateDatas({held});
  }
  for (const auto& statistic : VN::foldCompacts(compacts)) statics[statistic->getKey()] = statistic;
  statics["none"] = nullptr;
  kit::CExpectedBoxes boxes;
  boxes.expect(QStringLiteral("警告"), QStringLiteral("部分还券委托未能发出，请查看委托后重试"), QMessageBox::Ok);
  for (const bool accepts : {false, true}) {
    const std::size_t before = requests();
    QTimer::singleShot(0, m_table.get(), [&] {
      auto* const dialog = qobject_cast<GW::CCommonDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      EXPECT_EQ(dialog->title(), QStringLiteral("批量还券确认"));
      dialog->handleEvent(GW::EventButtonClicked, accepts ? 0 : 1, 0, QString(), nullptr);
    });
    m_table->returnSecurities(statics);
    m_runtime.settle();
    std::vector<std::string> orders;
    const auto held = m_runtime.counter().held();
    for (std::size_t i = before; i < held.size(); ++i)
      if (const auto order = boost::dynamic_pointer_cast<rdservice::CPlaceOrderReq>(held[i]))
        orders.push_back(order->code + " " + std::to_string(order->operationType) + " " +
                         std::to_string(order->volume));
    if (accepts)
      EXPECT_THAT(orders, ElementsAre("600000 23 40", "600000 1012 500", "600100 23 2147483647", "000001 1012 30"));
    else
      EXPECT_THAT(orders, IsEmpty());
  }
}

TEST(ChangeTable, ShowsTheWholeListOfItsAccount) {
  CTestRuntime runtime;
  CCompactsChangeTable table(nullptr);
  const auto change = [](const char* serial, const char* code, double amount) {
    auto record = boost::make_shared<rdservice::CStkCompactChange>();
    record->accountInfo = dataOf(A)->getAccountInfo();
    record->exchangeId = "SH";
    record->code = code;
    record->serialNo = serial;
    record->changeAmount = amount;
    return record;
  };
  bson::BSONObjBuilder extra;
  extra.append("error", 5);
  const bson::BSONObj complaint = extra.obj();
  const std::size_t none = runtime.counter().held().size();
  table.setAccount("", true, false);
  runtime.settle();
  EXPECT_EQ(runtime.counter().held().size(), none) << "without an account nothing is asked";
  const struct {
    const char* what;
    std::function<void(std::size_t)> answer;
    int signalCount;
    std::vector<std::string> rows;
    std::string line;
  } cases[] = {
      {"success",
       [&](std::size_t n) {
         runtime.counter().reply(n, {change("1", "600000", 5), change("2", "999999", 6), change("1", "600000", 7)});
       },
       1,
       {"600000 | 浦发银行 | 7.00", "999999 |  | 6.00"},
       "[change compact] query success : data acc = 3.1001, data size = 3."},
      {"failure",
       [&](std::size_t n) { runtime.counter().fail(n, 7, "柜台繁忙"); },
       1,
       {},
       "[change compact] fail : acc = 3.1001, errmsg = 柜台繁忙"},
      {"complaint",
       [&](std::size_t n) { runtime.counter().reply(n, {change("1", "600000", 5)}, complaint); },
       1,
       {},
       "[change compact] fail : acc = 3.1001, errmsg = " + complaint.toString()},
      {"after a newer one",
       [&](std::size_t n) {
         table.refresh(A);
         runtime.settle();
         runtime.counter().reply(n + 1, {change("2", "600000", 8)});
         runtime.counter().reply(n, {change("1", "600000", 5)});
       },
       1,
       {"600000 | 浦发银行 | 8.00"},
       "[change compact] query success : data acc = 3.1001, data size = 1."},
      {"cleared",
       [&](std::size_t n) {
         table.clearData();
         runtime.counter().reply(n, {change("1", "600000", 5), change("2", "600000", 5)});
       },
       1,
       {},
       ""},
      {"stale",
       [&](std::size_t n) {
         table.setAccount(B, false, false);
         runtime.counter().reply(n, {change("1", "600000", 5)});
       },
       0,
       {},
       "[change compact] acc changed : data acc = 3.1001, current acc = 3.1002"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    table.setAccount(A, false, false);
    table.refresh("");
    table.refresh(B);
    runtime.settle();
    kit::CSignalCount done(&table, &CCompactsChangeTable::sigQueryData);
    c.answer(runtime.counter().held().size() - 1);
    runtime.settle();
    EXPECT_EQ(done.count(), c.signalCount);
    table.updateTable();
    EXPECT_EQ(kit::visible(table, {"证券代码", "证券名称", "变动金额"}), c.rows);
    if (c.line.empty()) continue;
    const auto lines = runtime.logged(c.line);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].file, "CCompactsTable.cpp");
  }
  EXPECT_TRUE(runtime.logged("current acc = 3.1001").empty()) << "only another account is a change";
  kit::CSignalCount done(&table, &CCompactsChangeTable::sigQueryData);
  const std::size_t requests = runtime.counter().held().size();
  table.setAccount(B, false, true);
  EXPECT_EQ(done.count(), 1);
  EXPECT_EQ(runtime.counter().held().size(), requests);
}

TEST(ChangeTable, TablesGoWhileRepliesAndFoldsAreUnderWay) {
  CTestRuntime runtime;
  for (int round = 0; round < 20; ++round) {
    auto statistics = std::make_unique<CCompactsStaticsTable>(nullptr);
    auto changes = std::make_unique<CCompactsChangeTable>(nullptr);
    const std::size_t first = runtime.counter().held().size();
    statistics->setAccount(A, true, false);
    changes->setAccount(A, true, false);
    const kit::CStrandLatch latch;
    runtime.settleWithoutStrand();
    for (std::size_t n = first; n < runtime.counter().held().size(); ++n) runtime.counter().reply(n, {});
    if (round % 2 == 0) runtime.settleWithoutStrand();
    statistics.reset();
    changes.reset();
  }
  runtime.settle();
}

}  // namespace
