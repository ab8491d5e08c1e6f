#include "compacts/tables/CCompactsTable.h"

#include "compacts/tables/compact_fields.h"
#include "kit/CSignalCount.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "net/CTimerQueue.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/TraderCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <atomic>
#include <future>
#include <stdexcept>

namespace {

using kit::compact;
using kit::CTestRuntime;
using testing::ElementsAre;
using VN::CCompactsTable;

constexpr const char* A = "3.1001";
constexpr const char* REPEATING = "3.1002";  // its counter repeats records

const std::vector<std::string> NUMBER_AND_PRIORITY = {"合约编号", "偿还优先级"};

class CCompactsTableTest : public testing::Test {
 protected:
  explicit CCompactsTableTest(const runtime::CClientConfig& config = kit::testConfig()) : m_runtime(config) {}

  void SetUp() override {
    m_table =
        std::make_unique<CCompactsTable>(0, VN::TableUnclosedCompacts, rdservice::RecordStkUnClosedCompacts, nullptr);
    m_table->resize(1200, 300);
  }
  void TearDown() override { m_table.reset(); }

  static rdservice::CAccountDataPtr dataOf(const char* key) {
    return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
  }
  rdservice::CStkUnClosedCompactsPtr makeCompact(const char* key, const std::string& number, char type = '0') const {
    return compact(dataOf(key)->getAccountInfo(), number, 1000, type);
  }
  std::size_t lastRequest() const { return m_runtime.counter().held().size() - 1; }
  void query(const char* account) {
    m_table->setAccount(account, true, false);
    m_runtime.settle();
  }
  void answer(const std::vector<rdservice::IDataPtr>& records) {
    m_runtime.counter().reply(lastRequest(), records);
    m_runtime.settle();
  }

  CTestRuntime m_runtime;
  std::unique_ptr<CCompactsTable> m_table;
};

TEST_F(CCompactsTableTest, AsksForEverythingAndShowsTheAnswer) {
  query(A);
  const auto request = boost::dynamic_pointer_cast<rdservice::CQueryCompactReqV2>(m_runtime.counter().held().back());
  ASSERT_TRUE(request);
  EXPECT_EQ(request->accountKey, A);
  EXPECT_EQ(request->compactType, 32);
  EXPECT_EQ(request->requestCount, 999999);
  EXPECT_EQ(request->positionString, "");
  EXPECT_EQ(request->dataType, rdservice::RecordStkUnClosedCompacts);

  const auto first = makeCompact(A, "C1");
  first->repayPriority = 7;
  answer({first, makeCompact(A, "C2", '1'), nullptr});
  EXPECT_THAT(kit::visible(*m_table, NUMBER_AND_PRIORITY), ElementsAre("C1 | 7", "C2 | "));
  const auto lines = m_runtime.logged("[unclosed compact] query success, acc 3.1001 datas 3");
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].file, "CCompactsTable.cpp");
  EXPECT_THAT(lines[0].signature, testing::StartsWith("void VN::CCompactsTable::onQueryUnfinishCompact("));
  EXPECT_EQ(dataOf(A)->getData(rdservice::RecordStkUnClosedCompacts).size(), 2U);
}

TEST_F(CCompactsTableTest, CompactTypeFiltersRepliesPushesAndRebuilds) {
  query(A);
  answer({makeCompact(A, "C1", '0'), makeCompact(A, "C2", '1')});
  m_table->setCompactType('1', 0);
  m_runtime.settle();
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C2")) << "from the data centre, without a query";
  m_table->refresh("", true, true);
  m_runtime.settle();
  answer({makeCompact(A, "C1", '0'), makeCompact(A, "C2", '1')});
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C2"));

  m_table->onPushData(makeCompact(A, "C3", '0'));
  m_table->onPushData(makeCompact(A, "C4", '1'));
  m_table->onPushData(nullptr);
  m_runtime.settle();
  m_table->updateTable();
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C2", "C4"));

  // The rows come back from the data centre, which holds what the filter let through.
  m_table->clearTable("3.1003");
  m_table->clearTable(A);
  m_runtime.settle();
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C2"));
}

TEST_F(CCompactsTableTest, AReplyForAnotherAccountOrTypeIsDroppedAndLogged) {
  struct CCase {
    const char* what;
    std::function<void()> change;
    const char* line;
  };
  const CCase cases[] = {
      {"account", [this] { m_table->setAccount("3.1003", false, false); },
       "[unclosed compact] acc changed, data acc = 3.1001, current acc = 3.1003, data compact = 32, cur compact = 32."},
      {"type", [this] { m_table->setCompactType('1', 0); },
       "[unclosed compact] acc changed, data acc = 3.1001, current acc = 3.1001, data compact = 32, cur compact = 49."},
  };
  for (const CCase& c : cases) {
    SCOPED_TRACE(c.what);
    query(A);
    m_table->setCompactType(rdservice::CompactTypeAll, 0);
    m_table->refresh("", true, true);
    m_runtime.settle();
    const std::size_t request = lastRequest();
    c.change();
    m_runtime.settle();
    kit::CSignalCount done(m_table.get(), &CCompactsTable::sigQueryData);
    m_runtime.counter().reply(request, {makeCompact(A, "C1")});
    m_runtime.settle();
    EXPECT_EQ(m_runtime.logged(c.line).size(), 1U);
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(m_table->rowCount(), 0);
  }
}

TEST_F(CCompactsTableTest, AFailureIsLoggedAndKeepsTheRows) {
  query(A);
  m_table->onPushData(makeCompact(A, "C1"));
  m_table->onPushData(boost::make_shared<rdservice::CStkClosedCompacts>());  // not this table's type
  m_runtime.settle();
  kit::CSignalCount done(m_table.get(), &CCompactsTable::sigQueryData);
  m_runtime.counter().fail(lastRequest(), 12, "柜台繁忙");
  m_runtime.settle();
  EXPECT_EQ(m_runtime.logged("[unclosed compact] query fail : acc = 3.1001, errmsg = 柜台繁忙").size(), 1U);
  EXPECT_EQ(done.count(), 1);
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C1"));
}

TEST_F(CCompactsTableTest, RecordsAlreadyHeldAreSkippedOnlyForACounterThatRepeats) {
  for (const auto& [account, amount] : {std::make_pair(A, "5.00"), std::make_pair(REPEATING, "1,000.00")}) {
    SCOPED_TRACE(account);
    query(account);
    m_table->refresh("", true, true);  // two answers will come for the same rows
    m_runtime.settle();
    m_runtime.counter().reply(lastRequest() - 1, {makeCompact(account, "C1")});
    const auto again = makeCompact(account, "C1");
    again->unpaidAmount = 5;
    m_runtime.counter().reply(lastRequest(), {again, makeCompact(account, "C2")});
    m_runtime.settle();
    EXPECT_THAT(kit::visible(*m_table, {"合约编号", "未还金额"}),
                ElementsAre("C1 | " + std::string(amount), "C2 | 1,000.00"));
  }
}

TEST_F(CCompactsTableTest, CompactsWithoutPrioritySortLast) {
  query(A);
  std::vector<rdservice::IDataPtr> records;
  for (const auto& [number, priority] : {std::make_pair("C1", 0), std::make_pair("C2", 70), std::make_pair("C3", 8)}) {
    const auto record = makeCompact(A, number);
    record->repayPriority = priority;
    records.push_back(record);
  }
  answer(records);
  int column = 0;
  while (m_table->columnTitle(column) != QStringLiteral("偿还优先级")) ++column;
  m_table->setSortColumn(column, Qt::AscendingOrder);
  EXPECT_THAT(kit::visible(*m_table, NUMBER_AND_PRIORITY), ElementsAre("C3 | 8", "C2 | 70", "C1 | "));
}

/// A compact that cannot even tell its key.
class CBrokenCompact : public rdservice::CStkUnClosedCompacts {
 public:
  std::string getKey() const override { throw std::runtime_error("broken record"); }
  rdservice::IDataPtr copy() const override { return boost::make_shared<CBrokenCompact>(*this); }
};

TEST_F(CCompactsTableTest, AStrandTaskThatFailsEndsTheQuery) {
  m_runtime.expectError("task failed");
  query(A);
  kit::CSignalCount done(m_table.get(), &CCompactsTable::sigQueryData);
  answer({makeCompact(A, "C1"), boost::make_shared<CBrokenCompact>()});
  EXPECT_EQ(m_runtime.logged("[unclosed compact] task failed : acc = 3.1001, what = broken record").size(), 1U);
  EXPECT_EQ(done.count(), 1);
  EXPECT_EQ(m_table->rowCount(), 0) << "no half page";
}

TEST_F(CCompactsTableTest, DestroyingItWaitsForTheTaskInside) {
  query(A);
  // The strand is held while it stores the reply: inside the table's task.
  std::promise<void> inside;
  std::promise<void> goOn;
  QObject* const table = m_table.get();
  std::atomic<bool> isWhole{false};
  const auto subscription = dataOf(A)->subscribe(rdservice::RecordStkUnClosedCompacts, std::string(),
                                                 [&](const std::vector<rdservice::IDataPtr>&) {
                                                   inside.set_value();
                                                   goOn.get_future().wait();
                                                   isWhole = dynamic_cast<CCompactsTable*>(table) != nullptr;
                                                 });
  m_runtime.counter().reply(lastRequest(), {makeCompact(A, "C1")});
  inside.get_future().wait();
  net::CTimerQueue timers;
  timers.after(std::chrono::milliseconds(50), [&goOn] { goOn.set_value(); });
  m_table.reset();
  EXPECT_TRUE(isWhole) << "the final class was gone while its task ran";
}

TEST_F(CCompactsTableTest, RefusesToRefreshAnotherAccount) {
  query(A);
  answer({makeCompact(A, "C1")});
  const std::size_t requests = m_runtime.counter().held().size();
  EXPECT_FALSE(m_table->refresh("3.1003", true, true));
  m_table->setAccount(A, true, false);
  m_runtime.settle();
  EXPECT_EQ(m_runtime.counter().held().size(), requests);
  EXPECT_EQ(m_table->rowCount(), 1);
  kit::CSignalCount done(m_table.get(), &CCompactsTable::sigQueryData);
  m_table->setAccount(A, true, true);
  EXPECT_EQ(done.count(), 1);
}

class CGenericQueryTest : public CCompactsTableTest {
 protected:
  static runtime::CClientConfig config() {
    runtime::CClientConfig config = kit::testConfig();
    config.broker.calcCompactType = false;
    return config;
  }
  CGenericQueryTest() : CCompactsTableTest(config()) {}
};

TEST_F(CGenericQueryTest, TheReplyReplacesTheSetAndFailuresAreAnnounced) {
  query(A);
  answer({makeCompact(A, "C1"), makeCompact(A, "C2")});
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C1", "C2"));

  // A compact that another account's push brought into the table outlives the replacement of this account's set.
  m_table->onPushData(makeCompact("11.1003", "X1"));
  m_table->refresh("", true, true);
  m_runtime.settle();
  m_table->onPushData(makeCompact("11.1003", "X1"));
  m_runtime.settle();
  answer({makeCompact(A, "C2"), makeCompact(A, "C3")});
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("X1", "C2", "C3"));

  kit::CSignalCount done(m_table.get(), &CCompactsTable::sigQueryData);
  m_table->refresh("", true, true);
  m_runtime.settle();
  m_runtime.counter().fail(lastRequest(), 3, "柜台繁忙");
  m_runtime.settle();
  EXPECT_EQ(done.count(), 2);  // at once, and after the rebuild
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C2", "C3"));
  answer({});
  EXPECT_EQ(m_table->rowCount(), 2) << "the request had been answered already";
}

}  // namespace
