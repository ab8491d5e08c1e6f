// Repay priorities: what is typed, assigned by order, saved and cleared, and what the counter's answers tell.

#include "CPanelUnderTest.h"

#include "gw/column_delegates.h"
#include "gw/view/CHpfTableView.h"
#include "gw/widget_events.h"
#include "kit/CExpectedBoxes.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"
#include "vn/CMsgService.h"
#include "vn/CTradeClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>

#include <boost/make_shared.hpp>

namespace {

using kit::CTestRuntime;
using testing::ElementsAre;

constexpr const char* FIRST = "3.1001";
constexpr const char* SECOND = "3.1002";
const QString HINT = QStringLiteral("提示");
const QString RANGE_TIP = QStringLiteral("请输入0 - 999999之间的整数");
const QString CLASH_TIP = QStringLiteral("同一账号不允许设置相同的优先级，请重新输入");

/// The text of the tip on the screen; empty when there is none.
QString tipText() {
  const QWidgetList windows = QApplication::topLevelWidgets();
  for (const QWidget* window : windows)
    if (window->isVisible() && window->windowType() == Qt::ToolTip) return window->accessibleName();
  return QString();
}

struct RepayPriority : testing::Test {
  RepayPriority() : p(runtime) {
    p.panel->findChild<GW::CRadioButtonGroup*>()->button(4)->click();
    request(FIRST);
    p.choose(SECOND);
    request(SECOND);
    p.choose(FIRST);
    p.clickRefresh();
    runtime.counter().reply(p.requests() - 1,
                            {compact(FIRST, "C1", 0), compact(FIRST, "C2", 7), compact(FIRST, "C3", 0)});
    runtime.settle();
    runtime.counter().push({compact(SECOND, "D1", 9), compact(SECOND, "D2", 0)});
    kit::waitUntil([&] { return p.table->rowCount() == 5; });
    edits = p.table->priorityEditDelegate();
    messages = VN::CMsgService::subscribe(
        [this](const VN::CMsgService::CMessage& message) { told.push_back(message.text.toStdString()); });
  }
  void request(const char* account) {
    p.panel->requestAccount(
        *rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account)->getAccountInfo());
  }
  rdservice::IDataPtr compact(const char* account, const std::string& number, int priority) const {
    const rdservice::CStkUnClosedCompactsPtr made = p.compact(account, number);
    made->repayPriority = priority;
    return made;
  }
  rdservice::IDataPtr record(const std::string& number) const {
    const std::vector<rdservice::IDataPtr> held = p.table->getAllDatas();
    for (const rdservice::IDataPtr& each : held)
      if (dynamic_cast<const rdservice::CStkUnClosedCompacts&>(*each).fieldA == number) return each;
    return nullptr;
  }
  QString key(const std::string& number) const { return QString::fromStdString(record(number)->getKey()); }
  /// The text that the compact's cell holds after the user has committed `text` in it.
  std::string commit(const std::string& number, const QString& text) const {
    rdservice::IDataPtr data = record(number);
    edits->setItemText(key(number), text);
    p.table->handleEvent(GW::EventCellEdited, edits->columnId(), 0, text, &data);
    return edits->itemText(key(number)).toStdString();
  }
  void press(const char* text) {
    const auto buttons = p.panel->findChildren<GW::CSmallNoNormalButton*>();
    for (GW::CSmallNoNormalButton* button : buttons)
      if (button->text() == QString::fromUtf8(text)) button->click();
    runtime.settle();
  }
  /// Requests for priorities since the last call: account id, the three lists.
  std::vector<std::string> sent() {
    std::vector<std::string> texts;
    const std::vector<rdservice::IDataPtr> held = runtime.counter().held();
    for (; m_seen < held.size(); ++m_seen)
      if (const auto* r = dynamic_cast<const rdservice::CSetCreditRepayPriorityReq*>(held[m_seen].get()))
        texts.push_back(r->accountInfo->accountId + " " + r->openDates + " " + r->orderNumbers + " " + r->priorities);
    return texts;
  }
  static rdservice::IDataPtr answer(const rdservice::IDataPtr& record, int priority) {
    const auto& compact = dynamic_cast<const rdservice::CStkUnClosedCompacts&>(*record);
    const auto made = boost::make_shared<rdservice::CCreditRepayPriorityResp>();
    made->fieldA = compact.fieldA;
    made->fieldB = std::to_string(compact.fieldB);
    made->repayPriority = priority;
    return made;
  }
  static rdservice::IDataPtr refusal(const std::string& text) {
    const auto made = boost::make_shared<rdservice::CErrorResp>();
    made->errorCode = 17;
    made->errorText = text;
    return made;
  }
  std::string dateOf(const std::string& number) const {
    return std::to_string(dynamic_cast<const rdservice::CStkUnClosedCompacts&>(*record(number)).fieldB);
  }

  CTestRuntime runtime;
  CPanelUnderTest p;
  GW::CBaseTableColumnLineeditDelegate* edits = nullptr;
  utils::CSubscriptionPtr messages;
  std::vector<std::string> told;

 private:
  std::size_t m_seen = 0;
};

TEST_F(RepayPriority, TypedTextsAreTakenOrTakenBack) {
  struct CCase {
    const char* number;
    const char* typed;
    const char* kept;
    QString tip;
  };
  for (const CCase& c : std::vector<CCase>{{"C1", "5", "5", {}},
                                           {"C1", "5", "5", {}},
                                           {"C3", "5", "", CLASH_TIP},  // typed for C1
                                           {"C3", "7", "", CLASH_TIP},  // C2 has it
                                           {"C2", "8", "8", {}},
                                           {"C3", "7", "", CLASH_TIP},  // C2 still has it until it is saved
                                           {"C3", "08", "8", {}},       // the texts differ
                                           {"C3", "9", "9", {}},        // another account's
                                           {"D2", "5", "5", {}},
                                           {"C3", "999999", "999999", {}},
                                           {"C3", "1000000", "", RANGE_TIP},
                                           {"C3", "0", "0", {}},
                                           {"C1", "0", "0", {}},
                                           {"C3", "00", "", RANGE_TIP},
                                           {"C3", "-1", "", RANGE_TIP},
                                           {"C3", "7x", "", RANGE_TIP},
                                           {"C3", "", "", RANGE_TIP}}) {
    SCOPED_TRACE(std::string(c.number) + " " + c.typed);
    EXPECT_EQ(commit(c.number, QString::fromUtf8(c.typed)), c.kept);
  }
  p.panel->findChild<GW::CRadioButtonGroup*>()->setChecked(0);
  EXPECT_EQ(commit("C3", QStringLiteral("3")), "") << "in the other view of the same table";
}

TEST_F(RepayPriority, ATipStandsAtTheCell) {
  auto* view = p.table->findChild<GW::CHpfTableView*>();
  QApplication::setActiveWindow(p.panel.get());
  const int column = edits->columnId();
  p.table->moveColumn(column, 0);
  const auto type = [&](int row, const char* text) {
    p.table->selectRow(row);
    QPoint cell(20, 0);
    while (view->rowAt(cell.y()) != row) ++cell.ry();
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, cell + QPoint(0, 4));
    ASSERT_NE(edits->editor(), nullptr);
    QTest::keyClicks(edits->editor(), QString::fromUtf8(text));
    QTest::keyClick(edits->editor(), Qt::Key_Return);
  };
  type(0, "1234567");
  EXPECT_EQ(tipText(), RANGE_TIP);
  type(2, "7");
  EXPECT_EQ(tipText(), CLASH_TIP);
  EXPECT_TRUE(edits->isEmpty());
  type(2, "12");
  EXPECT_EQ(edits->itemText(key("C3")), QStringLiteral("12"));
}

TEST_F(RepayPriority, AssignsByTheDisplayedOrder) {
  p.table->setSortColumn(kit::columnOf(*p.table, "合约编号"), Qt::DescendingOrder);
  kit::CExpectedBoxes boxes;
  boxes.expect(HINT, QStringLiteral("是否按当前排序设置优先级?"), QMessageBox::No);
  press("按顺序设置优先级");
  EXPECT_TRUE(edits->isEmpty());
  boxes.expect(HINT, QStringLiteral("是否按当前排序设置优先级?"), QMessageBox::Yes);
  press("按顺序设置优先级");
  EXPECT_THAT(kit::visible(*p.table, {"合约编号", "偿还优先级设置"}),
              ElementsAre("D2 | 1", "D1 | 2", "C3 | 3", "C2 | 4", "C1 | 5"));
  EXPECT_TRUE(sent().empty());
}

TEST_F(RepayPriority, SavesOneRequestForEachAccount) {
  press("保存优先级调整");
  EXPECT_TRUE(sent().empty()) << "nothing was edited";
  commit("C1", QStringLiteral("5"));
  commit("C2", QStringLiteral("7"));  // as it is
  commit("D1", QStringLiteral("3"));
  VN::CTradeClient::instance()->setLogin("11.1003", false);
  press("保存优先级调整");
  const std::string c = dateOf("C1") + "|", d = dateOf("D1") + "|";
  EXPECT_THAT(sent(), ElementsAre("1001 C1|C3| " + c + c + " 5||", "1002 D1|D2| " + d + d + " 3||"));
  EXPECT_FALSE(edits->isEmpty()) << "saving keeps what was typed";

  // The later request is answered first; each answer has its own summary.
  const std::size_t last = p.requests() - 1;
  kit::CExpectedBoxes boxes;
  boxes.expect(HINT, QStringLiteral("资金账号:1002,清空优先级成功:1条,保存优先级失败:1条,失败信息可以查看消息提示."),
               QMessageBox::Ok);
  runtime.counter().reply(last, {refusal("合约不存在")});
  runtime.settle();
  boxes.expect(HINT, QStringLiteral("资金账号:1001,清空优先级成功:1条,保存优先级成功:1条."), QMessageBox::Ok);
  runtime.counter().reply(last - 1, {answer(record("C1"), 5)});
  runtime.settle();
  EXPECT_THAT(told, ElementsAre("合约不存在"));
  p.table->updateTable();
  EXPECT_THAT(kit::visible(*p.table, {"合约编号", "偿还优先级"}),
              ElementsAre("C1 | 5", "C2 | 7", "C3 | ", "D1 | 9", "D2 | "));
  EXPECT_EQ(runtime.logged("save priority setting resp size : 1, error size: 0").size(), 1U);
}

TEST_F(RepayPriority, AFailureOfTheWholeRequestCountsEveryEntry) {
  commit("C1", QStringLiteral("5"));
  press("保存优先级调整");
  EXPECT_EQ(sent().size(), 2U);
  kit::CExpectedBoxes boxes;
  boxes.expect(HINT, QStringLiteral("资金账号:1001,保存优先级失败:3条,失败信息可以查看消息提示."), QMessageBox::Ok);
  runtime.counter().fail(p.requests() - 2, 5, "柜台繁忙");
  runtime.settle();
  EXPECT_THAT(told, ElementsAre("柜台繁忙", "柜台繁忙", "柜台繁忙"));
}

TEST_F(RepayPriority, ClearsWhatTheCounterHas) {
  kit::CExpectedBoxes boxes;
  boxes.expect(HINT, QStringLiteral("是否清空偿还优先级?"), QMessageBox::No);
  press("清空优先级");
  EXPECT_TRUE(sent().empty());
  boxes.expect(HINT, QStringLiteral("是否清空偿还优先级?"), QMessageBox::Yes);
  press("清空优先级");
  EXPECT_THAT(sent(), ElementsAre("1001 C2| " + dateOf("C2") + "| 0|", "1002 D1| " + dateOf("D1") + "| 0|"));
  boxes.expect(HINT, QStringLiteral("资金账号:1001,清空优先级成功:1条."), QMessageBox::Ok);
  runtime.counter().reply(p.requests() - 2, {});
  runtime.settle();
}

TEST_F(RepayPriority, ThePanelMayGoBeforeTheAnswer) {
  commit("C1", QStringLiteral("5"));
  press("保存优先级调整");
  const rdservice::IDataPtr made = answer(record("C1"), 5);
  const std::size_t first = p.requests() - 2;
  p.panel.reset();
  runtime.counter().reply(first, {made});
  runtime.settle();
  EXPECT_TRUE(told.empty());
}

}  // namespace
