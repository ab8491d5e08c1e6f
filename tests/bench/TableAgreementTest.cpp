// The panels' table and the QTableView that it is measured beside must show the same after every operation; otherwise
// their times say nothing.

#include "COurTable.h"
#include "CPeer.h"
#include "bench_records.h"
#include "bench_screen.h"
#include "table_round.h"

#include "net/engine_factory.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using CRecords = std::vector<rdservice::IDataPtr>;

constexpr int PUSHES = 3;

/// Does everything in both tables.
class CBoth {
 public:
  void prepare(const CRecords& records) { m_peer.prepare(records); }
  void load(const CRecords& records) {
    m_ours.load(records);
    m_peer.load(records);
  }
  void push(const CRecords& records) {
    m_ours.push(records);
    m_peer.push(records);
  }
  void sort(int column, Qt::SortOrder order) {
    m_ours.sort(column, order);
    m_peer.sort(column, order);
  }
  void filter(int column, const QStringList& texts) {
    m_ours.filter(column, texts);
    m_peer.filter(column, texts);
  }

  /// Every row; a column of -1 means every column.
  testing::AssertionResult agree(int onlyColumn) const {
    if (m_ours.rowCount() != m_peer.rowCount())
      return testing::AssertionFailure() << m_ours.rowCount() << " rows, the other has " << m_peer.rowCount();
    const int first = onlyColumn < 0 ? 0 : onlyColumn;
    const int end = onlyColumn < 0 ? columnCount() : onlyColumn + 1;
    for (int row = 0; row < m_ours.rowCount(); ++row) {
      for (int column = first; column < end; ++column) {
        const QString mine = m_ours.cellText(row, column);
        const QString other = m_peer.cellText(row, column);
        if (mine != other)
          return testing::AssertionFailure() << "row " << row << ", column " << column << ": \"" << mine.toStdString()
                                             << "\", the other has \"" << other.toStdString() << '"';
      }
    }
    return testing::AssertionSuccess();
  }
  int rowCount() const { return m_ours.rowCount(); }

 private:
  COurTable m_ours;
  CPeer m_peer;
};

TEST(TableAgreement, EveryRowAfterEveryOperation) {
  const auto engine = net::makeRPCEngine(2);
  const CRecords records = makeRecords(ROWS, 1);
  const CRecords others = makeRecords(ROWS, 2);
  CBoth tables;
  EOperation operation = OpLoad;
  std::vector<int> rowCounts;
  runRound(
      tables, CRound{records, others, makePushes(records, PUSHES, 1)},
      [&](EOperation next, const auto& run) {
        operation = next;
        run();
      },
      [&](int column) {
        if (testing::Test::HasFatalFailure()) return;
        rowCounts.push_back(tables.rowCount());
        ASSERT_TRUE(tables.agree(column)) << "after operation " << operation << ", look " << rowCounts.size();
      });
  // Two loads, the pushes and six sorts of everything; filters to a tenth of 200 names, and everything again.
  std::vector<int> expected(2 + PUSHES + 6, ROWS);
  expected.push_back(ROWS / 10);
  for (int again = 0; again < 3; ++again) expected.insert(expected.end(), {ROWS / 10, ROWS});
  EXPECT_EQ(rowCounts, expected);
}

}  // namespace
