// Renewal by appointment at the embedded counter, seen in every panel that shows the compact.

#include "CDeskTest.h"

#include "appointment/CQueryAppointmentInfoTable.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/column_delegates.h"
#include "gw/line_edits.h"
#include "kit/CExpectedBoxes.h"
#include "kit/records.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/StockSMTQueryAppointmentInfoResp.h"
#include "vn/CMsgService.h"

#include <QTest>

#include <algorithm>

namespace {

using kit::waitUntil;
using VN::CQueryAppointmentInfoTable;

class AppointmentDesk : public DeskTest {
 protected:
  rdservice::CStkUnClosedCompactsPtr shownCompact(const std::string& key) const {
    return boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(m_table->getDataByKey(key));
  }
};

TEST_F(AppointmentDesk, ARenewedCompactMovesInEachPanelThatShowsIt) {
  choose(LARGE);
  refresh(5000);
  QWidget* panel = openPanel("新建预约展期面板");
  ASSERT_NE(panel, nullptr);
  auto* table = panel->findChild<CQueryAppointmentInfoTable*>();
  ASSERT_TRUE(waitUntil([&] { return table->rowCount() > 1; }));

  const auto edits = panel->findChildren<GW::CLineEdit*>(QString());
  const auto days = std::find_if(edits.begin(), edits.end(), [](const GW::CLineEdit* edit) {
    return edit->accessibleName() == QStringLiteral("默认展期天数");
  });
  ASSERT_NE(days, edits.end());
  (*days)->selectAll();
  QTest::keyClicks(*days, QStringLiteral("20"));
  table->checkAll(false);
  const auto appointment = boost::dynamic_pointer_cast<rdservice::StockSMTQueryAppointmentInfoResp>(table->getData(0));
  const std::string key = appointment->getKey();
  ASSERT_NE(shownCompact(key), nullptr);
  const int expiry = shownCompact(key)->expiryDate;
  table->columnDelegate(kit::columnOf(*table, ""))->setItemChecked(QString::fromStdString(key), true);
  std::vector<QString> told;
  const utils::CSubscriptionPtr messages =
      VN::CMsgService::subscribe([&](const VN::CMsgService::CMessage& message) { told.push_back(message.text); });

  kit::CExpectedBoxes boxes;
  boxes.expect(QStringLiteral("提示"), QStringLiteral("本次共展期 1 条合约,是否继续?"), QMessageBox::Yes);
  const auto links = panel->findChildren<GW::CSimpleTextWidget*>();
  for (GW::CSimpleTextWidget* link : links)
    if (link->text() == QStringLiteral("选中申请展期")) QTest::mouseClick(link, Qt::LeftButton);
  ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
  EXPECT_TRUE(told.front().endsWith(QStringLiteral("成功"))) << told.front().toStdString();
  ASSERT_TRUE(waitUntil([&] { return shownCompact(key)->expiryDate != expiry; }));
  EXPECT_EQ(shownCompact(key)->expiryDate, expiry + 20);
  EXPECT_EQ(shownCompact(key)->renewalFlag, '1');
}

}  // namespace
