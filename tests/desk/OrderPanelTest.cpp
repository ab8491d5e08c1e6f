// The order panel, from a double-click on a compact to the order at the counter.

#include "CDeskTest.h"

#include "CMainWindow.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "kit/CExpectedBoxes.h"
#include "orderpanel/COrderPanel.h"
#include "rdservice/CStkOrder.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "runtime/CClientRuntime.h"
#include "vn/CCountDownButton.h"
#include "vn/CSingleAccountCommandModeComboBox.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QAbstractScrollArea>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <cmath>
#include <map>

namespace {

using kit::waitUntil;
using rdservice::CStkOrder;
using rdservice::CStkUnClosedCompacts;

class OrderPanel : public DeskTest {
 protected:
  void SetUp() override {
    DeskTest::SetUp();
    m_panel = dynamic_cast<COrderPanel*>(openPanel("新建下单面板"));
    ASSERT_NE(m_panel, nullptr);
    m_rows = m_panel->findChild<VN::CCompactsTable*>();
    auto* accounts = field<GW::CComboBox>("资金账号");
    ASSERT_TRUE(waitUntil([&] { return accounts->count() == 5; }));
    accounts->setCurrentIndex(accounts->findData(QString::fromLatin1(LARGE)));
  }

  template <class Widget>
  Widget* field(const char* accessibleName) const {
    return controlIn<Widget>(*m_panel, accessibleName);
  }
  QString text(const char* accessibleName) const { return field<QLineEdit>(accessibleName)->text(); }
  double number(const char* accessibleName) const { return field<QDoubleSpinBox>(accessibleName)->value(); }

  void setOperation(int operation) {
    auto* operations = field<GW::CComboBox>("业务类型");
    operations->setCurrentIndex(operations->findData(QString::number(operation)));
  }

  void refreshRows() {
    QTest::mouseClick(m_panel->findChild<VN::CCountDownButton*>(), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return m_rows->rowCount() > 0 && m_rows->isUpToDate(); }));
  }

  const CStkUnClosedCompacts& row(int index) const {
    return static_cast<const CStkUnClosedCompacts&>(*m_rows->getData(index));
  }

  void doubleClickFirstRow() {
    QWidget* viewport = m_rows->findChild<QAbstractScrollArea*>()->viewport();
    const QPoint place(150, 10);  // behind the select column
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, place);
    QTest::mouseDClick(viewport, Qt::LeftButton, Qt::NoModifier, place);
  }

  void type(const char* accessibleName, const QString& typed) {
    auto* widget = field<QWidget>(accessibleName);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Delete);
    QTest::keyClicks(widget, typed);
  }

  void place() { QTest::mouseClick(field<QPushButton>("下单"), Qt::LeftButton); }

  static std::vector<const CStkOrder*> ordersOf(const char* account) {
    std::vector<const CStkOrder*> orders;
    const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account);
    for (const auto& record : store->getData(rdservice::RecordStkOrder))
      orders.push_back(static_cast<const CStkOrder*>(record.get()));  // held by the store
    return orders;
  }

  COrderPanel* m_panel = nullptr;
  VN::CCompactsTable* m_rows = nullptr;
};

TEST_F(OrderPanel, ShowsTheCompactsThatTheOperationConcerns) {
  const struct {
    int operation;
    char type;
    char source;
  } cases[] = {{rdservice::OperationBuyToReturn, '1', '0'},
               {rdservice::OperationSellToRepay, '0', '0'},
               {rdservice::OperationSpecialBuyToReturn, '1', '1'},
               {rdservice::OperationDirectReturn, '1', '0'},
               {rdservice::OperationDirectRepay, '0', '0'}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.operation);
    setOperation(c.operation);
    EXPECT_EQ(field<QWidget>("还款类型")->isVisible(), c.operation == rdservice::OperationDirectRepay);
    refreshRows();
    double compensation = 0;
    for (const auto& record : m_rows->getAllDatas())
      compensation += static_cast<const CStkUnClosedCompacts&>(*record).equityCompensation;
    for (int i = 0; i < m_rows->rowCount(); ++i)
      ASSERT_TRUE(row(i).compactType == c.type && row(i).source == c.source) << i;
    EXPECT_TRUE(waitUntil([&] {
      return std::abs(numberOf(field<QLabel>("权益补偿")->text().section(QLatin1Char(' '), 0, 0)) - compensation) <
             0.005;
    })) << compensation;
  }
  auto* repay = field<GW::CComboBox>("还款类型");
  setOperation(rdservice::OperationDirectRepay);
  repay->setCurrentIndex(repay->findData(QString::number(rdservice::RepayTypeLendingFee)));
  refreshRows();
  EXPECT_EQ(row(0).compactType, '1') << "fees of what was borrowed";
}

TEST_F(OrderPanel, ADoubleClickedCompactBecomesAnOrderAtTheCounter) {
  refreshRows();
  const CStkUnClosedCompacts first = row(0);
  const std::string key = first.getKey();
  const QString number = QString::fromStdString(first.fieldA);
  doubleClickFirstRow();
  EXPECT_EQ(text("证券代码"), QString::fromStdString(first.code.str()));
  EXPECT_EQ(this->number("委托数量"), static_cast<double>(first.lendingVolume));
  EXPECT_EQ(this->number("委托价格"), 0);
  EXPECT_EQ(text("合约编号"), number);
  EXPECT_TRUE(field<QLabel>("证券名称")->text().startsWith(QString::fromStdString(first.name.str())));
  ASSERT_NE(m_panel->compacts().getSelectCompact(), nullptr);
  EXPECT_EQ(m_panel->compacts().getSelectCompact()->getKey(), key);

  const std::size_t before = ordersOf(LARGE).size();
  type("委托数量", QStringLiteral("100"));
  kit::CExpectedBoxes boxes;
  const QString question = QStringLiteral(
                               "资金账号：60010001(张伟)\n业务类型：买券还券\n证券：%1 "
                               "%2\n委托价格：最新价\n委托数量：100 股\n\n确定下单？")
                               .arg(text("证券代码"), QString::fromStdString(first.name.str()));
  boxes.expect(QStringLiteral("下单确认"), question, QMessageBox::No);
  place();
  EXPECT_EQ(this->number("委托数量"), 100) << "nothing that was typed is lost";
  EXPECT_EQ(text("合约编号"), number);
  boxes.expect(QStringLiteral("下单确认"), question, QMessageBox::Yes);
  place();
  ASSERT_TRUE(waitUntil(
      [&] { return ordersOf(LARGE).size() == before + 1 && ordersOf(LARGE).back()->state == rdservice::OrderFilled; }));
  const CStkOrder& order = *ordersOf(LARGE).back();
  EXPECT_EQ(order.code, first.code);
  EXPECT_EQ(order.volume, 100);
  EXPECT_EQ(order.remark, "合约 " + first.fieldA);
  EXPECT_EQ(m_panel->compacts().getSelectCompact(), nullptr);
  EXPECT_EQ(text("合约编号"), QString());
  EXPECT_EQ(this->number("委托数量"), 0);

  // At once, with a price, for a compact that was chosen by its radio button.
  auto* mode = m_panel->findChild<VN::CSingleAccountCommandModeComboBox*>();
  mode->setCurrentIndex(1 - mode->currentIndex());
  ASSERT_FALSE(VN::getUserConfig()->isOrderConfirmed(LARGE));
  m_panel->compacts().setSelectCompact(key);
  type("委托价格", QStringLiteral("12.34"));
  type("委托数量", QStringLiteral("200"));
  place();
  ASSERT_TRUE(waitUntil([&] { return ordersOf(LARGE).size() == before + 2; }));
  EXPECT_EQ(ordersOf(LARGE).back()->price, 12.34);
  EXPECT_EQ(ordersOf(LARGE).back()->remark, "合约 " + first.fieldA);

  // Of several accounts each places the whole.
  VN::getUserConfig()->setCompactMode(true);
  m_panel->updateCompactMode(true);
  std::map<std::string, std::size_t> orders;
  for (const char* account : {LARGE, SMALL, EMPTY}) orders[account] = ordersOf(account).size();
  type("委托数量", QStringLiteral("300"));
  boxes.expect(
      QStringLiteral("下单确认"),
      QStringLiteral("资金账号：5 个账号，每个账号委托全部数量（60010005、60010001、60010002、60010003、60010004）"
                     "\n业务类型：买券还券\n证券：%1 %2\n委托价格：12.34\n委托数量：300 股\n\n确定下单？")
          .arg(text("证券代码"), QString::fromStdString(first.name.str())),
      QMessageBox::Yes);
  place();
  for (const auto& [account, count] : orders) {
    ASSERT_TRUE(waitUntil([&, name = account.c_str(), size = count + 1] { return ordersOf(name).size() == size; }));
    EXPECT_EQ(ordersOf(account.c_str()).back()->volume, 300) << account;
  }
}

TEST_F(OrderPanel, WhatCannotBePlacedIsSaidAndNothingIsLost) {
  refreshRows();
  const struct {
    int operation;
    const char* security;
    const char* volume;
    const char* box;
  } cases[] = {
      {rdservice::OperationBuyToReturn, "", "100", "请输入证券代码。"},
      {rdservice::OperationBuyToReturn, "999999", "100", "没有代码为“999999”的证券。"},
      {rdservice::OperationBuyToReturn, "sh600000", "0", "请输入委托数量。"},
      {rdservice::OperationDirectRepay, "600000", "100", "直接还款不经委托，请在柜台办理。"},
  };
  const std::size_t before = ordersOf(LARGE).size();
  kit::CExpectedBoxes boxes;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.box);
    setOperation(c.operation);
    type("证券代码", QString::fromLatin1(c.security));
    type("委托数量", QString::fromLatin1(c.volume));
    boxes.expect(QStringLiteral("提示"), QString::fromUtf8(c.box), QMessageBox::Ok);
    place();
    EXPECT_EQ(text("证券代码"), QString::fromLatin1(c.security));
    EXPECT_EQ(number("委托数量"), QString::fromLatin1(c.volume).toDouble());
  }

  setOperation(rdservice::OperationBuyToReturn);
  refreshRows();
  type("证券代码", QString());
  const CStkUnClosedCompacts first = row(0);
  m_panel->compacts().setSelectCompact(first.getKey());
  boxes.expect(QStringLiteral("提示"), QStringLiteral("已填入所选合约的证券和数量，请核对后再下单。"), QMessageBox::Ok);
  place();
  EXPECT_EQ(number("委托数量"), static_cast<double>(first.lendingVolume));
  int other = 0;
  while (row(other).code == first.code) ++other;
  m_panel->compacts().setSelectCompact(row(other).getKey());
  boxes.expect(QStringLiteral("提示"),
               QStringLiteral("所选合约 %1 的证券是 %2，与委托的证券 %3 %4 不同。")
                   .arg(QString::fromStdString(row(other).fieldA), QString::fromStdString(row(other).code.str()),
                        QString::fromStdString(first.code.str()), QString::fromStdString(first.name.str())),
               QMessageBox::Ok);
  place();

  // The account that it is for logs out: the next one takes its place, the last one leaves none.
  for (const char* account : {LARGE, "3.60010002", "3.60010003", EMPTY, SMALL})
    VN::CTradeClient::instance()->setLogin(account, false);
  ASSERT_TRUE(waitUntil([this] { return field<GW::CComboBox>("资金账号")->count() == 0; }));
  EXPECT_EQ(m_rows->rowCount(), 0);
  boxes.expect(QStringLiteral("提示"), QStringLiteral("没有选择已登录的信用账号。"), QMessageBox::Ok);
  place();
  EXPECT_EQ(ordersOf(LARGE).size(), before);
}

}  // namespace
