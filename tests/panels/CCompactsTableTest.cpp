#include "compacts/tables/CCompactsTable.h"

#include "compacts/tables/compact_fields.h"
#include "kit/CSignalCount.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "net/CTimerQueue.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "rdservice/TraderCenter.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

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
  explicit CCompactsTableTest(const runtime::CClientConfig& config = kit::testConfig(),
                              int tableId = VN::TableUnclosedCompacts)
      : m_tableId(tableId), m_runtime(config) {}

  void SetUp() override {
    m_table = std::make_unique<CCompactsTable>(0, m_tableId, VN::recordTypeOfTable(m_tableId), nullptr);
    m_table->resize(1200, 300);
  }
  void TearDown() override { m_table.reset(); }

  static rdservice::CAccountDataPtr dataOf(const char* key) {
    return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
  }
  rdservice::CStkUnClosedCompactsPtr makeCompact(const char* key, const std::string& number, char type = '0') const {
    return compact(dataOf(key)->getAccountInfo(), number, 1000, type);
  }
  rdservice::IDataPtr makeRecord(const char* key, const std::string& number, char type = '0') const {
    if (m_tableId == VN::TableUnclosedCompacts) return makeCompact(key, number, type);
    return kit::closedCompact(dataOf(key)->getAccountInfo(), number, 1000, type);
  }
  std::size_t lastRequest() const { return m_runtime.counter().held().size() - 1; }
  void query(const char* account) {
    m_table->setAccount(account, true, false);
    m_runtime.settle();
  }
  /// The same while the strand is held.
  void answerHeld(const std::vector<rdservice::IDataPtr>& records) {
    m_runtime.settleWithoutStrand();
    m_runtime.counter().reply(lastRequest(), records);
  }
  void failHeld() {
    m_runtime.settleWithoutStrand();
    m_runtime.counter().fail(lastRequest(), 12, "柜台繁忙");
  }
  void answer(const std::vector<rdservice::IDataPtr>& records) {
    m_runtime.counter().reply(lastRequest(), records);
    m_runtime.settle();
  }

  const int m_tableId;
  CTestRuntime m_runtime;
  std::unique_ptr<CCompactsTable> m_table;
};

/// What holds for unclosed and closed compacts alike, with the lines that each writes.
struct CTableCase {
  int tableId;
  const char* handler;
  const char* success;
  const char* failure;
  const char* stale;
};

class CBothTablesTest : public CCompactsTableTest, public testing::WithParamInterface<CTableCase> {
 protected:
  CBothTablesTest() : CCompactsTableTest(kit::testConfig(), GetParam().tableId) {}
};

INSTANTIATE_TEST_SUITE_P(
    Tables, CBothTablesTest,
    testing::Values(CTableCase{VN::TableUnclosedCompacts, "onQueryUnfinishCompact",
                               "[unclosed compact] query success, acc 3.1001 datas 3",
                               "[unclosed compact] query fail : acc = 3.1001, errmsg = 柜台繁忙",
                               "[unclosed compact] acc changed, data acc = 3.1001, current acc = "},
                    CTableCase{VN::TableClosedCompacts, "onQueryCompleteCompact",
                               "[closed compact] query success : data acc = 3.1001, data size = 3.",
                               "[closed compact] fail : acc = 3.1001, errmsg = 柜台繁忙.",
                               "[closed compatc] acc changed : data acc = 3.1001, current acc = "}));

TEST_P(CBothTablesTest, AsksForEverythingAndShowsTheAnswer) {
  query(A);
  const auto request = boost::dynamic_pointer_cast<rdservice::CQueryCompactReqV2>(m_runtime.counter().held().back());
  ASSERT_TRUE(request);
  EXPECT_EQ(request->accountKey, A);
  EXPECT_EQ(request->compactType, 32);
  EXPECT_EQ(request->requestCount, 999999);
  EXPECT_EQ(request->positionString, "");
  EXPECT_EQ(request->dataType, VN::recordTypeOfTable(m_tableId));

  answer({makeRecord(A, "C1"), makeRecord(A, "C2", '1'), nullptr});
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}), ElementsAre("C1", "C2"));
  const auto lines = m_runtime.logged(GetParam().success);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].file, "CCompactsTable.cpp");
  EXPECT_EQ(lines[0].signature,
            std::string("void VN::CCompactsTable::") + GetParam().handler +
                "(const std::string&, const utils::RDError&, const std::vector<rdservice::IDataPtr>&, int, "
                "const bson::BSONObj&, rdservice::EKVCompactType)");
  EXPECT_EQ(dataOf(A)->getData(VN::recordTypeOfTable(m_tableId)).size(), 2U);
}

// The strand is held: what happens nevertheless happens on the service threads or the GUI thread, what comes when it is
// released happens on the strand.
TEST_P(CBothTablesTest, WhatRunsOnWhichThread) {
  struct CCase {
    const char* what;
    std::function<void()> act;
    int onGui, onService, onStrand;  ///< sigQueryData
    std::vector<std::string> rows;   ///< afterwards
  };
  const auto data = dataOf(A);
  const int type = VN::recordTypeOfTable(m_tableId);
  const int foreign = m_tableId == VN::TableUnclosedCompacts ? rdservice::RecordStkClosedCompacts
                                                             : rdservice::RecordStkUnClosedCompacts;
  const auto queryAll = [](const char* account, int dataType) {
    const auto request = boost::make_shared<rdservice::CQueryDataReq>();
    request->accountInfo = VN::getUserConfig()->getAccountData(QString::fromLatin1(account));
    request->dataType = dataType;
    VN::CTradeClient::instance()->queryData(request, nullptr);
  };
  query(A);
  answer({makeRecord(A, "C1")});
  const CCase cases[] = {
      {"the same account", [&] { m_table->setAccount(A, true, true); }, 1, 0, 0, {"C1"}},
      {"a rebuild", [&] { m_table->refresh(A, false, false); }, 0, 0, 1, {"C1"}},
      {"an answer", [&] { m_table->refresh(A, true, true), answerHeld({makeRecord(A, "C2")}); }, 0, 0, 1, {"C2"}},
      {"a failure", [&] { m_table->refresh(A, true, true), failHeld(); }, 0, 1, 0, {}},
      {"a pushed record", [&] { m_table->onPushData(makeRecord(A, "C3")); }, 0, 0, 0, {"C3"}},
      {"a new set", [&] { queryAll(A, type), answerHeld({makeRecord(A, "C4")}); }, 0, 1, 1, {"C4"}},
      {"no new set", [&] { queryAll(A, type), failHeld(); }, 0, 1, 1, {"C4"}},
      {"a set of another type", [&] { queryAll(A, foreign), answerHeld({}); }, 0, 0, 0, {"C4"}},
      {"a set of another account", [&] { queryAll("11.1003", type), answerHeld({}); }, 0, 0, 0, {"C4"}},
      {"a stale answer",
       [&] {
         m_table->refresh(A, true, true), m_table->setAccount("11.1003", false, false);
         answerHeld({makeRecord(A, "C5")});
       },
       0,
       1,
       1,
       {}},
      {"no account", [&] { m_table->setAccount("", true, false); }, 1, 0, 0, {}},
  };
  for (const CCase& c : cases) {
    SCOPED_TRACE(c.what);
    std::atomic<int> onGui{0};
    std::atomic<int> elsewhere{0};
    const auto connection = QObject::connect(
        m_table.get(), &CCompactsTable::sigQueryData, m_table.get(),
        [&] { ++(utils::isGuiThread() ? onGui : elsewhere); }, Qt::DirectConnection);
    {
      const kit::CStrandLatch latch;
      c.act();
      m_runtime.settleWithoutStrand();
      EXPECT_EQ(onGui, c.onGui);
      EXPECT_EQ(elsewhere, c.onService);
    }
    m_runtime.settle();
    EXPECT_EQ(onGui, c.onGui);
    EXPECT_EQ(elsewhere, c.onService + c.onStrand);
    m_table->updateTable();
    EXPECT_EQ(kit::visible(*m_table, {"合约编号"}), c.rows);
    QObject::disconnect(connection);
  }
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

TEST_P(CBothTablesTest, AReplyForAnotherAccountOrTypeIsDroppedAndLogged) {
  struct CCase {
    const char* what;
    std::function<void()> change;
    const char* line;
  };
  const CCase cases[] = {
      {"account", [this] { m_table->setAccount("3.1003", false, false); },
       "3.1003, data compact = 32, cur compact = 32."},
      {"type", [this] { m_table->setCompactType('1', 0); }, "3.1001, data compact = 32, cur compact = 49."},
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
    m_runtime.counter().reply(request, {makeRecord(A, "C1")});
    m_runtime.settle();
    EXPECT_EQ(m_runtime.logged(std::string(GetParam().stale) + c.line).size(), 1U);
    EXPECT_EQ(done.count(), 1);
    EXPECT_EQ(m_table->rowCount(), 0);
  }
}

TEST_P(CBothTablesTest, AFailureIsLoggedAndKeepsTheRows) {
  query(A);
  m_table->onPushData(makeRecord(A, "C1"));
  // Not this table's type.
  m_table->onPushData(makeCompact(A, "C8"));
  m_table->onPushData(kit::closedCompact(dataOf(A)->getAccountInfo(), "C9"));
  m_runtime.settle();
  kit::CSignalCount done(m_table.get(), &CCompactsTable::sigQueryData);
  m_runtime.counter().fail(lastRequest(), 12, "柜台繁忙");
  m_runtime.settle();
  EXPECT_EQ(m_runtime.logged(GetParam().failure).size(), 1U);
  EXPECT_EQ(done.count(), 1);
  EXPECT_THAT(kit::visible(*m_table, {"合约编号"}),
              ElementsAre("C1", m_tableId == VN::TableUnclosedCompacts ? "C8" : "C9"));
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
