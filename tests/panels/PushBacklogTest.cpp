// Pushes that wait for a busy strand: of each compact only the newest becomes a row, and nobody can tell.

#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/column_delegates.h"
#include "kit/CSignalCount.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/reply_marks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/weak_ptr.hpp>

#include <algorithm>
#include <random>

namespace {

using rdservice::IDataPtr;
using testing::ElementsAre;
using VN::CCompactsTable;

constexpr const char* A = "3.1001";
constexpr const char* B = "11.1003";

class PushBacklog : public testing::Test {
 protected:
  static rdservice::CAccountDataPtr dataOf(const char* key) {
    return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
  }
  static rdservice::CStkUnClosedCompactsPtr makeCompact(const char* key, int number, char type = '0') {
    return kit::compact(dataOf(key)->getAccountInfo(), "C" + std::to_string(number), 1000, type);
  }
  /// Stores the record as a push, or as what the query of another panel brought.
  static IDataPtr stored(const char* key, const IDataPtr& record, bool ofReply = false) {
    if (ofReply) rdservice::noteMark({record}, rdservice::takeMark(*dataOf(key)));
    return dataOf(key)->updateData(record, false);
  }
  std::unique_ptr<CCompactsTable> makeTable() {
    auto table =
        std::make_unique<CCompactsTable>(0, VN::TableUnclosedCompacts, rdservice::RecordStkUnClosedCompacts, nullptr);
    table->setAccount(A, false, false);
    m_runtime.settle();
    return table;
  }
  static void tickAll(const CCompactsTable& table) {
    auto* const ticks = table.columnDelegate(kit::columnOf(table, "选择"));
    for (int row = 0; row < table.rowCount(); ++row)
      ticks->setItemChecked(QString::fromStdString(table.getData(row)->getKey()), true);
  }
  /// What a table shows: its records in order, their priorities, and which are ticked.
  struct CShown {
    std::vector<std::string> rows;
    std::vector<IDataPtr> records;
    QList<IDataPtr> ticked;
    bool operator==(const CShown& other) const {
      return rows == other.rows && records == other.records && ticked == other.ticked;
    }
  };
  CShown shown(CCompactsTable& table) {
    m_runtime.settle();
    table.updateTable();
    CShown all{kit::visible(table, {"合约编号", "未还金额", "偿还优先级"}), {}, table.checkedDatas()};
    for (int row = 0; row < table.rowCount(); ++row) all.records.push_back(table.getData(row));
    return all;
  }

  kit::CTestRuntime m_runtime;
};

TEST_F(PushBacklog, EndsAsIfEachPushHadBeenAppliedInTurn) {
  constexpr int STREAMS = 60;
  constexpr int LENGTH = 30;
  constexpr int COMPACTS = 6;
  std::uint64_t folded = 0;
  for (unsigned seed = 0; seed < STREAMS; ++seed) {
    std::mt19937 random(seed);
    const auto oneIn = [&random](unsigned n) { return random() % n == 0; };
    for (const char* account : {A, B}) dataOf(account)->removeMetaData(rdservice::RecordStkUnClosedCompacts);
    for (int number = 0; number < COMPACTS / 2; ++number) stored(A, makeCompact(A, number));
    const auto inTurn = makeTable();
    const auto atOnce = makeTable();
    if (oneIn(2))
      for (CCompactsTable* table : {inTurn.get(), atOnce.get()}) table->setCompactType('0', 0);
    for (CCompactsTable* table : {inTurn.get(), atOnce.get()}) {
      shown(*table);
      tickAll(*table);
    }

    std::vector<IDataPtr> pushes;
    for (int i = 0; i < LENGTH; ++i) {
      const char* account = oneIn(4) ? B : A;
      const auto record = makeCompact(account, int(random() % COMPACTS), oneIn(3) ? '1' : '0');
      record->unpaidAmount = 2000 + i;
      record->repayPriority = oneIn(3) ? i : 0;
      pushes.push_back(oneIn(8) ? IDataPtr(record) : stored(account, record, oneIn(4)));
    }
    for (int i = 0; i < LENGTH / 4; ++i) std::swap(pushes[random() % LENGTH], pushes[random() % LENGTH]);

    for (const IDataPtr& push : pushes) {
      inTurn->onPushData(push);
      m_runtime.settle();
    }
    {
      const kit::CStrandLatch latch;
      for (const IDataPtr& push : pushes) atOnce->onPushData(push);
    }
    folded += atOnce->takePushLoad().folded;
    const CShown expected = shown(*inTurn);
    const CShown actual = shown(*atOnce);
    ASSERT_EQ(actual, expected) << "seed " << seed << ": " << testing::PrintToString(actual.rows) << " instead of "
                                << testing::PrintToString(expected.rows);
  }
  EXPECT_GT(folded, STREAMS * LENGTH / 8U) << "hardly anything was folded, nothing was tried";
}

TEST_F(PushBacklog, IsBoundedByTheCompactsAndCounted) {
  constexpr int PUSHES = 20000;
  constexpr int COMPACTS = 3000;  // more than go into one batch
  const auto table = makeTable();
  const auto push = [&table](int i) {
    const auto record = makeCompact(A, i % COMPACTS);
    record->unpaidAmount = i;
    table->onPushData(stored(A, record));
  };
  {
    const kit::CStrandLatch latch;
    for (int i = 1; i <= PUSHES; ++i) push(i);
    const VN::CPushLoad load = table->takePushLoad();
    EXPECT_EQ(load.mostWaiting, std::size_t(COMPACTS));
    EXPECT_EQ(load.folded, std::uint64_t(PUSHES - COMPACTS));
    EXPECT_EQ(table->takePushLoad().mostWaiting, std::size_t(COMPACTS)) << "they still wait";
  }
  m_runtime.settle();
  table->takePushLoad();
  const VN::CPushLoad rest = table->takePushLoad();
  EXPECT_EQ(rest.mostWaiting, 0U);
  EXPECT_EQ(rest.folded, 0U);
  ASSERT_TRUE(kit::waitUntil([&] {
    table->updateTable();
    return table->isUpToDate();
  }));
  ASSERT_EQ(table->rowCount(), COMPACTS);
  for (int row = 0; row < COMPACTS; ++row) {
    const IDataPtr record = table->getData(row);
    ASSERT_EQ(record, dataOf(A)->getData(record->getBaseId(), record->getKey()));
  }
}

TEST_F(PushBacklog, GoesWithItsTable) {
  const kit::CStrandLatch latch;
  auto table =
      std::make_unique<CCompactsTable>(0, VN::TableUnclosedCompacts, rdservice::RecordStkUnClosedCompacts, nullptr);
  IDataPtr record = makeCompact(A, 1);
  const boost::weak_ptr<rdservice::IData> held(record);
  table->onPushData(std::move(record));
  EXPECT_FALSE(held.expired());
  table.reset();
  EXPECT_TRUE(held.expired()) << "the strand will find nothing to do with it";
}

// A push is shown whatever account the table shows by then; what another panel's query brought is not.
TEST_F(PushBacklog, MeetsAnotherAccount) {
  const auto table = makeTable();
  stored(B, makeCompact(B, 7));
  {
    const kit::CStrandLatch latch;
    for (const bool ofReply : {false, true})
      for (int i = 0; i < 3; ++i) {
        const auto record = makeCompact(A, ofReply ? 2 : 1);
        record->unpaidAmount = i;
        table->onPushData(stored(A, record, ofReply));
      }
    table->setAccount(B, false, false);
  }
  m_runtime.settle();
  table->updateTable();
  EXPECT_THAT(kit::visible(*table, {"合约编号", "未还金额"}), ElementsAre("C1 | 2.00", "C7 | 1,000.00"));
}

TEST_F(PushBacklog, RebuildsThatWaitAreOne) {
  const auto table = makeTable();
  kit::CSignalCount rebuilt(table.get(), &CCompactsTable::sigQueryData);
  for (int round = 1; round <= 2; ++round) {
    {
      const kit::CStrandLatch latch;
      for (int i = 0; i < 50; ++i) table->refresh(A, false, false);
      stored(A, makeCompact(A, round));
    }
    m_runtime.settle();
    EXPECT_EQ(rebuilt.count(), round);
    table->updateTable();
    EXPECT_EQ(table->rowCount(), round) << "what was stored after the first asked";
  }
}

}  // namespace
