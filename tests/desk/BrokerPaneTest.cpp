// The broker's side: what happens there reaches the panels.

#include "CDeskTest.h"
#include "CSteadyRate.h"

#include "CMainWindow.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "rdservice/rdservice_enums.h"
#include "runtime/CClientRuntime.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDockWidget>
#include <QLabel>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

using kit::waitUntil;

class BrokerPane : public DeskTest {
 protected:
  void press(const char* accessibleName) { control<QAbstractButton>(accessibleName)->click(); }
  void setNumber(const char* accessibleName, int number) { control<QSpinBox>(accessibleName)->setValue(number); }
};

TEST_F(BrokerPane, LogInsAreShownHereAndFollowedByThePanel) {
  ASSERT_TRUE(waitUntil([this] { return stateAtBroker(LARGE) == QStringLiteral("已登录"); }));
  const struct {
    const char* account;
    const char* button;
    int failEvery;
    const char* state;
    int accountsInPanel;
    bool isInPanel;
  } steps[] = {
      {LOGGED_OUT, "登录选中的账号", 1, "登录失败", 5, false}, {LOGGED_OUT, "登录选中的账号", 0, "已登录", 6, true},
      {LARGE, "退出选中的账号", 0, "未登录", 5, false},        {EMPTY, "退出选中的账号", 0, "未登录", 4, false},
      {SMALL, "退出全部账号", 0, "未登录", 0, false},          {SMALL, "登录全部账号", 0, "已登录", 6, true},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(std::string(step.account) + " " + step.button);
    setNumber("每 N 次请求失败一次", step.failEvery);
    chooseAtBroker(step.account);
    press(step.button);
    EXPECT_TRUE(waitUntil([&] {
      return stateAtBroker(step.account) == QString::fromUtf8(step.state) && m_combo->count() == step.accountsInPanel;
    })) << qPrintable(stateAtBroker(step.account))
        << ", " << m_combo->count();
    EXPECT_EQ(m_combo->findData(QString::fromLatin1(step.account)) >= 0, step.isInPanel);
  }
}

TEST_F(BrokerPane, ChangesReachTheTable) {
  choose(SMALL);
  refresh(48);
  chooseAtBroker(SMALL);
  const CAmounts before = shown();
  const auto changed = [&] {
    const CAmounts now = shown();
    return std::count_if(now.begin(), now.end(), [&](const auto& row) { return before.at(row.first) != row.second; });
  };
  setNumber("推送变动的条数", 5);
  press("推送选中账号的合约变动");
  ASSERT_TRUE(waitUntil([&] { return changed() == 5; }));

  // At 1000 a second, 43 others change within a moment.
  setNumber("持续推送每秒条数", 1000);
  auto* steady = control<QCheckBox>("持续推送选中账号的合约变动");
  steady->click();
  ASSERT_TRUE(waitUntil([&] { return changed() == 48; }));
  steady->click();
  // What is closed now is pushed after all that is under way.
  press("了结选中账号的合约");
  ASSERT_TRUE(waitUntil([&] { return !storedKeys(SMALL, rdservice::RecordStkClosedCompacts).empty(); }));
  ASSERT_TRUE(waitUntil([&] { return shown() == stored(SMALL); }));
}

TEST_F(BrokerPane, ClosedCompactsOweNothingAndStandInTheClosedStore) {
  choose(SMALL);
  refresh(48);
  chooseAtBroker(SMALL);
  const struct {
    int count;
    int left;
  } steps[] = {{1, 47}, {3, 44}, {1000, 0}};
  for (const auto& step : steps) {
    const int rows = m_table->rowCount();
    std::vector<std::string> expected;  // the first ones: rows stand as they arrived, in order of their positions
    for (int row = 0; row < std::min(step.count, rows); ++row) expected.push_back(m_table->getData(row)->getKey());
    std::vector<std::string> closed = storedKeys(SMALL, rdservice::RecordStkClosedCompacts);
    const std::size_t closedBefore = closed.size();
    setNumber("了结合约的条数", step.count);
    press("了结选中账号的合约");
    ASSERT_TRUE(waitUntil([&] {
      closed = storedKeys(SMALL, rdservice::RecordStkClosedCompacts);
      return closed.size() == closedBefore + expected.size();
    })) << closed.size();
    for (const std::string& key : expected)
      EXPECT_EQ(std::count(closed.begin(), closed.end(), key), 1) << key << " is not closed, or closed twice";
    EXPECT_TRUE(waitUntil([&] {
      const CAmounts amounts = shown();
      return std::all_of(amounts.begin(), amounts.end(), [&](const auto& row) {
        return (row.second < 0.005) == (std::count(expected.begin(), expected.end(), row.first) > 0);
      });
    })) << "the closed ones, and they alone, owe nothing";
    refresh(step.left);
  }
}

TEST_F(BrokerPane, ControlsActOnTheRunningCounter) {
  const auto behaviour = [this] { return m_window->client().counterBehaviour(); };
  EXPECT_EQ(control<QSpinBox>("应答延迟")->value(), 0) << "as the client runs, not as the file says";
  setNumber("应答延迟", 60000);
  setNumber("每 N 次请求失败一次", 7);
  setNumber("每 N 次请求无应答一次", 9);
  EXPECT_EQ(behaviour().latencyMs, 60000);
  EXPECT_EQ(behaviour().failEvery, 7);
  EXPECT_EQ(behaviour().silentEvery, 9);
  setNumber("每 N 次请求失败一次", 0);
  EXPECT_EQ(control<QSpinBox>("每 N 次请求失败一次")->text(), QStringLiteral("从不"));
  EXPECT_EQ(behaviour().failEvery, 0);
  const struct {
    int interval;
    bool click;
    int quotes;
  } walks[] = {{250, false, 0}, {250, true, 12}, {500, false, 12}, {500, true, 0}};
  for (const auto& walk : walks) {
    setNumber("行情波动间隔", walk.interval);
    if (walk.click) control<QCheckBox>("行情波动")->click();
    EXPECT_EQ(behaviour().quotesPerMove, walk.quotes);
    EXPECT_EQ(behaviour().quoteIntervalMs, walk.interval);
  }
}

TEST_F(BrokerPane, IsWholeNamedAndInTabOrder) {
  // In the order in which they are read.
  const char* const names[] = {"柜台账号",
                               "登录选中的账号",
                               "退出选中的账号",
                               "登录全部账号",
                               "退出全部账号",
                               "推送选中账号的合约变动",
                               "推送变动的条数",
                               "了结选中账号的合约",
                               "了结合约的条数",
                               "持续推送选中账号的合约变动",
                               "持续推送每秒条数",
                               "应答延迟",
                               "每 N 次请求失败一次",
                               "每 N 次请求无应答一次",
                               "行情波动",
                               "行情波动间隔"};
  auto* widget = control<QWidget>("柜台账号");
  widget->setFocus();
  for (const char* name : names) {
    ASSERT_NE(m_window->focusWidget(), nullptr);
    EXPECT_EQ(m_window->focusWidget()->accessibleName(), QString::fromUtf8(name));
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Tab);
  }
  const auto* dock = m_window->findChild<QDockWidget*>(QStringLiteral("broker"));
  const auto children = dock->widget()->findChildren<QWidget*>();
  for (const QWidget* child : children) {
    const bool hasText = qobject_cast<const QAbstractButton*>(child) != nullptr ||
                         qobject_cast<const QLabel*>(child) != nullptr ||
                         qobject_cast<const QSpinBox*>(child) != nullptr;
    if (!hasText || !child->isVisible()) continue;
    EXPECT_GE(child->width(), child->sizeHint().width()) << qPrintable(child->accessibleName());
    EXPECT_GE(child->height(), child->sizeHint().height()) << qPrintable(child->accessibleName());
  }
  const auto* accounts = control<QTableWidget>("柜台账号");
  ASSERT_EQ(accounts->rowCount(), 7);
  for (int row = 0; row < accounts->rowCount(); ++row)
    for (int column = 0; column < accounts->columnCount(); ++column)
      EXPECT_GE(accounts->columnWidth(column),
                accounts->fontMetrics().horizontalAdvance(accounts->item(row, column)->text()));
}

TEST(SteadyRate, KeepsTheRateWhateverTheTurnsLast) {
  const std::vector<std::vector<double>> turns = {{0.02}, {0.001}, {0.25}, {0.019, 0.033, 0.5, 0.0004}};
  for (const int rate : {1, 3, 50, 333, 1000}) {
    for (const auto& lengths : turns) {
      CSteadyRate steady;
      double seconds = 0;
      int total = 0;
      for (std::size_t i = 0; seconds < 10; ++i) {
        const double length = lengths[i % lengths.size()];
        const int due = steady.due(length, rate);
        EXPECT_LE(due, std::ceil(length * rate)) << "a burst";
        total += due;
        seconds += length;
        ASSERT_NEAR(total, seconds * rate, 1.001) << rate;
      }
    }
  }
  CSteadyRate steady;
  EXPECT_EQ(steady.due(3600, 1000), 1000) << "after a standstill there is no flood";
}

}  // namespace
