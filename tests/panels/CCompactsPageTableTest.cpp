// The paged compact table on a counter whose batches the test hands out: walks, late and failed replies, random orders.

#include "compacts/tables/CCompactsPageTable.h"

#include "compacts/tables/compact_fields.h"
#include "gw/column_delegates.h"
#include "gw/controls.h"
#include "gw/widget_events.h"
#include "kit/CSignalCount.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/TraderCenter.h"

#include <QAbstractScrollArea>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <optional>
#include <random>
#include <stdexcept>

namespace {

using kit::CTestRuntime;
using testing::Contains;
using testing::ElementsAre;
using VN::CCompactsPageTable;

constexpr const char* PLAIN = "3.1001";      // pages of 3
constexpr const char* REPEATING = "3.1002";  // pages of 4; its counter repeats records
constexpr const char* UNLIMITED = "11.1003";
constexpr int COMPACTS = 10;

runtime::CClientConfig pagedConfig() {
  runtime::CClientConfig config = kit::testConfig();
  config.broker.useSplitPageOfStkCompact = true;
  config.broker.counterTypes[90].maxCompacts = 3;
  config.broker.counterTypes[102].maxCompacts = 4;
  return config;
}

rdservice::CAccountDataPtr dataOf(const std::string& key) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
}

class CPageTableTest : public testing::TestWithParam<int> {
 protected:
  explicit CPageTableTest(const runtime::CClientConfig& config = pagedConfig()) : m_runtime(config) {}
  void SetUp() override {
    m_table = std::make_unique<CCompactsPageTable>(0, GetParam(), VN::recordTypeOfTable(GetParam()), nullptr);
  }
  void TearDown() override { m_table.reset(); }

  /// What the counter has of an account, in the order of positions: C00 to C09, every third one of type '1'.
  std::vector<rdservice::IDataPtr> book(const std::string& account, int type = 32) const {
    std::vector<rdservice::IDataPtr> records;
    for (int i = 0; i < COMPACTS; ++i) {
      const char compactType = i % 3 == 2 ? '1' : '0';
      if (type != 32 && type != compactType) continue;
      const std::string number = "C0" + std::to_string(i);
      const rdservice::CAccountInfoPtr info = dataOf(account)->getAccountInfo();
      const auto finish = [&](const auto& record) {
        record->positionString = number;
        records.push_back(record);
      };
      if (GetParam() == VN::TableUnclosedCompacts)
        finish(kit::compact(info, number, 1000, compactType));
      else
        finish(kit::closedCompact(info, number, 1000, compactType));
    }
    return records;
  }

  const rdservice::CQueryCompactReqV2& request(std::size_t number) const {
    return static_cast<const rdservice::CQueryCompactReqV2&>(*m_runtime.counter().held()[number]);
  }
  std::size_t requests() const { return m_runtime.counter().held().size(); }

  /// Answers as the account's counter does.
  void serve(std::size_t number) {
    const rdservice::CQueryCompactReqV2& asked = request(number);
    const auto behind = [&asked](const rdservice::IDataPtr& r) {
      return asked.positionString.empty() || VN::positionOf(*r) > asked.positionString;
    };
    const std::vector<rdservice::IDataPtr> all = book(asked.accountKey, asked.compactType);
    auto from = std::find_if(all.begin(), all.end(), behind);
    const auto end = from + std::min<std::ptrdiff_t>(all.end() - from, asked.requestCount);
    if (asked.accountKey == REPEATING && from != all.begin()) --from;
    m_runtime.counter().reply(number, {from, end});
  }
  /// Every request from that one on, until none follows.
  void serveFrom(std::size_t number) {
    for (m_runtime.settle(); number < requests(); m_runtime.settle()) serve(number++);
  }
  void press(GW::EPagingButton button) { m_table->handleEvent(GW::EventButtonClicked, button, 0, QString(), nullptr); }
  void answer() {
    m_runtime.settle();
    serve(requests() - 1);
    m_runtime.settle();
  }
  std::vector<std::string> shown() const {
    m_table->updateTable();
    return kit::visible(*m_table, {"合约编号"});
  }
  static std::vector<std::string> numbers(const std::vector<rdservice::IDataPtr>& records, std::size_t begin,
                                          std::size_t end) {
    std::vector<std::string> numbers;
    for (std::size_t i = begin; i < std::min(end, records.size()); ++i)
      numbers.emplace_back(VN::positionOf(*records[i]));
    return numbers;
  }

  CTestRuntime m_runtime;
  std::unique_ptr<CCompactsPageTable> m_table;
};

INSTANTIATE_TEST_SUITE_P(Tables, CPageTableTest, testing::Values(VN::TableUnclosedCompacts, VN::TableClosedCompacts));

TEST_P(CPageTableTest, WalksFromPageToPage) {
  struct CStep {
    int button;            ///< 0: none
    const char* position;  ///< of the request that it makes; null: none
    int page;
    std::vector<std::string> rows;
    bool back, next;
  };
  const std::vector<CStep> plain = {
      {0, "", 1, {"C00", "C01", "C02"}, false, true},
      {GW::PagingPrevious, nullptr, 1, {"C00", "C01", "C02"}, false, true},
      {GW::PagingNext, "C02", 2, {"C03", "C04", "C05"}, true, true},
      {GW::PagingNext, "C05", 3, {"C06", "C07", "C08"}, true, true},
      {GW::PagingFirst, nullptr, 1, {"C00", "C01", "C02"}, false, true},
      {GW::PagingNext, nullptr, 2, {"C03", "C04", "C05"}, true, true},
      {GW::PagingNext, nullptr, 3, {"C06", "C07", "C08"}, true, true},
      {GW::PagingNext, "C08", 4, {"C09"}, true, false},
      {GW::PagingPrevious, nullptr, 3, {"C06", "C07", "C08"}, true, true},
  };
  const std::vector<CStep> repeating = {
      {0, "", 1, {"C00", "C01", "C02", "C03"}, false, true},
      {GW::PagingNext, "C03", 2, {"C04", "C05", "C06", "C07"}, true, true},
      {GW::PagingNext, "C07", 3, {"C08", "C09"}, true, false},
  };
  const std::vector<std::pair<const char*, std::vector<CStep>>> walks = {{PLAIN, plain}, {REPEATING, repeating}};
  for (const auto& [account, walk] : walks) {
    m_table->setAccount(account, true, false);
    for (const CStep& step : walk) {
      SCOPED_TRACE(testing::Message() << account << " page " << step.page);
      const std::size_t before = requests() - (step.button == 0 ? 1 : 0);
      m_runtime.settle();
      if (step.button != 0) press(GW::EPagingButton(step.button));
      m_runtime.settle();
      ASSERT_EQ(requests() - before, step.position != nullptr ? 1U : 0U);
      if (step.position != nullptr) {
        EXPECT_EQ(request(before).positionString, step.position);
        EXPECT_EQ(request(before).requestCount, account == PLAIN ? 3 : 4);
        EXPECT_EQ(request(before).dataType, VN::recordTypeOfTable(GetParam()));
        for (const int button : {GW::PagingFirst, GW::PagingPrevious, GW::PagingNext})
          EXPECT_FALSE(m_table->isPagingQueryBtnEnabled(button));
        serve(before);
        m_runtime.settle();
      }
      EXPECT_EQ(shown(), step.rows);
      EXPECT_EQ(m_table->getPageNum(), step.page);
      EXPECT_EQ(m_table->isPagingQueryBtnEnabled(GW::PagingFirst), step.back);
      EXPECT_EQ(m_table->isPagingQueryBtnEnabled(GW::PagingPrevious), step.back);
      EXPECT_EQ(m_table->isPagingQueryBtnEnabled(GW::PagingNext), step.next);
      if (testing::Test::HasFatalFailure()) return;
    }
    EXPECT_EQ(m_table->compactIndex(QString::fromStdString(book(account)[4]->getKey())), 5);
    EXPECT_EQ(m_table->compactIndex(QStringLiteral("unknown")), 0);
  }
}

TEST_P(CPageTableTest, RepliesThatComeTooLateOrFail) {
  const std::string stale = GetParam() == VN::TableUnclosedCompacts
                                ? "[unclosed compact] acc changed, data acc = 3.1001, current acc = "
                                : "[closed compatc] acc changed : data acc = 3.1001, current acc = ";
  const std::string failed = GetParam() == VN::TableUnclosedCompacts
                                 ? "[unclosed compact] query fail : acc = 3.1001, errmsg = 柜台繁忙"
                                 : "[closed compact] fail : acc = 3.1001, errmsg = 柜台繁忙.";
  const struct {
    const char* what;
    std::function<void()> change;
    std::string line;
  } cases[] = {
      {"account", [this] { m_table->setAccount(UNLIMITED, true, false); },
       "11.1003, data compact = 32, cur compact = 32."},
      {"type", [this] { m_table->setCompactType('1', 0); }, "3.1001, data compact = 32, cur compact = 49."},
      {"query", [this] { m_table->refresh("", true, false); }, "3.1001, data compact = 32, cur compact = 32."},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    m_table->setCompactType(32, 0);
    m_table->setAccount("", false, false);
    m_table->setAccount(PLAIN, true, false);
    m_runtime.settle();
    const std::size_t late = requests() - 1;
    c.change();
    m_runtime.settle();
    kit::CSignalCount done(m_table.get(), &CCompactsPageTable::sigQueryData);
    serve(late);
    m_runtime.settle();
    EXPECT_EQ(m_runtime.logged(stale + c.line).size(), 1U);
    EXPECT_EQ(done.count(), 1);
    EXPECT_THAT(shown(), ElementsAre());
    answer();
    EXPECT_FALSE(shown().empty());
  }

  // A failure, or nothing more, after "next" shows the page before again.
  for (const bool fails : {true, false}) {
    press(GW::PagingNext);
    m_runtime.settle();
    EXPECT_THAT(shown(), ElementsAre());
    if (fails)
      m_runtime.counter().fail(requests() - 1, 7, "柜台繁忙");
    else
      m_runtime.counter().reply(requests() - 1, {});
    m_runtime.settle();
    EXPECT_THAT(shown(), ElementsAre("C00", "C01", "C02"));
    EXPECT_EQ(m_table->getPageNum(), 1);
    EXPECT_TRUE(m_table->isPagingQueryBtnEnabled(GW::PagingNext));
  }
  EXPECT_EQ(m_runtime.logged(failed).size(), 1U);
  EXPECT_FALSE(m_table->refresh("3.9999", true, false));
  EXPECT_THAT(shown(), ElementsAre("C00", "C01", "C02"));
}

TEST_P(CPageTableTest, TheFullQueryBringsEveryPage) {
  for (const char* account : {PLAIN, REPEATING}) {
    SCOPED_TRACE(account);
    m_table->setAccount(account, false, false);
    m_table->refresh("", true, true);
    m_runtime.settle();
    m_runtime.counter().fail(requests() - 1, 7, "柜台繁忙");
    m_runtime.settle();
    EXPECT_THAT(shown(), ElementsAre());
    std::size_t first = requests();
    m_table->refresh("", true, true);
    serveFrom(first);
    const int size = account == PLAIN ? 3 : 4;
    for (int page = 1; page <= (COMPACTS + size - 1) / size; ++page) {
      EXPECT_EQ(shown(), numbers(book(account), std::size_t((page - 1) * size), std::size_t(page * size)));
      press(GW::PagingNext);
      m_runtime.settle();
    }
    EXPECT_EQ(dataOf(account)->getData(VN::recordTypeOfTable(GetParam())).size(), std::size_t(COMPACTS));
    // The page behind the last one is asked for from where the full query ended.
    EXPECT_EQ(request(requests() - 1).positionString, "C09");
    first = requests();
    m_table->refresh("", true, true);
    m_runtime.settle();
    m_table->setAccount("", false, false);
    serveFrom(first);
    EXPECT_THAT(shown(), ElementsAre()) << "another account is shown by then";
  }
}

/// Presses, late and failed replies, other accounts and types, in any order. What stands there at rest is the page of
/// the counter's list that the page number says, and the pages together are the list.
TEST_P(CPageTableTest, EveryOrderEndsWithWholePages) {
  const unsigned fixed = qEnvironmentVariableIntValue("PC_SEED");
  for (unsigned seed = fixed != 0 ? fixed : 1; seed <= (fixed != 0 ? fixed : 60); ++seed) {
    SCOPED_TRACE("PC_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](int end) { return int(random() % unsigned(end)); };
    std::string account = PLAIN;
    int type = 32;
    m_table->setCompactType(32, 0);
    m_table->setAccount("", false, false);
    m_table->setAccount(PLAIN, true, false);
    std::optional<kit::CStrandLatch> latch;
    std::vector<std::size_t> out;
    std::size_t known = requests();
    const auto rest = [&] { latch ? m_runtime.settleWithoutStrand() : m_runtime.settle(); };
    for (int step = 0; step < 25; ++step) {
      rest();
      for (; known < requests(); ++known) out.push_back(known);
      const auto takeOut = [&] {
        const auto at = out.begin() + below(int(out.size()));
        const std::size_t number = *at;
        out.erase(at);
        return number;
      };
      switch (below(12)) {
        case 0: m_table->setAccount(account = below(2) == 0 ? PLAIN : REPEATING, true, false); break;
        case 1: m_table->setCompactType(type = below(2) == 0 ? 32 : '0', 0); break;
        case 2: m_table->refresh("", below(2) == 0, below(3) == 0); break;
        case 3:
          if (latch)
            latch.reset();
          else
            latch.emplace();
          break;
        case 4:
          if (!out.empty()) m_runtime.counter().fail(takeOut(), 7, "柜台繁忙");
          break;
        case 5:
        case 6:
        case 7:
          if (!out.empty()) serve(takeOut());
          break;
        case 8: press(GW::PagingFirst); break;
        case 9: press(GW::PagingPrevious); break;
        default: press(GW::PagingNext); break;
      }
    }
    latch.reset();
    for (m_runtime.settle(); known < requests() || !out.empty(); m_runtime.settle()) {
      for (; known < requests(); ++known) out.push_back(known);
      serve(out.back());
      out.pop_back();
    }
    const std::vector<rdservice::IDataPtr> all = book(account, type);
    const std::size_t size = account == PLAIN ? 3 : 4;
    const auto expectPage = [&] {
      const auto page = std::size_t(m_table->getPageNum());
      EXPECT_EQ(shown(), numbers(all, (page - 1) * size, page * size)) << "page " << page;
    };
    if (shown().empty()) {  // the last query had failed
      m_table->refresh("", true, false);
      answer();
    }
    expectPage();
    while (m_table->isPagingQueryBtnEnabled(GW::PagingNext)) {
      const int page = m_table->getPageNum();
      const std::size_t before = requests();
      press(GW::PagingNext);
      m_runtime.settle();
      if (requests() > before) answer();
      known = requests();
      if (m_table->getPageNum() == page) break;  // there was no more
      expectPage();
    }
    EXPECT_EQ(std::size_t(m_table->getPageNum()), (all.size() + size - 1) / size) << "none missing";
    if (HasFailure()) return;
  }
}

/// A compact that cannot even tell its key.
template <class Compact>
class CBroken : public Compact {
 public:
  std::string getKey() const override { throw std::runtime_error("broken record"); }
  rdservice::IDataPtr copy() const override { return boost::make_shared<CBroken>(*this); }
};

TEST_P(CPageTableTest, AReplyThatCannotBeTakenInEndsTheQuery) {
  m_runtime.expectError("task failed");
  m_table->setAccount(PLAIN, true, false);
  answer();
  press(GW::PagingNext);
  m_runtime.settle();
  if (GetParam() == VN::TableUnclosedCompacts)
    m_runtime.counter().reply(requests() - 1, {boost::make_shared<CBroken<rdservice::CStkUnClosedCompacts>>()});
  else
    m_runtime.counter().reply(requests() - 1, {boost::make_shared<CBroken<rdservice::CStkClosedCompacts>>()});
  m_runtime.settle();
  press(GW::PagingNext);
  answer();
  EXPECT_THAT(shown(), ElementsAre("C03", "C04", "C05"));
}

TEST_P(CPageTableTest, OnlyTheNewestQueryOfSeveralIsMade) {
  m_table->setAccount(PLAIN, true, false);
  answer();
  {
    const kit::CStrandLatch latch;
    m_table->setCompactType('0', 0);  // from the strand, which is held
    m_table->refresh("", true, true);
  }
  std::size_t first = requests();
  serveFrom(first - 1);
  EXPECT_THAT(shown(), ElementsAre("C00", "C01", "C03"));
  EXPECT_EQ(dataOf(PLAIN)->getData(VN::recordTypeOfTable(GetParam())).size(), std::size_t(COMPACTS));

  // A full query that nobody waits for any more asks for no second batch.
  m_table->refresh("", true, true);
  m_runtime.settle();
  first = requests() - 1;
  m_table->refresh("", true, false);
  serveFrom(first);
  EXPECT_EQ(requests() - first, 2U);
  EXPECT_THAT(shown(), ElementsAre("C00", "C01", "C03"));
}

class CUnclosedPageTest : public CPageTableTest {};
INSTANTIATE_TEST_SUITE_P(Tables, CUnclosedPageTest, testing::Values(VN::TableUnclosedCompacts));

TEST_P(CUnclosedPageTest, PriorityAnswersPushesAndEdits) {
  m_table->setAccount(PLAIN, true, false);
  answer();
  const auto response = [](const char* number, int priority) {
    auto record = boost::make_shared<rdservice::CCreditRepayPriorityResp>();
    record->fieldA = number;
    record->fieldB = "2460000";
    record->repayPriority = priority;
    return record;
  };
  press(GW::PagingNext);
  answer();
  const QString typed = QString::fromStdString(book(PLAIN)[3]->getKey());
  m_table->priorityEditDelegate()->setItemText(typed, QStringLiteral("5"));

  // Of a row of this page and one of another; the page table leaves the modify tag alone, and shows no pushes.
  m_table->postPriorityResults(PLAIN, {response("C04", 7), response("C01", 8)},
                               {{"C04", "SH600000"}, {"C01", "SH600000"}});
  m_table->onPushData(kit::compact(dataOf(PLAIN)->getAccountInfo(), "C77"));
  m_runtime.settle();
  EXPECT_EQ(shown(), numbers(book(PLAIN), 3, 6));
  EXPECT_THAT(kit::visible(*m_table, {"偿还优先级"}), ElementsAre("", "7", ""));
  const auto stored = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(
      dataOf(PLAIN)->getData(rdservice::RecordStkUnClosedCompacts, book(PLAIN)[4]->getKey()));
  EXPECT_EQ(stored->repayPriority, 7);
  EXPECT_EQ(stored->modifyTag, "");

  press(GW::PagingPrevious);
  m_runtime.settle();
  EXPECT_THAT(kit::visible(*m_table, {"偿还优先级"}), ElementsAre("", "8", ""));
  press(GW::PagingNext);
  m_runtime.settle();
  EXPECT_THAT(kit::visible(*m_table, {"偿还优先级设置"}), ElementsAre("5", "", ""));

  // What is being typed is committed by a click on the bar.
  m_table->resize(1600, 300);
  m_table->show();
  const int column = kit::columnOf(*m_table, "偿还优先级设置");
  m_table->moveColumn(column, 0);
  m_table->selectRow(1);
  auto* const view = m_table->findChild<QAbstractScrollArea*>();
  QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 40));
  QWidget* const editor = m_table->priorityEditDelegate()->editor();
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, QStringLiteral("9"));
  const QList<GW::CSmallNoNormalButton*> buttons = m_table->findChildren<GW::CSmallNoNormalButton*>();
  for (GW::CSmallNoNormalButton* button : buttons)
    if (button->text() == QStringLiteral("上一页")) QTest::mouseClick(button, Qt::LeftButton);
  m_runtime.settle();
  press(GW::PagingNext);
  m_runtime.settle();
  EXPECT_THAT(kit::visible(*m_table, {"偿还优先级设置"}), Contains("9"));
}

}  // namespace
