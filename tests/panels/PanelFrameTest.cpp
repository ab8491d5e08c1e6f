// What the panel is made of in both layouts, and what it tells and takes from its host.

#include "CPanelUnderTest.h"

#include "compacts/tables/CCompactsChangeTable.h"
#include "compacts/tables/CCompactsStaticsTable.h"
#include "gw/CComboPushButton.h"
#include "gw/CParamAction.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/containers.h"
#include "gw/widget_events.h"
#include "luawrapper/LuaModuleCtrl.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMenu>
#include <QSignalSpy>

#include <random>
#include <set>

namespace {

using kit::CTestRuntime;
using luawrapper::LuaModuleCtrl;
using rdservice::RecordStkUnClosedCompacts;
using testing::ElementsAre;
using VN::CCompactsPanel;

QStringList viewTexts(const QWidget& panel) {
  QStringList texts;
  const auto* group = panel.findChild<GW::CRadioButtonGroup*>();
  if (group == nullptr) return texts;
  const auto buttons = group->findChildren<QAbstractButton*>();
  for (const QAbstractButton* button : buttons) texts << button->text();
  return texts;
}

GW::CSmallNoNormalButton* button(const QWidget& panel, int id) {
  const auto buttons = panel.findChildren<GW::CSmallNoNormalButton*>();
  for (GW::CSmallNoNormalButton* each : buttons)
    if (each->id() == id) return each;
  return nullptr;
}

rdservice::CAccountInfoPtr accountInfo(const char* key) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key)->getAccountInfo();
}

/// The widget around an order panel's compacts: hears what the panel reports, wants some accounts.
struct CHost : GW::CBaseWidget, VN::IAccountDemand {
  CHost() : CBaseWidget(nullptr) {}

  bool handleEvent(int type, int p1, int p2, QString text, void*) override {
    events.push_back({type, p1, p2});
    EXPECT_TRUE(text.isEmpty());
    return true;
  }
  bool needsAccount(const std::string& key) const override { return wanted.count(key) != 0; }

  std::vector<std::vector<int>> events;
  std::set<std::string> wanted{"3.1001", "3.1002", "11.1003"};
};

struct COrderPanelTest : testing::Test {
  COrderPanelTest() { open(); }

  void open() {
    panel = std::make_unique<CCompactsPanel>(5, &host, 1);
    host.resize(800, 400);
    panel->resize(800, 400);
    host.show();
    table = panel->findChild<VN::CCompactsTable*>();
    modes = panel->findChild<GW::CComboPushButton*>();
    runtime.settle();
  }
  rdservice::CStkUnClosedCompactsPtr compact(const char* key, const std::string& number) const {
    return kit::compact(accountInfo(key), number);
  }
  void show(const std::vector<rdservice::IDataPtr>& records) {
    panel->setAccount("3.1001", true, true);
    QTest::mouseClick(panel->findChild<VN::CCountDownButton*>(), Qt::LeftButton);
    runtime.settle();
    runtime.counter().reply(runtime.counter().held().size() - 1, records);
    runtime.settle();
  }

  CTestRuntime runtime;
  CHost host;
  std::unique_ptr<CCompactsPanel> panel;
  VN::CCompactsTable* table = nullptr;
  GW::CComboPushButton* modes = nullptr;
};

TEST(PanelFrame, ControlsFollowTheRights) {
  const QString unclosed = QStringLiteral("未了结合约"), closed = QStringLiteral("已了结合约"),
                statics = QStringLiteral("负债统计"), changes = QStringLiteral("负债变动明细"),
                priority = QStringLiteral("负债偿还优先级设置");
  struct CCase {
    std::set<std::string> order;
    int variant;
    QStringList views;
    bool link;
    int configs;  ///< fields of the parameter string
  };
  const std::string DETAIL = "mdl_order_credit_compact_change_detail", RENEWAL = "mdl_order_compact_renewal_apply",
                    PRIORITY = "mdl_order_credit_priority";
  for (const CCase& c :
       {CCase{{DETAIL, RENEWAL, PRIORITY}, 100, {unclosed, closed, statics, changes, priority}, true, 6},
        {{DETAIL, PRIORITY}, 99, {unclosed, closed, statics, changes}, false, 6},
        {{PRIORITY}, 301, {unclosed, closed, statics, priority}, false, 5},
        {{}, 100, {unclosed, closed, statics}, false, 5}}) {
    SCOPED_TRACE(c.views.join(u',').toStdString());
    runtime::CClientConfig config = kit::testConfig();
    config.rights[LuaModuleCtrl::Order] = c.order;
    config.user.variantCode = c.variant;
    CTestRuntime runtime(config);
    CPanelUnderTest p(runtime);
    EXPECT_EQ(viewTexts(*p.panel), c.views);
    EXPECT_EQ(p.panel->findChild<GW::CSimpleTextWidget*>() != nullptr, c.link);
    EXPECT_EQ(p.panel->param().split(u'|').size(), c.configs);

    // Each view shows its table alone, and the priority buttons only with theirs.
    auto* group = p.panel->findChild<GW::CRadioButtonGroup*>();
    for (int view = 0; view <= 4; ++view) {
      if (group->button(view) == nullptr) continue;
      group->button(view)->click();
      const auto* details = p.panel->findChild<VN::CCompactsChangeTable*>();
      EXPECT_EQ(p.table->isVisible(), view == 0 || view == 4);
      EXPECT_EQ(p.panel->findChild<QWidget*>(QStringLiteral("compactsTable1"))->isVisible(), view == 1);
      EXPECT_EQ(details != nullptr && details->isVisible(), view == 2);
      EXPECT_EQ(p.panel->findChild<VN::CCompactsStaticsTable*>()->isVisible(), view == 3);
      for (const int id : {10000, 10001, 10002, 10004, 10005}) {
        const GW::CSmallNoNormalButton* each = button(*p.panel, id);
        EXPECT_EQ(each != nullptr, c.views.contains(priority));
        EXPECT_TRUE(each == nullptr || each->isHidden() == (view != 4)) << id;
      }
    }
    // The view without a right to it stands for the first one.
    p.panel->setParam(QStringLiteral("|||4"));
    EXPECT_EQ(group->checkedId(), c.views.contains(priority) ? 4 : 0);
  }
}

TEST(PanelFrame, HiddenViewsAreNotRefreshed) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  auto* group = p.panel->findChild<GW::CRadioButtonGroup*>();
  for (const int view : {1, 2, 3, 4, 0}) {
    group->button(view)->click();
    runtime.settle();
    const std::size_t before = p.requests();
    p.clickRefresh();
    EXPECT_EQ(p.requests() - before, 1U) << "view " << view;
  }
}

TEST(PanelFrame, NoParameterStringDoesHarm) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  p.table->setColumnHidden(p.table->getColumnIdByFileId(1391602), true);
  const QString good = p.panel->param();
  CPanelUnderTest other(runtime);
  std::mt19937 random(7);
  const QString alphabet = QStringLiteral("|;:,0123456789-13916x\n\t");
  for (int round = 0; round < 300; ++round) {
    QString damaged = good;
    const int changes = 1 + static_cast<int>(random() % 6);
    for (int i = 0; i < changes; ++i) {
      const int place = static_cast<int>(random() % static_cast<unsigned>(damaged.size()));
      const QChar letter = round % 3 == 0 ? QChar(ushort(random())) : alphabet.at(int(random() % alphabet.size()));
      if (random() % 4 == 0)
        damaged.remove(place, 1 + int(random() % 40));
      else
        damaged.insert(place, letter);
      if (damaged.isEmpty()) break;
    }
    other.panel->setParam(damaged);
  }
  for (const QString& view :
       {QStringLiteral("10000"), QStringLiteral("10002"), QStringLiteral("-1"), QStringLiteral("x")})
    other.panel->setParam(QStringLiteral("|||") + view);
  other.panel->setParam(QString(1 << 20, QChar(0x1)));
  // What stands before the damage is restored.
  other.panel->setParam(good.section(u'|', 0, 0) + QStringLiteral("|damaged||1|||||"));
  EXPECT_TRUE(other.table->isColumnHidden(other.table->getColumnIdByFileId(1391602)));
  EXPECT_EQ(other.panel->findChild<GW::CRadioButtonGroup*>()->checkedId(), 1);
}

TEST_F(COrderPanelTest, TellsItsHostWhatTheUserWants) {
  const QMenu* menu = table->findChild<QMenu*>();
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->title(), QStringLiteral("面板位置"));
  EXPECT_TRUE(table->menuActions().contains(menu->menuAction()));
  const QList<QAction*> sides = menu->actions();
  for (QAction* side : sides) side->trigger();
  using CEvents = std::vector<std::vector<int>>;
  EXPECT_EQ(host.events, (CEvents{{1176, 0, 32}, {1176, 0, 64}, {1176, 0, 1}, {1176, 0, 2}}));
  host.events.clear();

  // Items by the keyboard; a double click stands for the second one whatever is shown.
  EXPECT_EQ(modes->text(), QStringLiteral("负债信息"));
  QTest::keyClick(modes, Qt::Key_Space);
  EXPECT_FALSE(VN::getUserConfig()->isCompactMode());
  QTest::mouseDClick(modes, Qt::LeftButton, Qt::NoModifier, QPoint(8, modes->height() / 2));
  EXPECT_TRUE(VN::getUserConfig()->isCompactMode());
  for (const std::vector<int>& event : host.events) EXPECT_THAT(event, ElementsAre(1309, 0, 0));
  EXPECT_GE(host.events.size(), 2U);
  host.events.clear();
  panel->handleEvent(GW::EventItemClicked, 2, 10009, QString(), nullptr);   // no such item
  panel->handleEvent(GW::EventComboChanged, 10007, 0, QString(), nullptr);  // no such box in this layout
  panel->updateCompactIndex(true);
  EXPECT_EQ(modes->text(), QStringLiteral("多账号模式"));
  panel->updateCompactIndex(false);
  EXPECT_EQ(modes->text(), QStringLiteral("负债信息"));
  EXPECT_TRUE(host.events.empty());
}

TEST_F(COrderPanelTest, OperationsDecideWhatIsShown) {
  struct CCase {
    int operation, repay, type;
    bool modes;
  };
  for (const CCase& c : {CCase{22, 0, '1', true},
                         {23, 0, '1', false},
                         {1021, 0, '1', false},
                         {24, '3', '0', true},
                         {25, '3', '1', false},
                         {25, '4', '1', false},
                         {25, '0', '0', false},
                         {1012, 0, ' ', false}}) {
    SCOPED_TRACE(testing::Message() << c.operation << " " << c.repay);
    panel->setOperationType(static_cast<rdservice::EOperationType>(c.operation),
                            static_cast<rdservice::ERepayType>(c.repay));
    runtime.settle();
    EXPECT_EQ(table->scope().type, c.type);
    EXPECT_EQ(modes->isHidden(), !c.modes);
  }
}

TEST_F(COrderPanelTest, SelectsReportsAndSums) {
  auto first = compact("3.1001", "C1"), second = compact("3.1001", "C2");
  first->equityCompensation = 1.5;
  second->equityCompensation = 2;
  second->source = '1';
  EXPECT_EQ(panel->getEquityCompensation(), 0);
  show({first, second});
  ASSERT_EQ(table->rowCount(), 2);
  EXPECT_EQ(panel->getSelectCompact(), nullptr);
  panel->setSelectCompact("unknown");
  EXPECT_EQ(panel->getSelectCompact(), nullptr);
  panel->setSelectCompact(second->getKey());
  ASSERT_NE(panel->getSelectCompact(), nullptr);
  EXPECT_EQ(panel->getSelectCompact()->fieldA, "C2");
  EXPECT_EQ(table->currentRow(), 1);
  panel->clearSelect();
  EXPECT_EQ(panel->getSelectCompact(), nullptr);

  QSignalSpy clicked(panel.get(), &CCompactsPanel::sigDoubleClickCompact);
  table->handleEvent(GW::EventRowDoubleClicked, 0, 0, QString::fromStdString(first->getKey()), nullptr);
  EXPECT_EQ(clicked.count(), 1);

  panel->setCompactBrushSourceType(rdservice::BrushSourceSpecial);
  EXPECT_THAT(kit::visible(*table, {"合约编号"}), ElementsAre("C2"));
  EXPECT_EQ(panel->getEquityCompensation(), 3.5) << "what the filter hides counts too";
  const int select = kit::columnOf(*table, "选择");
  panel->setSelectColumnVisible(false);
  EXPECT_TRUE(table->isColumnHidden(select));
}

TEST_F(COrderPanelTest, ServesTheAccountsThatItsHostNeeds) {
  EXPECT_EQ(runtime.logged("PT! [ORDER] request account : panel_id = 5").size(), 2U) << "credit accounts, strictly";
  EXPECT_EQ(runtime.logged("NOT need request.").size(), 0U);
  EXPECT_EQ(panel->param(), table->saveConfigStr() + u'|');

  panel->setAccount("3.1001", true, true);
  runtime.counter().push({compact("3.1001", "C1"), compact("3.1002", "D1"), compact("11.1003", "X1")});
  EXPECT_TRUE(kit::waitUntil([&] { return table->rowCount() == 2; })) << "nobody asked for the institution's";
  panel->requestAccount(*accountInfo("11.1003"));
  runtime.counter().push({compact("11.1003", "X2")});
  EXPECT_TRUE(kit::waitUntil([&] { return table->rowCount() == 3; }));

  host.wanted = {"3.1002"};
  panel.reset();
  open();
  EXPECT_EQ(runtime.logged("NOT need request.").size(), 1U);
  panel->requestAccount(*accountInfo("3.1002"));
  VN::CTradeClient::instance()->setLogin("3.1002", false);
  runtime.settle();
  panel->requestAccount(*accountInfo("3.1002"));
  EXPECT_EQ(runtime.logged("NOT need request.").size(), 2U) << "it cannot answer";
}

TEST_F(COrderPanelTest, ManualGeometryLeavesTheTableTheRest) {
  const auto* bars = dynamic_cast<GW::CAutoExpandToolBar*>(modes->parentWidget());
  ASSERT_NE(bars, nullptr);
  const int bar = bars->sizeHint().height();
  EXPECT_EQ(bars->geometry(), QRect(0, 0, 800, bar));
  panel->resize(640, 333);
  EXPECT_EQ(table->geometry(), QRect(0, bar, 640, 333 - bar));
}

TEST(PanelAccounts, WhatTheDataServiceDropsIsGone) {
  CTestRuntime runtime;
  CPanelUnderTest p(runtime);
  const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData("3.1001");
  p.panel->requestAccount(*store->getAccountInfo());
  p.clickRefresh();
  runtime.counter().reply(p.requests() - 1, {p.compact("3.1001", "C1")});
  runtime.settle();
  ASSERT_EQ(p.table->rowCount(), 1);
  store->removeMetaData(rdservice::RecordStkClosedCompacts);
  runtime.settle();
  EXPECT_EQ(p.table->rowCount(), 1);
  store->removeMetaData(RecordStkUnClosedCompacts);
  runtime.settle();
  EXPECT_EQ(p.table->rowCount(), 0);
}

}  // namespace
