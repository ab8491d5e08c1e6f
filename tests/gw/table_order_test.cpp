// Blocks of an order that grows to thousands and shrinks, and a name for which no rank is left.

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

/// Keys of the kinds that columns have.
std::uint64_t someKey(std::mt19937_64& random) {
  switch (random() % 5) {
    case 0: return random();                                                               // ranks of names
    case 1: return random() % 200;                                                         // codes
    case 2: return 0x3132303030303000 + ((random() % 10) << 16) + ((random() % 10) << 8);  // texts that begin alike
    case 3: return 0xC0F0000000000000 + random() % (1ULL << 50U);                          // amounts
    default: return 0x8000000000000000 + random() % 3;
  }
}

}  // namespace

TEST(TableOrder, blocksKeepTheOrder) {
  std::mt19937_64 random(7);
  const CDownwards ties;
  for (const bool isDescending : {false, true}) {
    std::vector<std::uint64_t> keys;
    const auto isBefore = [&](int a, int b) {
      const auto rank = [&](int slot) {
        const std::uint64_t key = keys[std::size_t(slot)];
        return std::tuple(isDescending ? ~key : key, key < 100 ? -slot : slot);
      };
      return rank(a) < rank(b);
    };
    GW::COrderBy by;
    by.keys = &keys;
    by.isDescending = isDescending;
    by.ties = &ties;
    GW::CBlockOrder order;
    order.setOrder(by);
    std::set<int, decltype(isBefore)> naive(isBefore);
    const auto makeSlot = [&] {
      keys.push_back(someKey(random));
      return int(keys.size()) - 1;
    };
    for (int step = 0; step < 200; ++step) {
      const bool isGrowing = step < 100;  // to thousands, then shrinks to nothing
      for (int i = 0; isGrowing && i < 60; ++i) {
        const int slot = makeSlot();
        order.insert(slot);
        naive.insert(slot);
      }
      std::vector<int> some(naive.begin(), naive.end());
      std::shuffle(some.begin(), some.end(), random);
      some.resize(std::min(some.size(), isGrowing ? 60 : some.size() / 8 + 4));
      for (const int slot : some) {
        order.erase(slot);
        order.erase(slot);  // is not there any more
        naive.erase(slot);
        if (random() % (isGrowing ? 2 : 8) != 0) continue;
        keys[std::size_t(slot)] = someKey(random);
        order.insert(slot);
        naive.insert(slot);
      }
      if (step % 25 == 10 && isGrowing) {
        std::vector<int> many;
        for (int i = 0; i < 3000; ++i) many.push_back(makeSlot());
        std::shuffle(many.begin(), many.end(), random);
        naive.insert(many.begin(), many.end());
        order.sort(many);
        order.merge(many);
      }
      ASSERT_EQ(order.size(), int(naive.size()));
      int row = 0;
      for (const int slot : naive) {
        if (row % 97 == step % 97) {
          ASSERT_EQ(order.slotAt(row), slot) << "step " << step << " row " << row;
          ASSERT_EQ(order.rowOf(slot), row);
        }
        ++row;
      }
    }
    EXPECT_GT(keys.size(), 10000U);
    EXPECT_LT(naive.size(), 5U);
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
