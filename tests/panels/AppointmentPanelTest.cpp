// The panel of renewals by appointment, worked as a user works it.

#include "appointment/CQueryAppointmentInfoPanel.h"
#include "appointment/CQueryAppointmentInfoTable.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/CTipWindow.h"
#include "gw/controls.h"
#include "gw/line_edits.h"
#include "gw/view/CHpfTableView.h"
#include "kit/CExpectedBoxes.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/CErrorResp.h"
#include "rdservice/CQueryAppointmentInfoResp.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "vn/CMsgService.h"
#include "vn/CStockCodeLineEdit.h"
#include "vn/CUserConfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QHeaderView>
#include <QTest>

#include <boost/make_shared.hpp>

namespace {

using rdservice::CCreditCompactRenewalApply;
using rdservice::CQueryAppointmentInfoReq;
using rdservice::IDataPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using CTexts = std::vector<std::string>;

IDataPtr compactOf(const std::string& number, const char* exchange = "SH", const char* code = "600000") {
  const auto record = boost::make_shared<rdservice::StockSMTQueryAppointmentInfoResp>();
  record->exchangeId = exchange;
  record->code = code;
  record->fieldA = number;
  record->fieldB = 2460000;
  record->expiryDate = 2460180;
  return record;
}

IDataPtr answerOf(std::vector<IDataPtr> records, int flag = 1) {
  const auto answer = boost::make_shared<rdservice::CQueryAppointmentInfoResp>();
  answer->resultFlag = flag;
  answer->records = std::move(records);
  return answer;
}

int digits(const QDate& date) { return date.toString(QStringLiteral("yyyyMMdd")).toInt(); }

struct AppointmentPanel : testing::Test {
  AppointmentPanel() { open(5); }

  void open(int panelId) {
    panel = std::make_unique<VN::CQueryAppointmentInfoPanel>(panelId, nullptr);
    panel->setGeometry(-200, 0, 1300, 400);  // tips stand below their edits, on the screen
    panel->show();
    QApplication::setActiveWindow(panel.get());
    table = panel->findChild<VN::CQueryAppointmentInfoTable*>();
    view = table->findChild<GW::CHpfTableView*>();
    combo = panel->findChild<GW::CComboBox*>();
    stock = panel->findChild<VN::CStockCodeLineEdit*>();
    for (auto* const edit : panel->findChildren<GW::CSoftCalendarLineEdit*>()) (edit->id() == 5 ? start : end) = edit;
    for (auto* const edit : panel->findChildren<GW::CLineEdit*>())
      if (edit->id() == 7) days = edit;
    check = kit::columnOf(*table, "");
    settle();
  }
  void settle() { runtime.settle(); }
  std::size_t sent() const { return runtime.counter().held().size(); }
  void refresh() {
    QTest::mouseClick(panel->findChild<GW::CSmallNoNormalButton*>(), Qt::LeftButton);
    settle();
  }
  /// Answers the latest request with those compacts.
  void answer(const std::vector<IDataPtr>& records) {
    runtime.counter().reply(sent() - 1, {answerOf(records)});
    settle();
  }
  template <class Request>
  const Request& request(std::size_t number) const {
    return dynamic_cast<const Request&>(*runtime.counter().held().at(number));
  }
  void clickLink() {
    for (auto* const text : panel->findChildren<QWidget*>())
      if (auto* const link = dynamic_cast<GW::CSimpleTextWidget*>(text); link && link->text() == u"选中申请展期")
        QTest::mouseClick(link, Qt::LeftButton);
    settle();
  }
  static void typeInto(QWidget* edit, const QString& keys) {
    edit->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Home);
    QTest::keyClicks(QApplication::focusWidget(), keys);
  }
  /// The tip that is shown, headed by the id of the date edit at which it stands.
  std::string tip() const {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
      const auto* const shown = dynamic_cast<const GW::CTipWindow*>(window);
      if (shown == nullptr || !shown->isVisible()) continue;
      for (const auto* const edit : {start, end})
        if (edit->mapToGlobal(QPoint()).x() == shown->x())
          return std::to_string(edit->id()) + shown->accessibleName().toStdString();
    }
    return std::string();
  }
  CTexts shown() const { return kit::visible(*table, {"合约编号", "展期天数"}); }
  void clickCell(int row, int column) {
    view->scrollToCell(row, column);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->cellRect(row, column).center());
    settle();
  }
  void clickHeaderBox() {
    view->scrollToCell(-1, check);
    QHeaderView* const header = view->header();
    QTest::mouseClick(
        header->viewport(), Qt::LeftButton, {},
        QPoint(header->sectionViewportPosition(check) + header->sectionSize(check) / 2, header->height() / 2));
    settle();
  }
  void enterDays(int row, const QString& text) {
    QApplication::setActiveWindow(panel.get());  // boxes take that away
    clickCell(row, kit::columnOf(*table, "展期天数"));
    QTest::keyClicks(QApplication::focusWidget(), text);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    settle();
  }
  /// Numbers of the ticked rows from above, and a mark for a ticked header.
  std::string ticked() const {
    std::string all = table->headerCheckBoxState(check) ? "*" : "";
    for (const IDataPtr& record : table->checkedRecords())
      all += " " + static_cast<const rdservice::StockSMTQueryAppointmentInfoResp&>(*record).fieldA;
    return all;
  }

  kit::CTestRuntime runtime;
  kit::CExpectedBoxes boxes;
  std::unique_ptr<VN::CQueryAppointmentInfoPanel> panel;
  VN::CQueryAppointmentInfoTable* table = nullptr;
  GW::CHpfTableView* view = nullptr;
  GW::CComboBox* combo = nullptr;
  VN::CStockCodeLineEdit* stock = nullptr;
  GW::CSoftCalendarLineEdit* start = nullptr;
  GW::CSoftCalendarLineEdit* end = nullptr;
  GW::CLineEdit* days = nullptr;
  int check = -1;
};

TEST_F(AppointmentPanel, AsksForWhatItsControlsSay) {
  const QDate today = QDate::currentDate();
  ASSERT_EQ(sent(), 1U) << "at once";
  EXPECT_EQ(combo->count(), 2) << "credit accounts";
  const struct {
    const char* account;
    const char* stock;
    const char* exchange;
    const char* code;
    QString from, to;
  } cases[] = {{"3.1001", "", "", "", QString(), QString()},
               {"3.1002", "000001", "SZ", "000001", QStringLiteral("20240229"), QStringLiteral("20240229")},
               {"3.1002", "999", "", "", QStringLiteral("20240101"), QStringLiteral("20241231")},
               {"3.1001", "600000", "SH", "600000", QStringLiteral("00010101"), QString()}};
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.account) + c.stock);
    const std::size_t before = sent();
    if (before > 1 && combo->currentKey() != QLatin1String(c.account)) {
      combo->setCurrentIndex(1 - combo->currentIndex());
      settle();
      EXPECT_EQ(sent(), before + 1) << "another account";
    }
    typeInto(stock, QString::fromLatin1(c.stock));
    QTest::keyClick(stock, Qt::Key_Escape);
    if (!c.from.isEmpty()) typeInto(start, c.from);
    if (!c.to.isEmpty()) typeInto(end, c.to);
    refresh();
    const auto& asked = request<CQueryAppointmentInfoReq>(sent() - 1);
    ASSERT_TRUE(asked.accountInfo);
    EXPECT_EQ(asked.accountInfo->getKey(), c.account);
    EXPECT_EQ(asked.exchangeId + asked.code, std::string(c.exchange) + c.code);
    EXPECT_EQ(asked.startDate, c.from.isEmpty() ? digits(today.addYears(-1)) : c.from.toInt());
    EXPECT_EQ(asked.endDate, c.to.isEmpty() ? (c.from.isEmpty() ? digits(today) : 20241231) : c.to.toInt());
  }
}

TEST_F(AppointmentPanel, TellsWrongDatesAndSendsNothing) {
  answer({compactOf("C1")});
  const QString late = QDate::currentDate().addDays(1).toString(QStringLiteral("yyyyMMdd"));
  const struct {
    QString from, to;
    const char* tip;  ///< empty: a query is sent
  } cases[] = {{QString(), QStringLiteral("20240101"), "5请选择起始日期!"},
               {QStringLiteral("2024"), QString(), "5请选择起始日期!"},
               {QStringLiteral("20240101"), QStringLiteral("20230229"), "6请选择终止日期!"},
               {QStringLiteral("20240101"), late, "6请选择终止日期!"},
               {QStringLiteral("20240102"), QStringLiteral("20240101"), "6终止日期不能小于起始日期!"},
               {QStringLiteral("20240101"), QStringLiteral("20240101"), ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.from.toStdString() + "-" + c.to.toStdString());
    const std::size_t before = sent();
    typeInto(start, c.from);
    typeInto(end, c.to);
    refresh();
    EXPECT_EQ(tip(), c.tip);
    EXPECT_EQ(sent(), before + (*c.tip == 0 ? 1 : 0));
    EXPECT_EQ(table->rowCount(), *c.tip == 0 ? 0 : 1) << "rows go when a query is sent";
  }
}

TEST_F(AppointmentPanel, ShowsTheLatestAnswerOnly) {
  refresh();
  refresh();
  EXPECT_EQ(ticked(), "");
  runtime.counter().reply(0, {answerOf({compactOf("old")})});
  settle();
  EXPECT_THAT(shown(), IsEmpty());
  auto ofOther = boost::dynamic_pointer_cast<rdservice::StockSMTQueryAppointmentInfoResp>(compactOf("C2"));
  ofOther->accountInfo = kit::testAccounts()[1];
  answer({compactOf("C1"), nullptr, boost::make_shared<rdservice::CErrorResp>(), ofOther});
  runtime.counter().reply(1, {answerOf({compactOf("old")})});
  settle();
  EXPECT_THAT(kit::visible(*table, {"资金账号", "合约编号", "展期天数"}),
              ElementsAre("1001 | C1 | 0", "1002 | C2 | 0"));
  EXPECT_EQ(ticked(), "* C1 C2");
  // What is no answer leaves the table empty, without a word.
  const std::vector<std::vector<IDataPtr>> nothings{
      {answerOf({compactOf("C1")}, 0)}, {answerOf({})}, {compactOf("C1")}, {}};
  for (const auto& records : nothings) {
    refresh();
    runtime.counter().reply(sent() - 1, records);
    settle();
    EXPECT_EQ(table->rowCount(), 0);
    EXPECT_EQ(ticked(), "");
  }
  refresh();
  runtime.counter().fail(sent() - 1, 7, "no");
  settle();
  EXPECT_EQ(table->rowCount(), 0);
}

TEST_F(AppointmentPanel, HeaderBoxAndRowsFollowOneAnother) {
  answer({compactOf("C1"), compactOf("C2"), compactOf("C3")});
  EXPECT_EQ(ticked(), "* C1 C2 C3");
  clickCell(1, check);
  EXPECT_EQ(ticked(), " C1 C3");
  clickCell(1, check);
  EXPECT_EQ(ticked(), "* C1 C2 C3");
  clickHeaderBox();
  EXPECT_EQ(ticked(), "");
  clickCell(2, check);
  EXPECT_EQ(ticked(), " C3");
  clickHeaderBox();
  EXPECT_EQ(ticked(), "* C1 C2 C3");
  clickCell(0, check);
  refresh();
  EXPECT_EQ(ticked(), "") << "there is nothing to extend";
  answer({compactOf("C2")});
  EXPECT_EQ(ticked(), "* C2");
}

TEST_F(AppointmentPanel, DefaultDaysGoToEveryRow) {
  EXPECT_EQ(days->text(), QStringLiteral("0"));
  answer({compactOf("C1"), compactOf("C2")});
  EXPECT_THAT(shown(), ElementsAre("C1 | 0", "C2 | 0"));
  typeInto(days, QStringLiteral("183"));
  EXPECT_EQ(days->text(), QStringLiteral("18"));
  EXPECT_THAT(shown(), ElementsAre("C1 | 18", "C2 | 18"));
  enterDays(1, QStringLiteral("77"));
  EXPECT_THAT(shown(), ElementsAre("C1 | 18", "C2 | 77"));
  refresh();
  answer({compactOf("C2"), compactOf("C3")});
  EXPECT_THAT(shown(), ElementsAre("C2 | 18", "C3 | 18"));
  enterDays(0, QStringLiteral("77"));
  typeInto(days, QStringLiteral("182"));
  EXPECT_THAT(shown(), ElementsAre("C2 | 182", "C3 | 182")) << "what was typed into rows is overwritten";
  typeInto(days, QString());
  EXPECT_THAT(shown(), ElementsAre("C2 | 0", "C3 | 0"));
}

TEST_F(AppointmentPanel, AppliesForEachTickedRowThatIsShown) {
  answer({compactOf("C1"), compactOf("C2", "SZ", "000001"), compactOf("C3"), compactOf("C4"), compactOf("C5")});
  clickHeaderBox();
  boxes.expect(QStringLiteral("警告"), QStringLiteral("请选择您要展期的合约!"), QMessageBox::Ok);
  clickLink();
  clickHeaderBox();
  clickCell(3, check);  // C4 not
  for (int row = 0; row < 5; ++row) enterDays(row, QString::number(10 + row));
  const int number = kit::columnOf(*table, "合约编号");
  table->setSortColumn(number, Qt::DescendingOrder);
  table->onFilterTrigger(number, GW::FilterValues,
                         {QStringLiteral("C1"), QStringLiteral("C2"), QStringLiteral("C3"), QStringLiteral("C4")});
  ASSERT_THAT(shown(), ElementsAre("C4 | 13", "C3 | 12", "C2 | 11", "C1 | 10"));
  const std::size_t before = sent();
  const QString question = QStringLiteral("本次共展期 3 条合约,是否继续?");
  boxes.expect(QStringLiteral("提示"), question, QMessageBox::No);
  clickLink();
  EXPECT_EQ(sent(), before);
  boxes.expect(QStringLiteral("提示"), question, QMessageBox::Yes);
  clickLink();
  ASSERT_EQ(sent(), before + 3);
  CTexts applied;
  for (std::size_t i = before; i < sent(); ++i) {
    const auto& apply = request<CCreditCompactRenewalApply>(i);
    applied.push_back(apply.compactNumber + " | " + std::to_string(apply.renewalDays));
    ASSERT_TRUE(apply.accountInfo);
    EXPECT_EQ(apply.accountInfo->getKey(), "3.1001");
    EXPECT_EQ(apply.exchangeId + apply.code, apply.compactNumber == "C2" ? "SZ000001" : "SH600000");
    EXPECT_EQ(apply.openDate, 2460000);
    EXPECT_EQ(apply.expiryDate, 2460180);
    EXPECT_EQ(apply.newExpiryDate, 0);
    EXPECT_EQ(apply.flag, 1);
    EXPECT_EQ(apply.reserved, "");
  }
  EXPECT_THAT(applied, ElementsAre("C3 | 12", "C2 | 11", "C1 | 10"));
}

TEST_F(AppointmentPanel, TellsWhatBecameOfEachApplication) {
  answer({compactOf("C1"), compactOf("C2"), compactOf("C3"), compactOf("C4")});
  CTexts told;
  const auto listener = VN::CMsgService::subscribe([&told](const VN::CMsgService::CMessage& m) {
    told.push_back(m.text.toStdString());
    EXPECT_EQ(std::make_tuple(m.kind, m.level, m.title, m.times), std::make_tuple(1, 1, QString(), 1));
  });
  boxes.expect(QStringLiteral("提示"), QStringLiteral("本次共展期 4 条合约,是否继续?"), QMessageBox::Yes);
  clickLink();
  const std::size_t first = sent() - 4;
  const auto refused = [](const char* text) {
    const auto record = boost::make_shared<rdservice::CErrorResp>();
    record->errorText = text;
    return record;
  };
  runtime.expectError("onRenewAppointmentInfo");
  runtime.counter().fail(first + 1, 7, "柜台忙", {refused("已展期")});
  runtime.counter().reply(first, {});
  runtime.counter().fail(first + 2, 7, "柜台忙");
  runtime.counter().fail(first + 3, 7, "柜台忙", {refused("")});
  settle();
  EXPECT_THAT(told, ElementsAre("账号[1001]对合约[C2]展期失败, rdError:柜台忙, error:已展期",
                                "账号[1001]对合约[C1]展期成功", "账号[1001]对合约[C3]展期失败, rdError:柜台忙",
                                "账号[1001]对合约[C4]展期失败, rdError:柜台忙"));
  const auto lines = runtime.logged("onRenewAppointmentInfo");
  ASSERT_EQ(lines.size(), 4U) << "each answer, good or bad";
  EXPECT_EQ(lines[0].message,
            "[5] [VN::CQueryAppointmentInfoPanel::onRenewAppointmentInfo] data size : 1, error: 柜台忙");
  EXPECT_EQ(lines[0].level, utils::LogError);
  EXPECT_EQ(table->rowCount(), 4) << "no query by itself";
}

TEST_F(AppointmentPanel, MayGoWhileAnswersAreOut) {
  answer({compactOf("C1"), compactOf("C2")});
  boxes.expect(QStringLiteral("提示"), QStringLiteral("本次共展期 2 条合约,是否继续?"), QMessageBox::Yes);
  clickLink();
  refresh();
  ASSERT_EQ(sent(), 4U);
  int told = 0;
  const auto listener = VN::CMsgService::subscribe([&told](const auto&) { ++told; });
  runtime.counter().reply(3, {answerOf({compactOf("C1")})});
  runtime.counter().reply(1, {});
  runtime.counter().waitIdle();
  panel.reset();  // answers are on their way to it
  runtime.counter().fail(2, 7, "late");
  settle();
  EXPECT_EQ(told, 0);
}

TEST_F(AppointmentPanel, ParameterBringsBackItsChoices) {
  EXPECT_EQ(panel->param(), QStringLiteral("3.1001||0"));
  typeInto(days, QStringLiteral("30"));
  const struct {
    const char* set;
    const char* got;
    int queries;
  } cases[] = {{"", "3.1001||30", 0},
               {"3.1002|SZ000001", "3.1002|SZ000001|30", 1},
               {"|600000|7", "3.1002|SH600000|7", 0},
               {"3.9|x|500", "3.1002|x|182", 0},
               {"3.1001||-5|more", "3.1001||0", 1},
               {"||", "3.1001||0", 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.set);
    const std::size_t before = sent();
    panel->setParam(QString::fromLatin1(c.set));
    settle();
    EXPECT_EQ(panel->param(), QString::fromLatin1(c.got));
    EXPECT_EQ(sent() - before, static_cast<std::size_t>(c.queries));
    if (c.queries == 0) refresh();
    answer({compactOf("C1")});
    const std::string number = QString::fromLatin1(c.got).section(u'|', 2).toStdString();
    EXPECT_THAT(shown(), ElementsAre("C1 | " + number));
  }
}

TEST_F(AppointmentPanel, TableLayoutIsKeptForEachPanel) {
  const int number = kit::columnOf(*table, "合约编号");
  table->setColumnHidden(number, true);
  table->setColumnWidth(kit::columnOf(*table, "展期天数"), 123);
  const QString param = panel->param();
  VN::CTableConfigInfo kept{"5", 16886, QString()};
  EXPECT_TRUE(VN::getUserConfig()->getTableSetting(kept));
  EXPECT_EQ(kept.config, table->saveConfigStr());
  for (const int panelId : {6, 5}) {
    open(panelId);
    panel->setParam(param);
    EXPECT_EQ(table->isColumnHidden(number), panelId == 5);
    EXPECT_EQ(table->columnWidth(kit::columnOf(*table, "展期天数")) == 123, panelId == 5);
    EXPECT_EQ(table->columnPosition(check), 0);
  }
}

}  // namespace
