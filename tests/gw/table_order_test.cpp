// Orders of more rows than the random run has: many blocks, and names that come in the worst order.

#include "CTestTable.h"

#include "gw/IBaseHpfTableModel.h"
#include "gw/table/CBlockOrder.h"

#include <QCollator>
#include <QLocale>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <tuple>

namespace {

/// Keys below 100 are decided by the slots, downwards.
class CDownwards : public GW::ITieBreaker {
 public:
  bool decides(std::uint64_t key) const override { return key < 100; }
  bool isBefore(int slot, int other) const override { return slot > other; }
};

struct CBefore {
  bool operator()(const GW::COrderEntry& a, const GW::COrderEntry& b) const {
    const auto rank = [](const GW::COrderEntry& e) { return std::tuple(e.key, e.key < 100 ? -e.slot : e.slot); };
    return rank(a) < rank(b);
  }
};

}  // namespace

TEST(TableOrder, blocksKeepTheOrder) {
  std::mt19937_64 random(7);
  const CDownwards ties;
  GW::CBlockOrder order;
  order.setTies(&ties);
  std::set<GW::COrderEntry, CBefore> naive;
  int nextSlot = 0;
  const auto makeEntry = [&] { return GW::COrderEntry{random() % 3 == 0 ? random() : random() % 200, nextSlot++}; };
  for (int step = 0; step < 400; ++step) {
    const int growth = step < 200 ? 2 : 0;  // grows to thousands, then shrinks to nothing
    for (int i = 0; i < 20 * growth; ++i) {
      const GW::COrderEntry entry = makeEntry();
      order.insert(entry);
      naive.insert(entry);
    }
    for (int i = 0; i < 30 && !naive.empty(); ++i) {
      const auto it = std::next(naive.begin(), static_cast<int>(random() % naive.size()));
      order.erase(*it);
      order.erase({it->key, -1});  // is not there
      naive.erase(it);
    }
    if (step % 50 == 20 && growth > 0) {
      std::vector<GW::COrderEntry> many;
      for (int i = 0; i < 3000; ++i) many.push_back(makeEntry());
      std::shuffle(many.begin(), many.end(), random);
      naive.insert(many.begin(), many.end());
      order.sort(many);
      order.merge(many);
    }
    ASSERT_EQ(order.size(), static_cast<int>(naive.size()));
    int row = 0;
    for (const GW::COrderEntry& entry : naive) {
      if (row % 97 == step % 97) {
        ASSERT_EQ(order.slotAt(row), entry.slot) << "step " << step << " row " << row;
        ASSERT_EQ(order.rowOf(entry), row);
      }
      ++row;
    }
  }
  EXPECT_GT(nextSlot, 10000);
}

TEST(TableOrder, namesFindTheirPlaceHoweverTheyCome) {
  const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
  QStringList names;
  for (ushort c = 0x4e00; c < 0x4e00 + 300; ++c) names << QString(QChar(c));
  std::sort(names.begin(), names.end(), collator);
  CTestTable table;
  table.setSortColumn(CTestRecord::ColumnName, Qt::AscendingOrder);
  table.addSortColumn(CTestRecord::ColumnId, Qt::DescendingOrder);
  for (int i = 0; i < names.size(); ++i) {
    for (const int copy : {0, 1}) {
      auto record = boost::make_shared<CTestRecord>();
      record->id = "long-common-beginning-" + std::to_string(1000 + i * 2 + copy);
      record->name = names[i].toStdString();
      table.updateData(record, false);
    }
    table.updateTable();
  }
  ASSERT_EQ(table.rowCount(), 2 * names.size());
  for (int row = 0; row < table.rowCount(); ++row) {
    ASSERT_EQ(table.cellText(row, CTestRecord::ColumnName), names[row / 2]) << row;
    ASSERT_EQ(testRecord(table.getData(row)).id.substr(22), std::to_string(1000 + row + (row % 2 == 0 ? 1 : -1)));
  }
}

// A name for which there is no rank left has that of the one below until all are ranked anew.
TEST(TableOrder, aRowThatTakesANameWithoutRoomMoves) {
  constexpr int FULL = 63;  // names, each above the one before
  const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
  QStringList names;
  for (ushort c = 0x4e00; c < 0x4e00 + FULL + 1; ++c) names << QString(QChar(c));
  std::sort(names.begin(), names.end(), collator);
  CTestTable table;
  table.setSortColumn(CTestRecord::ColumnName, Qt::AscendingOrder);
  const auto put = [&table](int id, const QString& name) {
    auto record = boost::make_shared<CTestRecord>();
    record->id = std::to_string(id);
    record->name = name.toStdString();
    table.updateData(record, false);
    table.updateTable();
  };
  for (int i = 0; i < FULL; ++i) put(i, names[i]);
  put(FULL, names[FULL - 1]);
  const QPersistentModelIndex moved = table.getModel()->index(FULL - 1, 0);
  put(FULL - 1, names[FULL]);
  EXPECT_EQ(moved.row(), FULL);
  EXPECT_EQ(table.cellText(FULL, CTestRecord::ColumnName), names[FULL]);
}
