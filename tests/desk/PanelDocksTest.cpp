// Several panels in one window: they come, go and come back, and leave each other alone.

#include "CDeskLayout.h"
#include "CDeskTest.h"

#include "CMainWindow.h"
#include "CPanelDocks.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/CComboPushButton.h"
#include "gw/controls.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "runtime/CClientRuntime.h"
#include "vn/CCountDownButton.h"
#include "vn/CUserConfig.h"

#include <QAction>
#include <QDockWidget>
#include <QFile>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QTest>

#include <set>

namespace {

using kit::waitUntil;

constexpr const char* COMPACTS = "新建融资融券合约面板";
constexpr const char* ORDERS = "新建下单面板";
constexpr const char* SECOND = "3.60010002";  ///< an account, with 62 borrowed of 320 compacts

class PanelDocks : public DeskTest {
 protected:
  static VN::CCompactsTable* tableOf(const QWidget& panel) { return panel.findChild<VN::CCompactsTable*>(); }

  static void chooseIn(const QWidget& panel, const char* account) {
    auto* accounts = controlIn<GW::CComboBox>(panel, "资金账号");
    ASSERT_TRUE(waitUntil([&] { return accounts->findData(QString::fromLatin1(account)) >= 0; }));
    accounts->setCurrentIndex(accounts->findData(QString::fromLatin1(account)));
  }

  static void pressRefresh(const QWidget& panel) {
    QTest::mouseClick(panel.findChild<VN::CCountDownButton*>(), Qt::LeftButton);
  }

  static std::set<std::string> accountsIn(const VN::CCompactsTable& table) {
    std::set<std::string> accounts;
    for (int row = 0; row < table.rowCount(); ++row)
      accounts.insert(static_cast<const rdservice::CStkUnClosedCompacts&>(*table.getData(row)).accountInfo->getKey());
    return accounts;
  }

  static void choose(QWidget& panel, VN::ECompactsView view) {
    panel.findChild<GW::CRadioButtonGroup*>()->button(view)->click();
  }

  /// Chooses where an order panel's compacts stand.
  static void moveTo(const QWidget& panel, const char* side) {
    const auto actions = panel.findChildren<QAction*>();
    for (QAction* action : actions)
      if (action->text() == QString::fromUtf8(side)) action->trigger();
  }

  /// Titles and parameter strings of all panels, by the names of their docks.
  std::map<std::string, std::string> state() const {
    std::map<std::string, std::string> states;
    for (const CPanelDocks::CPanel& open : m_window->panels().panels())
      states[open.dock->objectName().toStdString()] = (open.dock->windowTitle() + open.panel->param()).toStdString();
    return states;
  }

  using DeskTest::choose;
};

TEST_F(PanelDocks, LiveSideBySide) {
  QWidget* second = openPanel(COMPACTS);
  QWidget* orders = openPanel(ORDERS);
  ASSERT_TRUE(second != nullptr && orders != nullptr);
  const struct {
    const char* dock;
    const char* title;
  } docks[] = {{"compacts1", "融资融券合约"}, {"compacts2", "融资融券合约 2"}, {"orderPanel3", "融资融券下单 3"}};
  for (const auto& c : docks) {
    ASSERT_NE(dock(c.dock), nullptr) << c.dock;
    EXPECT_EQ(dock(c.dock)->windowTitle(), QString::fromUtf8(c.title));
  }
  EXPECT_EQ(m_window->panel(), dock("compacts1")->widget());

  chooseIn(*second, SMALL);
  chooseIn(*orders, SECOND);
  choose(*second, VN::ViewStatistics);
  choose(*second, VN::ViewUnclosed);
  const int width = m_table->columnWidth(2);
  tableOf(*second)->setColumnWidth(2, width + 50);
  choose(LARGE);
  raise("compacts1");
  refresh(5000);
  raise("compacts2");
  pressRefresh(*second);
  ASSERT_TRUE(waitUntil([&] { return tableOf(*second)->rowCount() == 48; }));
  raise("orderPanel3");
  pressRefresh(*orders);
  ASSERT_TRUE(waitUntil([&] { return tableOf(*orders)->rowCount() > 0; }));
  EXPECT_EQ(accountsIn(*m_table), std::set<std::string>{LARGE});
  EXPECT_EQ(accountsIn(*tableOf(*second)), std::set<std::string>{SMALL});
  EXPECT_EQ(accountsIn(*tableOf(*orders)), std::set<std::string>{SECOND});
  EXPECT_EQ(m_table->columnWidth(2), width);

  // Closed with a question out: the others go on, and the number is free again.
  const QPointer<QWidget> closed = second;
  m_window->client().setCounterLatency(60000);
  raise("compacts2");
  pressRefresh(*second);
  dock("compacts2")->close();
  ASSERT_TRUE(closed) << "what closed it may still be on the stack";
  QWidget* again = openPanel(ORDERS);
  ASSERT_TRUE(waitUntil([&] { return closed.isNull(); }));
  EXPECT_EQ(dock("compacts2"), nullptr);
  EXPECT_EQ(again, dock("orderPanel2")->widget());
  EXPECT_EQ(m_table->rowCount(), 5000);
  EXPECT_EQ(accountsIn(*tableOf(*orders)), std::set<std::string>{SECOND});
}

TEST_F(PanelDocks, CompactModeReachesEachAndMakesOrderPanelsServeEveryAccount) {
  QWidget* panels[] = {openPanel(ORDERS), openPanel(COMPACTS), openPanel(ORDERS)};
  const auto isShown = [&](int item) {
    return panels[0]->findChild<GW::CComboPushButton*>()->currentItem() == item &&
           panels[2]->findChild<GW::CComboPushButton*>()->currentItem() == item;
  };
  raise("orderPanel2");
  chooseIn(*panels[0], LARGE);
  auto* modes = panels[0]->findChild<GW::CComboPushButton*>();
  auto* place = controlIn<QPushButton>(*panels[0], "下单");
  EXPECT_TRUE(isShown(VN::CompactModeLiabilities));
  m_window->client().changeSomeCompacts(SECOND, 300);
  m_window->client().changeSomeCompacts(LARGE, 300);
  const VN::CCompactsTable& table = *tableOf(*panels[0]);
  ASSERT_TRUE(waitUntil([&] { return table.rowCount() > 0; }));
  EXPECT_EQ(accountsIn(table), std::set<std::string>{LARGE});

  QTest::mouseDClick(modes, Qt::LeftButton, Qt::NoModifier, QPoint(8, modes->height() / 2));
  EXPECT_TRUE(VN::getUserConfig()->isCompactMode());
  EXPECT_TRUE(isShown(VN::CompactModeAccounts));
  EXPECT_EQ(place->text(), QStringLiteral("下单（5 个账号）"));
  m_window->client().changeSomeCompacts(SECOND, 300);
  EXPECT_TRUE(waitUntil([&] { return accountsIn(table) == std::set<std::string>{LARGE, SECOND}; }));

  QWidget* late = openPanel(ORDERS);
  EXPECT_EQ(late->findChild<GW::CComboPushButton*>()->currentItem(), VN::CompactModeAccounts);
  raise("orderPanel2");
  modes->setCurrentItem(VN::CompactModeLiabilities);
  QTest::mouseClick(modes, Qt::LeftButton, Qt::NoModifier, QPoint(8, modes->height() / 2));
  EXPECT_FALSE(VN::getUserConfig()->isCompactMode());
  EXPECT_TRUE(isShown(VN::CompactModeLiabilities));
  EXPECT_EQ(place->text(), QStringLiteral("下单"));
}

TEST_F(PanelDocks, ComeBackAsTheyWereLeft) {
  const QString path = m_folder.filePath(QStringLiteral("layout.json"));
  const auto layout = [&path] {
    CDeskLayout read;
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(readLayoutText(file.readAll(), read), QString());
    return read;
  };
  open(path);
  QWidget* second = openPanel(COMPACTS);
  tableOf(*second)->setColumnWidth(1, 333);
  choose(*second, VN::ViewClosed);
  QWidget* orders = openPanel(ORDERS);
  chooseIn(*orders, SMALL);
  moveTo(*orders, "下");
  controlIn<GW::CComboBox>(*orders, "业务类型")->setCurrentIndex(2);
  auto* splitter = orders->findChild<QSplitter*>();
  splitter->setSizes({splitter->sizes().front() + 25, splitter->sizes().back() - 25});
  auto* switched = controlIn<QAbstractButton>(*orders, "选择列");
  switched->click();
  openPanel(ORDERS);
  m_window->addDockWidget(Qt::LeftDockWidgetArea, dock("compacts2"));
  dock("orderPanel4")->close();
  QCoreApplication::processEvents();
  const auto left = state();
  ASSERT_EQ(left.size(), 3U);
  close();

  CDeskLayout kept = layout();
  kept.params[{QStringLiteral("xyz"), QStringLiteral("2")}] = QStringLiteral("of a type that this desk has not");
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  file.write(layoutText(kept));
  file.close();
  open(path);
  orders = dock("orderPanel3")->widget();
  ASSERT_TRUE(
      waitUntil([&] { return controlIn<GW::CComboBox>(*orders, "资金账号")->currentKey() == QLatin1String(SMALL); }));
  EXPECT_EQ(state(), left);
  EXPECT_EQ(m_window->dockWidgetArea(dock("compacts2")), Qt::LeftDockWidgetArea);
  EXPECT_EQ(controlIn<GW::CComboBox>(*orders, "业务类型")->currentText(), QStringLiteral("卖券还款"));
  EXPECT_GT(tableOf(*orders)->mapTo(orders, QPoint()).y(),
            controlIn<QWidget>(*orders, "下单")->mapTo(orders, QPoint()).y());

  // Closed ones stay closed, and a new one of that number is as they were left.
  for (const char* name : {"compacts2", "orderPanel3"}) dock(name)->close();
  close();
  kept = layout();
  EXPECT_EQ(kept.params.count({QStringLiteral("xyz"), QStringLiteral("2")}), 1U);
  open(path);
  EXPECT_EQ(state().size(), 1U);
  ASSERT_NE(openPanel(COMPACTS), nullptr);
  EXPECT_EQ(state()["compacts2"], left.at("compacts2"));
}

}  // namespace
