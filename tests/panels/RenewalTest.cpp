// Applications for renewal of ticked compacts: the questions, the requests, and what their answers do.

#include "CPanelUnderTest.h"

#include "bson/BSONObj.h"
#include "gw/CSimpleTextWidget.h"
#include "gw/column_delegates.h"
#include "kit/CExpectedBoxes.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "vn/CMsgService.h"
#include "vn/CTradeClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDate>

#include <algorithm>
#include <random>

namespace {

using kit::CTestRuntime;
using rdservice::CCreditCompactRenewalApply;
using testing::ElementsAre;

const QString HINT = QStringLiteral("提示");

/// Counters of type 102 refuse what was opened today.
runtime::CClientConfig renewalConfig() {
  runtime::CClientConfig config = kit::testConfig();
  config.broker.counterTypes[102].refusesTodaysRenewal = true;
  return config;
}

struct Renewal : testing::Test {
  Renewal() : runtime(renewalConfig()), p(runtime) {
    messages = VN::CMsgService::subscribe(
        [this](const VN::CMsgService::CMessage& message) { told.push_back(message.text.toStdString()); });
  }
  /// Shows so many compacts of the account; the first `today` of them were opened today.
  void show(const char* account, int count, int today) {
    p.choose(account);
    std::vector<rdservice::IDataPtr> records;
    for (int i = 0; i < count; ++i) {
      const auto made = p.compact(account, "C" + std::to_string(i));
      made->expiryDate = 2461000 + i;
      if (i < today) made->fieldB = static_cast<std::int32_t>(QDate::currentDate().toJulianDay());
      records.push_back(made);
    }
    p.clickRefresh();
    runtime.counter().reply(p.requests() - 1, records);
    runtime.settle();
    ASSERT_EQ(p.table->rowCount(), count);
  }
  void tick(int row) const {
    const QString key = QString::fromStdString(p.table->getData(row)->getKey());
    p.table->columnDelegate(kit::columnOf(*p.table, "选择"))->setItemChecked(key, true);
  }
  void setDays(int row, int days) const {
    const QString key = QString::fromStdString(p.table->getData(row)->getKey());
    p.table->columnDelegate(kit::columnOf(*p.table, "展期天数"))->setItemText(key, QString::number(days));
  }
  void clickLink() {
    QTest::mouseClick(p.panel->findChild<GW::CSimpleTextWidget*>(), Qt::LeftButton);
    runtime.settle();
  }
  /// Numbers of the applications that the counter holds.
  std::vector<std::size_t> applications() const {
    std::vector<std::size_t> numbers;
    const std::vector<rdservice::IDataPtr> held = runtime.counter().held();
    for (std::size_t i = 0; i < held.size(); ++i)
      if (dynamic_cast<const CCreditCompactRenewalApply*>(held[i].get()) != nullptr) numbers.push_back(i);
    return numbers;
  }
  static rdservice::CStkUnClosedCompactsPtr stored(const char* account, const std::string& number) {
    const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account);
    for (const rdservice::IDataPtr& record : store->getData(rdservice::RecordStkUnClosedCompacts)) {
      const auto compact = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(record);
      if (compact->fieldA == number) return compact;
    }
    return nullptr;
  }
  static QString question(int count) { return QStringLiteral("本次共展期 %1 条合约,是否继续?").arg(count); }

  CTestRuntime runtime;
  CPanelUnderTest p;
  kit::CExpectedBoxes boxes;
  utils::CSubscriptionPtr messages;
  std::vector<std::string> told;
};

TEST_F(Renewal, QuestionsCountWhatIsTickedAndWhatIsKept) {
  struct CBox {
    QString title, text;
    QMessageBox::StandardButton answer;
  };
  const CBox none{QStringLiteral("警告"), QStringLiteral("请选择您要展期的合约!"), QMessageBox::Ok};
  const auto yes = [](int n) { return CBox{HINT, question(n), QMessageBox::Yes}; };
  const auto no = [](int n) { return CBox{HINT, question(n), QMessageBox::No}; };
  struct CCase {
    const char* account;
    int ticked, today;
    std::vector<CBox> boxes;
    std::size_t sent;
  };
  for (const CCase& c : std::vector<CCase>{{"3.1002", 3, 1, {yes(3), yes(2)}, 2},
                                           {"3.1002", 3, 1, {yes(3), no(2)}, 0},
                                           {"3.1002", 3, 1, {no(3)}, 0},
                                           {"3.1002", 1, 1, {yes(1), none}, 0},
                                           {"3.1001", 3, 1, {yes(3)}, 3},  // its counter takes today's
                                           {"3.1001", 0, 0, {none}, 0}}) {
    SCOPED_TRACE(testing::Message() << c.account << " " << c.ticked << " " << c.today);
    show(c.account, 4, c.today);
    for (int row = 0; row < c.ticked; ++row) tick(row);
    const std::size_t before = applications().size();
    for (const CBox& box : c.boxes) boxes.expect(box.title, box.text, box.answer);
    clickLink();
    EXPECT_EQ(applications().size() - before, c.sent);
  }
}

TEST_F(Renewal, OneApplicationForEachCompactInItsOrder) {
  show("3.1001", 3, 0);
  tick(0);
  tick(2);
  setDays(2, 30);
  setDays(1, 7);
  p.table->setSortColumn(kit::columnOf(*p.table, "合约编号"), Qt::DescendingOrder);
  boxes.expect(HINT, question(2), QMessageBox::Yes);
  clickLink();
  std::vector<std::string> sent;
  for (const std::size_t number : applications()) {
    const auto& a = dynamic_cast<const CCreditCompactRenewalApply&>(*runtime.counter().held()[number]);
    EXPECT_EQ(a.accountInfo->getKey() + a.exchangeId + a.code + a.reserved, "3.1001SH600000");
    EXPECT_EQ(a.openDate, 2460000);
    EXPECT_EQ(a.flag, 0);
    sent.push_back(a.compactNumber + " " + std::to_string(a.renewalDays) + " " + std::to_string(a.newExpiryDate));
  }
  EXPECT_THAT(sent, ElementsAre("C2 30 2461032", "C0 0 2461000"));
}

TEST_F(Renewal, AnswersAreToldAndOnlyTheAcceptedAreMarked) {
  show("3.1001", 4, 0);
  for (int row = 0; row < 4; ++row) tick(row);
  boxes.expect(HINT, question(4), QMessageBox::Yes);
  clickLink();
  const std::vector<std::size_t> sent = applications();
  ASSERT_EQ(sent.size(), 4U);
  const auto pushed = p.compact("3.1001", "C0");
  pushed->unpaidAmount = 1;
  runtime.counter().push({pushed});  // newer than what was ticked
  runtime.counter().reply(sent[0], {});
  runtime.counter().fail(sent[1], 9, "期限已满");
  runtime.counter().reply(sent[2], {}, bson::BSONObjBuilder().append("msg", "不予展期").obj());
  runtime.settle();
  EXPECT_EQ(stored("3.1001", "C0")->renewalFlag, '1');
  EXPECT_EQ(stored("3.1001", "C0")->modifyTag, "KV");
  EXPECT_EQ(stored("3.1001", "C0")->unpaidAmount, 1) << "the push is not reverted";
  for (const char* number : {"C1", "C2"}) EXPECT_EQ(stored("3.1001", number)->renewalFlag, '0');
  for (const char* number : {"C1", "C2"}) EXPECT_EQ(stored("3.1001", number)->modifyTag, "");

  rdservice::TraderCenter::instance()->getDataCenter()->getAccountData("3.1001")->removeMetaData(
      rdservice::RecordStkUnClosedCompacts);
  runtime.counter().reply(sent[3], {});
  runtime.settle();
  ASSERT_NE(stored("3.1001", "C3"), nullptr) << "no longer stored: the captured one is";
  EXPECT_EQ(stored("3.1001", "C3")->renewalFlag, '1');
  EXPECT_THAT(told, ElementsAre("账号[1001]对合约[C0]展期成功", "账号[1001]对合约[C1]展期失败, rdError:期限已满",
                                "账号[1001]对合约[C2]展期成功", "账号[1001]对合约[C3]展期成功"));
  EXPECT_EQ(runtime.logged("[VN::CCompactsPanel::onOperatorCompactRenewInfo] data size : 0, error: ").size(), 2U);
}

TEST_F(Renewal, FiveHundredAnswersInAnyOrder) {
  constexpr int COUNT = 500;
  show("3.1001", COUNT, 0);
  for (int row = 0; row < COUNT; ++row) tick(row);
  boxes.expect(HINT, question(COUNT), QMessageBox::Yes);
  clickLink();
  std::vector<std::size_t> sent = applications();
  ASSERT_EQ(sent.size(), std::size_t(COUNT));
  const std::size_t first = sent.front();
  std::shuffle(sent.begin(), sent.end(), std::mt19937(3));
  const auto isLost = [](std::size_t number) { return number % 5 == 0; };
  const auto isRefused = [](std::size_t number) { return number % 5 == 1; };
  const auto answer = [&](std::size_t number) {
    if (isRefused(number)) runtime.counter().fail(number, 9, "期限已满");
    if (!isRefused(number) && !isLost(number)) runtime.counter().reply(number, {});
  };
  const auto isMarked = [&](std::size_t number) {
    const auto compact = stored("3.1001", "C" + std::to_string(number - first));
    return compact != nullptr && compact->renewalFlag == '1';
  };
  const std::size_t half = COUNT / 2;
  std::for_each(sent.begin(), sent.begin() + half, answer);
  runtime.settle();
  for (std::size_t i = 0; i < half; ++i) EXPECT_EQ(isMarked(sent[i]), !isLost(sent[i]) && !isRefused(sent[i]));
  VN::CTradeClient::instance()->setLogin("3.1001", false);
  runtime.settle();
  std::for_each(sent.begin() + half, sent.end(), answer);
  runtime.settle();
  std::size_t answered = 0, renewed = 0;
  for (std::size_t i = 0; i < sent.size(); ++i) {
    answered += isLost(sent[i]) ? 0 : 1;
    renewed += isLost(sent[i]) || isRefused(sent[i]) ? 0 : 1;
    EXPECT_TRUE(i < half || isMarked(sent[i]) == (!isLost(sent[i]) && !isRefused(sent[i])));
  }
  EXPECT_EQ(told.size(), answered);
  EXPECT_EQ(std::count_if(told.begin(), told.end(),
                          [](const std::string& text) { return text.find("成功") != std::string::npos; }),
            std::ptrdiff_t(renewed));
}

}  // namespace
