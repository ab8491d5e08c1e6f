// Batches beside the random run: nesting, late and foreign ends, partial turns, waking, and writers on other threads.

#include "CNaiveTable.h"
#include "CPlanMaker.h"
#include "CTestTable.h"

#include "gw/CTableBatch.h"
#include "gw/IBaseHpfTableModel.h"
#include "net/engine_factory.h"
#include "rdservice/CDataVersion.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

namespace {

const GW::CTableScope SCOPE{"3.1001", '0', 0};

CTestRecordPtr makeRecord(const std::string& key, std::uint64_t version = 0) {
  auto record = boost::make_shared<CTestRecord>();
  record->id = key;
  rdservice::CDataVersion::stamp(*record, version);
  return record;
}

}  // namespace

TEST(TableBatch, goesToItsOwnTableAndTheInnermostBatch) {
  CTestTable one, two;
  one.setScope(SCOPE);
  two.setScope(SCOPE);
  GW::CTableBatch outer(one, SCOPE);
  {
    GW::CTableBatch other(two, SCOPE);
    GW::CTableBatch inner(one, SCOPE);
    one.updateData(makeRecord("inner"), false);
    two.updateData(makeRecord("other"), false);
    EXPECT_TRUE(other.commit());  // before the batch that began after it
    two.updateData(makeRecord("single"), false);
    one.columnDelegate(CTestTable::ColumnText)->setItemText(QStringLiteral("lost"), QStringLiteral("x"));
  }
  one.updateData(makeRecord("outer"), false);
  EXPECT_TRUE(one.getAllDatas().empty());
  EXPECT_TRUE(outer.commit());
  EXPECT_EQ(one.getAllDatas().size(), 1U);
  EXPECT_NE(one.getDataByKey("outer"), nullptr);
  EXPECT_TRUE(one.columnDelegate(CTestTable::ColumnText)->isEmpty());
  EXPECT_EQ(two.getAllDatas().size(), 2U);
}

TEST(TableBatch, anItemGoesWithTheRecordBeforeIt) {
  CTestTable table;
  table.setScope(SCOPE);
  auto* const delegate = &table.ranked();
  const QString key = QStringLiteral("a");
  const auto give = [&](std::uint64_t version, qint64 value) {
    table.updateData(makeRecord("a", version), false);
    delegate->setItemValue(key, value);
  };
  {
    GW::CTableBatch refused(table, {"3.1002", '0', 0});
    give(4, 1);
    EXPECT_FALSE(refused.commit());
    EXPECT_FALSE(delegate->itemValue(key));
  }
  {
    GW::CTableBatch overtaken(table);
    give(6, 2);
    give(5, 3);
    EXPECT_TRUE(overtaken.commit());
    EXPECT_EQ(delegate->itemValue(key), 2);
  }
  {
    GW::CTableBatch older(table, SCOPE);
    give(5, 4);
    EXPECT_TRUE(older.commit());
    EXPECT_EQ(delegate->itemValue(key), 2);
  }
  {
    GW::CTableBatch otherType(table, '1');
    give(7, 5);
    EXPECT_FALSE(otherType.commit());
    GW::CTableBatch sameType(table, SCOPE.type);
    give(5, 6);
    give(8, 7);
    EXPECT_TRUE(sameType.commit());
    EXPECT_EQ(delegate->itemValue(key), 7);
  }
  table.updateTable();
  delegate->setItemValue(key, 8);
  EXPECT_FALSE(table.isUpToDate());  // the row is painted and sorted anew
  table.clear();
  EXPECT_FALSE(delegate->itemValue(key));
}

TEST(TableBatch, outlivesItsTable) {
  auto table = std::make_unique<CTestTable>();
  table->setScope(SCOPE);
  GW::CTableBatch batch(*table, SCOPE);
  table->updateData(makeRecord("a"), true);
  table.reset();
  EXPECT_FALSE(batch.commit());
}

TEST(TableBatch, wakesTheGuiThreadWheneverAskedTo) {
  CTestTable table;
  table.updateData(makeRecord("a"), false);
  QCoreApplication::processEvents();
  EXPECT_EQ(table.rowCount(), 0);
  int expected = 1;
  for (const char* key : {"b", "c"}) {
    std::thread([&table, key] { table.updateData(makeRecord(key), true); }).join();
    EXPECT_LT(table.rowCount(), ++expected);
    QCoreApplication::processEvents();
    EXPECT_EQ(table.rowCount(), expected);
  }
}

// Onlookers are told last, when everything else has taken the change over.
TEST(TableBatch, aSlotOfItsSignalsMayChangeTheTable) {
  CTestTable table;
  const auto dropAllBut = [&table](const char* key) {
    GW::CTableBatch batch(table);
    batch.dropAbsent([](const rdservice::IData&) { return true; });
    table.updateData(makeRecord(key), true);
    return batch.commit();
  };
  table.updateDatas({makeRecord("a"), makeRecord("b"), makeRecord("c")}, false);
  table.updateTable();
  table.selectRow(2);
  ASSERT_TRUE(dropAllBut("d"));
  QMetaObject::Connection slot = QObject::connect(table.getModel(), &QAbstractItemModel::modelReset, [&] {
    QObject::disconnect(slot);
    table.clear();
  });
  table.updateTable();  // the row that comes with the drop belongs to what the slot has thrown away
  EXPECT_EQ(table.rowCount(), 0);
  EXPECT_TRUE(table.selectedRows().empty());

  slot = QObject::connect(table.getModel(), &QAbstractItemModel::rowsInserted, [&] {
    QObject::disconnect(slot);
    table.updateData(makeRecord("f"), true);
    QCoreApplication::processEvents();  // takes the wake
    EXPECT_EQ(table.rowCount(), 1);
  });
  for (const char* key : {"e", "g"}) {
    table.updateData(makeRecord(key), true);
    for (int turn = 0; turn < 10 && !table.isUpToDate(); ++turn) QCoreApplication::processEvents();
  }
  EXPECT_EQ(table.rowCount(), 3);
}

// Many rows take many turns; every turn is a few signals, and sorted rows arrive sorted.
TEST(TableBatch, largeBatchIsShownInTurns) {
  CTestTable table;
  table.setSortColumn(CTestRecord::ColumnId, Qt::DescendingOrder);
  constexpr int ROWS = 120000;
  std::vector<rdservice::IDataPtr> records;
  for (int i = 0; i < ROWS; ++i) records.push_back(makeRecord(std::to_string(100000 + i)));
  table.updateDatas(records, false);
  QSignalSpy inserted(table.getModel(), &QAbstractItemModel::modelReset);
  QSignalSpy changed(table.getModel(), &QAbstractItemModel::dataChanged);
  int turns = 0;
  for (table.updateTable(); !table.isUpToDate(); QCoreApplication::processEvents()) ++turns;
  ASSERT_GE(turns, 1) << "the first turn took all";
  EXPECT_LE(inserted.size(), ROWS / 250) << "many rows are told of at once";
  EXPECT_EQ(changed.size(), 0);
  ASSERT_EQ(table.rowCount(), ROWS);
  for (int row = 0; row < ROWS; row += 1999)
    ASSERT_EQ(testRecord(table.getData(row)).id, std::to_string(100000 + ROWS - 1 - row));

  for (int i = 0; i < ROWS; i += 4) table.updateData(makeRecord(std::to_string(100000 + i)), false);
  changed.clear();
  table.updateTable();
  EXPECT_GE(changed.size(), 1);
  EXPECT_LE(changed.size(), 8);
}

namespace {

constexpr int KEYS = 30;
constexpr int ROUNDS = 20;
constexpr std::uint64_t PER_ROUND = 20;
constexpr int LOOKS_PER_ROUND = 5;
constexpr int BULK = 3000;  ///< records: more than the GUI thread takes in one step
constexpr const char* NAMES[] = {"浦发银行", "安徽建工", "重庆啤酒", "Apple"};
constexpr int SORTED[] = {CTestRecord::ColumnId, CTestRecord::ColumnName, CTestRecord::ColumnAmount,
                          CTestTable::ColumnText};

/// Writers that answer for the query last announced, while a switcher goes on to the next one; the writer's batches are
/// made of records that carry their query.
struct CWriterRun {
  CTestTable table;
  GW::CBaseTableColumnWidgetDelegate* texts = table.columnDelegate(CTestTable::ColumnText);
  std::atomic<std::uint64_t> announced{0};  ///< set when the table has been emptied for that query
  std::atomic<std::uint64_t> commits{0};
  std::atomic<std::uint64_t> versions{0};
  std::atomic<int> running{0};
  std::atomic<int> looks{0};  ///< of the GUI thread that found something new

  struct CLog {
    std::vector<CTestRecordPtr> accepted, refused;
  };

  static GW::CTableScope scopeOf(std::uint64_t query) { return {"3.1001", '0', query}; }

  void write(unsigned seed, const std::string& ownPrefix, CLog& log) {
    CPlanMaker make(seed);
    for (;;) {
      const std::uint64_t query = announced;
      if (query > ROUNDS) break;
      if (query == 0) continue;
      GW::CTableBatch batch(table, scopeOf(query));
      std::vector<CTestRecordPtr> records;
      const bool isBulk = make.isOneIn(30);
      for (int i = isBulk ? BULK : 1 + make.below(8); i > 0; --i) {
        const std::uint64_t version = ++versions;
        const bool isOwn = isBulk || make.isOneIn(2);
        const int number = isBulk ? i : make.below(KEYS);
        records.push_back(makeRecord((isOwn ? ownPrefix : "shared") + std::to_string(number), version));
        records.back()->volume = static_cast<std::int64_t>(query);
        records.back()->serial = version;
        records.back()->group = static_cast<char>('0' + version % 3);
        records.back()->name = NAMES[version / 3 % std::size(NAMES)];
        records.back()->amount = static_cast<double>(version % 1000) / 4;
        table.updateData(records.back(), make.isOneIn(10));
        const QString key = QString::fromStdString(records.back()->id);
        if (isOwn) texts->setItemText(key, QString::number(version));
      }
      auto& list = batch.commit() ? log.accepted : log.refused;
      list.insert(list.end(), records.begin(), records.end());
      ++commits;
    }
    --running;
  }

  void switchOn() {
    for (std::uint64_t query = 1; query <= ROUNDS; ++query) {
      table.setScope(scopeOf(query));
      GW::CTableBatch batch(table, scopeOf(query));
      if (query % 2 == 0)
        batch.clearFirst();
      else
        batch.dropAbsent([](const rdservice::IData&) { return true; });
      EXPECT_TRUE(batch.commit());
      announced = query;
      const std::uint64_t enough = commits + PER_ROUND;
      const int enoughLooks = looks + LOOKS_PER_ROUND;
      while (commits < enough || looks < enoughLooks) std::this_thread::yield();
    }
    announced = ROUNDS + 1;
    --running;
  }
};

}  // namespace

// The GUI thread sorts, filters and sums what two others write, one of them on the strand.
TEST(TableThreads, onlyAcceptedRowsAreEverSeen) {
  const auto engine = net::makeRPCEngine(2);  // also frees what is dropped
  CWriterRun run;
  run.table.show();
  CWriterRun::CLog logs[2];
  run.running = 3;
  engine->getStrand("hpfmodel")->post([&run, &logs] { run.write(1, "a", logs[0]); });
  std::thread threads[] = {std::thread([&run, &logs] { run.write(2, "b", logs[1]); }),
                           std::thread([&run] { run.switchOn(); })};
  CNaiveTable naive;
  std::set<std::uint64_t> seen;
  int looked = 0;
  int vainLooks = 0;
  const auto look = [&] {
    if (HasFatalFailure()) {
      ++run.looks;  // so that the others end
      return;
    }
    const std::size_t seenBefore = seen.size();
    const int looks = looked++;
    const auto direction = looks % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder;
    const int column = SORTED[looks % static_cast<int>(std::size(SORTED))];
    run.table.setSortColumn(column, direction);
    naive.setSort({{column, direction}});
    std::optional<std::set<QString>> groups;
    if (looks % 3 != 0) groups = {{QStringLiteral("0"), QString::number(looks % 2 + 1)}};
    run.table.onFilterTrigger(CTestRecord::ColumnGroup, groups ? GW::FilterValues : GW::FilterNone,
                              groups ? QStringList(groups->begin(), groups->end()) : QStringList());
    naive.setFilter(CTestRecord::ColumnGroup, groups);
    QCoreApplication::processEvents();
    run.table.updateTable();
    std::set<std::int64_t> queries;
    for (int row = 0; row < run.table.rowCount(); ++row) {
      const CTestRecord& record = testRecord(run.table.getData(row));
      seen.insert(record.serial);
      queries.insert(record.volume);
      const bool isShared = record.id.front() == 's';
      // A record and its item came in one batch and are seen together.
      ASSERT_EQ(run.table.cellText(row, CTestTable::ColumnText), isShared ? QString() : QString::number(record.serial));
    }
    if (seen.size() > seenBefore || ++vainLooks % 200 == 0) ++run.looks;  // a table that stands still is found below
    ASSERT_LE(queries.size(), 1U);  // the emptying and the first rows of a query are never mixed with those before
  };
  while (run.running > 0) look();
  for (std::thread& thread : threads) thread.join();
  while (run.running > 0) std::this_thread::yield();

  std::map<std::string, CTestRecordPtr> expected;
  std::size_t refused = 0;
  for (const CWriterRun::CLog& log : logs) {
    for (const auto& record : log.refused) EXPECT_EQ(seen.count(record->serial), 0U);
    refused += log.refused.size();
    for (const auto& record : log.accepted) {
      if (record->volume != ROUNDS) continue;
      CTestRecordPtr& newest = expected[record->id];
      if (!newest || newest->version() < record->version()) newest = record;
    }
  }
  RecordProperty("refusedRecords", static_cast<int>(refused));
  const auto all = run.table.getAllDatas();
  ASSERT_FALSE(expected.empty());
  ASSERT_EQ(all.size(), expected.size());
  for (const auto& record : all) {
    const CTestRecordPtr& newest = expected[record->getKey()];
    ASSERT_EQ(record, newest) << record->getKey();
    naive.heldRows.push_back({static_cast<int>(naive.heldRows.size()), newest, {}});
    if (newest->id.front() != 's')
      naive.heldRows.back().items[CTestTable::ColumnText].text = QString::number(newest->serial);
  }
  naive.drain();
  const auto isSummed = [&run] { return run.table.columnSumText(CTestRecord::ColumnAmount) != QString::fromUtf8("…"); };
  for (int last = 0; last < 6 && !HasFatalFailure(); ++last) {
    look();
    while (!run.table.isUpToDate() || !isSummed()) QCoreApplication::processEvents();
    ASSERT_EQ(run.table.rowCount(), static_cast<int>(naive.displayedRows.size()));
    for (int row = 0; row < run.table.rowCount(); ++row)
      ASSERT_EQ(run.table.getData(row), naive.displayedRows[static_cast<std::size_t>(row)].record) << "row " << row;
    for (const int column : {CTestRecord::ColumnVolume, CTestRecord::ColumnAmount})
      ASSERT_EQ(run.table.columnSumText(column), naive.sumText(column));
  }
}
