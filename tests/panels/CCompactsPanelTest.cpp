// The independent panel, used through its widgets.

#include "CPanelUnderTest.h"

#include "vn/CTradeClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using kit::CTestRuntime;
using testing::ElementsAre;

TEST(CCompactsPanel, ListsTheCreditAccountsThatAreLoggedIn) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  EXPECT_EQ(p.accounts(), QStringList() << QStringLiteral("1001(张三)") << QStringLiteral("1002(李四)")
                                        << QStringLiteral("1003(机构)"));
  EXPECT_EQ(p.combo->currentKey(), QStringLiteral("3.1001"));

  // A log-out takes the account away, and the table follows to the one that is current then.
  VN::CTradeClient::instance()->setLogin("3.1001", false);
  runtime.settle();
  EXPECT_EQ(p.combo->currentKey(), QStringLiteral("3.1002"));
  EXPECT_EQ(p.table->currentAccount(), "3.1002");
  VN::CTradeClient::instance()->setLogin("3.1001", true);
  runtime.settle();
  EXPECT_EQ(p.accounts().size(), 3);
}

TEST(CCompactsPanel, RefreshLocksTheComboBoxUntilTheAnswer) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  struct CEnd {
    const char* what;
    std::function<void(std::size_t)> end;
  };
  const CEnd ends[] = {
      {"rows", [&](std::size_t n) { runtime.counter().reply(n, {p.compact("3.1001", "C1")}); }},
      {"none", [&](std::size_t n) { runtime.counter().reply(n, {}); }},
      {"failure", [&](std::size_t n) { runtime.counter().fail(n, 1, "柜台繁忙"); }},
  };
  for (const CEnd& end : ends) {
    SCOPED_TRACE(end.what);
    p.clickRefresh();
    EXPECT_FALSE(p.combo->isEnabled());
    end.end(p.requests() - 1);
    runtime.settle();
    EXPECT_TRUE(p.combo->isEnabled());
  }
  EXPECT_EQ(runtime.logged("[CCompactsPanel] query, current radioButton: 0").size(), 3U);
}

TEST(CCompactsPanel, ALockedRefreshButtonQueriesNothing) {
  runtime::CClientConfig config = kit::testConfig();
  config.user.queryCompactInterval = 30;
  CTestRuntime runtime(config);
  CPanelUnderTest p(runtime);
  p.clickRefresh();
  const std::size_t requests = p.requests();
  EXPECT_TRUE(p.refresh->isLocked());
  p.clickRefresh();
  EXPECT_EQ(p.requests(), requests);
  EXPECT_FALSE(p.combo->isEnabled());
  EXPECT_EQ(runtime.logged("[CCompactsPanel] not query, current radioButton: 0").size(), 1U);
}

TEST(CCompactsPanel, WhoQueriesWhenTheAccountChanges) {
  struct CCase {
    bool splitPage;
    bool calcCompactType;
    bool queries;
  };
  for (const CCase& c : {CCase{true, true, true}, {true, false, false}, {false, true, false}, {false, false, true}}) {
    SCOPED_TRACE(testing::Message() << c.splitPage << c.calcCompactType);
    runtime::CClientConfig config = kit::testConfig();
    config.broker.useSplitPageOfStkCompact = c.splitPage;
    config.broker.calcCompactType = c.calcCompactType;
    CTestRuntime runtime(config);
    CPanelUnderTest p(runtime);
    const std::size_t requests = p.requests();
    p.choose("3.1002");
    EXPECT_EQ(p.requests() - requests, c.queries ? 4U : 1U);  // the change details always
  }
}

TEST(CCompactsPanel, ALateAnswerForTheOldAccountShowsNothing) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  p.clickRefresh();
  const std::size_t first = p.requests() - 1;
  p.choose("11.1003");
  runtime.counter().reply(first, {p.compact("3.1001", "C1")});
  runtime.settle();
  EXPECT_EQ(p.table->rowCount(), 0);
  p.choose("3.1001");
  EXPECT_EQ(p.table->rowCount(), 0);
}

TEST(CCompactsPanel, WhatAnotherPanelQueriesIsShownForTheSameAccountOnly) {
  for (const bool byType : {true, false}) {
    SCOPED_TRACE(byType);
    runtime::CClientConfig config = kit::testConfig();
    config.broker.calcCompactType = byType;
    CTestRuntime runtime(config);
    CPanelUnderTest same(runtime);
    CPanelUnderTest other(runtime);
    const auto info = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData("3.1001")->getAccountInfo();
    same.panel->requestAccount(*info);
    other.panel->requestAccount(*info);
    other.choose("11.1003");
    CPanelUnderTest asking(runtime);
    asking.clickRefresh();
    const std::vector<rdservice::IDataPtr> requests = runtime.counter().held();
    for (std::size_t i = 0; i < requests.size(); ++i)
      if (requests[i]->getKey().find("3.1001") == 0) runtime.counter().reply(i, {same.compact("3.1001", "C1")});
    runtime.settle();
    same.table->updateTable();
    other.table->updateTable();
    EXPECT_EQ(asking.table->rowCount(), 1);
    EXPECT_EQ(same.table->rowCount(), 1);
    EXPECT_EQ(other.table->rowCount(), 0);
  }
}

TEST(CCompactsPanel, TheLastLogOutEmptiesThePanel) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  p.clickRefresh();
  runtime.counter().reply(p.requests() - 1, {p.compact("3.1001", "C1")});
  runtime.settle();
  ASSERT_EQ(p.table->rowCount(), 1);
  for (const char* key : {"11.1003", "3.1002", "3.1001"}) {
    p.combo->removeItem(p.combo->findData(QStringLiteral("11.1003")));
    VN::CTradeClient::instance()->setLogin(key, false);
    runtime.settle();
  }
  EXPECT_EQ(p.combo->count(), 0);
  EXPECT_EQ(p.table->rowCount(), 0);
  EXPECT_EQ(runtime.logged("[CCompactsPanel] clear").size(), 1U);
}

TEST(CCompactsPanel, PushesOfTheShownAccountArriveWithThePeriodicRefresh) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  const auto request = [&](const char* key) {
    p.panel->requestAccount(
        *rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key)->getAccountInfo());
  };
  request("11.1003");  // not the current one: nothing is subscribed
  request("3.1001");
  EXPECT_EQ(runtime.logged("PT! [INDEPENDEN] request account : panel_id = 3").size(), 1U);
  runtime.counter().push({p.compact("3.1001", "C1"), p.compact("11.1003", "X1")});
  EXPECT_TRUE(kit::waitUntil([&] { return p.table->rowCount() == 1; }));
  EXPECT_THAT(kit::visible(*p.table, {"合约编号"}), ElementsAre("C1"));
}

TEST(CCompactsPanel, ParameterStringsRoundTripAndDamagedOnesDoNothing) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  const int column = p.table->getColumnIdByFileId(1391603);
  p.table->moveColumn(column, 0);
  p.table->setColumnHidden(p.table->getColumnIdByFileId(1391602), true);
  const QString saved = p.panel->param();
  EXPECT_EQ(saved.split(QLatin1Char('|')).size(), 6);
  CPanelUnderTest other(runtime);
  for (const QString& damaged :
       {QString(), QStringLiteral("|||7"), QStringLiteral("13915;x|||10002"), QString(5000, QLatin1Char('|'))})
    other.panel->setParam(damaged);
  EXPECT_NE(other.panel->param(), saved);
  other.panel->setParam(saved);
  EXPECT_EQ(other.panel->param(), saved);
  EXPECT_EQ(other.table->columnPosition(column), 0);
}

TEST(CCompactsPanel, ManyPanelsComeAndGoWhileRepliesAndPushesRun) {
  constexpr int ROUNDS = 100;  // of two panels
  CTestRuntime runtime;
  const auto account = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData("3.1001")->getAccountInfo();
  for (int i = 0; i < ROUNDS; ++i) {
    VN::CCompactsPanel panel(i, nullptr, 0);
    VN::CCompactsPanel inner(i, nullptr, 1);
    panel.show();
    inner.show();
    panel.requestAccount(*account);
    inner.setAccount(account->getKey(), true, true);
    for (VN::CCompactsPanel* each : {&panel, &inner})
      QTest::mouseClick(each->findChild<VN::CCountDownButton*>(), Qt::LeftButton);
    VN::CTradeClient::instance()->setLogin("3.1002", i % 2 == 0);
    runtime.counter().push({kit::compact(account, "C" + std::to_string(i % 7), 1000 + i)});
    const std::size_t requests = runtime.counter().held().size();
    for (std::size_t n = requests - 2; n < requests; ++n) runtime.counter().reply(n, {kit::compact(account, "C2")});
    if (i % 10 == 0) runtime.settle();
  }
  runtime.settle();
  CPanelUnderTest last(runtime);
  last.clickRefresh();
  runtime.counter().reply(last.requests() - 1, {last.compact("3.1001", "C1")});
  runtime.settle();
  EXPECT_EQ(last.table->rowCount(), 1);
}

}  // namespace
