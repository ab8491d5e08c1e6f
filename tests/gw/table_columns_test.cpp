// Columns: saved layouts, widths, sorting by the header, delegates, numbers.

#include "CTestTable.h"

#include <QHeaderView>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <vector>

namespace {

/// Everything that a layout restores.
QStringList layoutOf(const CTestTable& table) {
  QStringList columns;
  for (int id = 0; id < table.columnCount(); ++id) {
    columns << QStringLiteral("%1@%2 %3%4")
                   .arg(id)
                   .arg(table.columnPosition(id))
                   .arg(table.isColumnHidden(id) ? -1 : table.view()->header()->sectionSize(id))
                   .arg(table.isColumnHidden(id) ? QStringLiteral(" hidden") : QString());
  }
  columns << table.saveConfigStr();  // sort order and filters are told by nothing else
  return columns;
}

}  // namespace

TEST(TableColumns, layoutIsRestoredAndDamageChangesNothing) {
  CTestTable changed;
  EXPECT_TRUE(changed.isColumnHidden(CTestRecord::ColumnDate));
  changed.moveColumn(CTestRecord::ColumnAmount, 0);
  changed.moveColumn(CTestTable::ColumnRanked, 2);
  changed.setColumnWidth(CTestRecord::ColumnName, 231);
  changed.setColumnWidth(CTestRecord::ColumnGroup, 77);
  changed.setColumnHidden(CTestRecord::ColumnGroup, true);
  changed.setColumnHidden(CTestRecord::ColumnDate, false);
  changed.setSortColumn(CTestRecord::ColumnName, Qt::DescendingOrder);
  changed.addSortColumn(CTestTable::ColumnNumber, Qt::AscendingOrder);
  changed.onFilterTrigger(CTestRecord::ColumnName, GW::FilterValues, {QString(), QString::fromUtf8("甲|乙;,:%= ")});
  changed.onFilterTrigger(CTestTable::ColumnText, GW::FilterValues, {});
  const QString saved = changed.saveConfigStr();
  EXPECT_TRUE(saved.startsWith(QLatin1String("901;")));
  EXPECT_FALSE(saved.contains(QLatin1Char('|')));

  CTestTable table;
  const QStringList before = layoutOf(table);
  ASSERT_NE(before, layoutOf(changed));
  QStringList damaged{QString(), QStringLiteral(";"), QStringLiteral("901"), QStringLiteral("901;"),
                      saved + QLatin1Char(' ')};
  for (int i = 0; i < saved.size(); ++i) {
    damaged << saved.left(i);
    for (const char c : {'0', '1', ';', ':', '-', 'x'}) {
      QString one = saved;
      one[i] = QLatin1Char(c);
      if (one != saved) damaged << one;
    }
  }
  for (const QString& text : damaged) ASSERT_FALSE(table.loadConfigStr(text)) << text.toStdString();
  GW::CStandardHpfTable foreign(2, nullptr);
  EXPECT_FALSE(table.loadConfigStr(foreign.saveConfigStr()));
  EXPECT_EQ(layoutOf(table), before);

  ASSERT_TRUE(table.loadConfigStr(saved));
  EXPECT_EQ(layoutOf(table), layoutOf(changed));
  table.setColumnHidden(CTestRecord::ColumnGroup, false);
  EXPECT_EQ(table.view()->header()->sectionSize(CTestRecord::ColumnGroup), 77);  // kept while hidden
}

TEST(TableColumns, headerIsNeverCut) {
  CTestTable table;
  table.setColumnHidden(CTestRecord::ColumnDate, false);
  table.setSortColumn(0, Qt::AscendingOrder);
  table.adjustVisibleRowsColumnWidth();
  for (const bool isFitted : {false, true}) {
    if (isFitted) table.adjustVisibleRowsColumnWidth();
    for (int id = 0; id < table.columnCount(); ++id) {
      table.setSortColumn(id, Qt::AscendingOrder);  // the arrow needs its place too
      EXPECT_GE(table.view()->header()->sectionSize(id), table.view()->header()->sectionSizeHint(id)) << id;
    }
  }
}

TEST(TableColumns, headerClicksCycle) {
  CTestTable table;
  for (const char* id : {"b", "c", "a"}) {
    auto record = boost::make_shared<CTestRecord>();
    record->id = id;
    table.updateData(record, false);
  }
  table.updateTable();
  table.resize(800, 200);
  table.show();
  QHeaderView* header = table.view()->header();
  for (const char* expected : {"abc", "cba", "bca", "abc"}) {
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(header->sectionViewportPosition(0) + 20, 8));
    std::string ids;
    for (int row = 0; row < table.rowCount(); ++row) ids += testRecord(table.getData(row)).id;
    EXPECT_EQ(ids, expected);
  }
}

TEST(TableColumns, numbersAtTheEdgesAreFilteredAndSummedAsShown) {
  constexpr double INFINITE = std::numeric_limits<double>::infinity();
  const std::vector<double> amounts{0.125, 0.13,     1.115, 1.005,     -0.004,   0.005, -0.125,
                                    4e12,  INFINITE, 9e14,  -INFINITE, INFINITE, 2e13,  0};
  CTestTable table;
  std::map<QString, int> expected;
  for (const double amount : amounts) {
    auto record = boost::make_shared<CTestRecord>();
    record->id = std::to_string(table.getAllDatas().size());
    record->amount = amount;
    record->volume = std::numeric_limits<std::int64_t>::max();
    table.updateData(record, false);
  }
  table.updateTable();
  for (int row = 0; row < table.rowCount(); ++row) ++expected[table.cellText(row, CTestRecord::ColumnAmount)];
  std::map<QString, int> listed;
  GW::CShownRows& rows = table.view()->rows();
  for (const GW::CShownRows::CValue& value : rows.values(CTestRecord::ColumnAmount))
    listed[rows.valueText(CTestRecord::ColumnAmount, value.code)] += value.rows;
  EXPECT_EQ(listed, expected);
  for (const auto& [text, count] : expected) {
    table.onFilterTrigger(CTestRecord::ColumnAmount, GW::FilterValues, {text});
    EXPECT_EQ(table.rowCount(), count) << text.toStdString();
  }
  table.onFilterTrigger(CTestRecord::ColumnAmount, GW::FilterNone, {});
  EXPECT_EQ(table.columnSumText(CTestRecord::ColumnVolume), QStringLiteral("129,127,208,515,966,861,298"));
  EXPECT_EQ(table.columnSumText(CTestRecord::ColumnAmount), QStringLiteral("-"));
}

TEST(TableColumns, anotherDelegateKeepsTheFilterAndEndsTheSum) {
  constexpr int GROUP = CTestRecord::ColumnGroup;
  CTestTable table;
  for (const char group : {'x', 'y'}) {
    auto record = boost::make_shared<CTestRecord>();
    record->id = std::string(1, group);
    record->group = group;
    table.updateData(record, false);
  }
  table.updateTable();
  GW::CShownRows& rows = table.view()->rows();
  rows.setFilterByCodes(GROUP, {rows.values(GROUP).front().code});
  auto* const delegate = new GW::CBaseTableColumnSimpleTextDelegate(GROUP, &table);
  table.setColumnDelegate(GROUP, delegate);
  table.setColumnDelegate(GROUP, delegate);
  EXPECT_EQ(rows.filter(GROUP), QStringList{QStringLiteral("x")});
  delegate->setItemText(QStringLiteral("y"), QStringLiteral("x"));
  table.updateTable();
  ASSERT_EQ(table.rowCount(), 1);
  EXPECT_EQ(testRecord(table.getData(0)).id, "y");

  EXPECT_EQ(table.columnSumText(CTestTable::ColumnExtra), QStringLiteral("0"));
  table.setColumnDelegate(CTestTable::ColumnExtra,
                          new GW::CBaseTableColumnSimpleTextDelegate(CTestTable::ColumnExtra, &table));
  EXPECT_EQ(table.columnSumText(CTestTable::ColumnExtra), QString());
}
