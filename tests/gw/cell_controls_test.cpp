// Check boxes, radio buttons and editors in cells: what a user's act stores and reports, and how long an editor lives.

#include "CControlTable.h"

#include "gw/CTableBatch.h"
#include "gw/CUiResource.h"
#include "gw/ui_resources.h"

#include <QHeaderView>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using CTexts = std::vector<std::string>;

QString k(int row) { return CControlTable::key(row); }

using CColumn = GW::CBaseTableColumnWidgetDelegate;

/// Keys for whatever has the focus: > Tab, < Backtab, ! Return, ^ Up, ~ Escape, # Backspace, others as they are.
void keys(const char* all) {
  for (const char* one = all; *one != 0; ++one) {
    switch (*one) {
      case '>': QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab); break;
      case '<': QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab); break;
      case '!': QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); break;
      case '^': QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up); break;
      case '~': QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape); break;
      case '#': QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace); break;
      default: QTest::keyClick(QApplication::focusWidget(), *one); break;
    }
  }
}

}  // namespace

TEST(CellControls, programStoresQuietlyFromAnyThread) {
  CControlTable table(4);
  std::thread writer([&table] {
    GW::CTableBatch batch(table, GW::CTableScope());
    for (int row = 0; row < 3; ++row) table.check->setItemChecked(k(row), true);
    for (int row : {0, 2, 9}) table.radio->setItemChecked(k(row), true);
    table.spin->setItemText(k(1), QStringLiteral("30"));
    table.spin->setItemText(k(2), QStringLiteral("3O"));
    EXPECT_FALSE(table.check->isItemChecked(k(0))) << "a batch is seen before its commit";
    EXPECT_TRUE(batch.commit());
  });
  writer.join();
  EXPECT_TRUE(table.check->isItemChecked(k(0)) && table.check->isAllChecked());
  EXPECT_EQ(table.radio->checkedKey(), k(9)) << "also a key whose record has not come";
  EXPECT_FALSE(table.radio->isItemChecked(k(0)) || table.radio->isItemChecked(k(2)));
  EXPECT_EQ(table.spin->itemInt(k(1)) * 100 + table.spin->itemInt(k(2)) * 10 + table.spin->itemInt(k(3)), 3000);
  table.check->setItemChecked(k(3), false);
  EXPECT_FALSE(table.check->isAllChecked());
  table.radio->setItemChecked(k(9), false);
  EXPECT_EQ(table.radio->checkedKey(), QString());
  EXPECT_FALSE(table.spin->isEmpty());
  table.spin->reset();
  EXPECT_TRUE(table.spin->isEmpty() && table.line->isEmpty());
  EXPECT_TRUE(table.takeEvents().empty());
}

TEST(CellControls, whatTheUserDoesIsStoredShownAndReported) {
  CControlTable table(6);
  CColumn* const columns[] = {table.check, table.radio, table.spin, table.line};
  const auto& [check, radio, spin, line] = columns;
  line->setItemText(k(0), QStringLiteral("5"));
  spin->setItemText(k(1), QStringLiteral("30"));
  spin->setItemText(k(2), QStringLiteral("999"));
  for (CColumn* column : columns) {
    column->setItemEnabled(k(4), false);
    column->setItemVisible(k(5), false);
  }
  table.updateTable();
  enum EWay { Click, Beside, Current };
  const struct {
    const char* what;
    EWay way;
    int row;
    const CColumn* column;
    const char* then;
    CTexts expected;
  } steps[] = {
      {"tick", Click, 0, check, "", {"225 check 1 k00"}},
      {"untick", Click, 0, check, "", {"225 check 0 k00"}},
      {"beside the box", Beside, 0, check, "", {}},
      {"space", Current, 3, check, " ", {"225 check 1 k03"}},
      {"choose", Click, 0, radio, "", {"225 radio 1 k00"}},
      {"choose another", Click, 1, radio, "", {"225 radio 1 k01"}},
      {"choose what is chosen", Click, 1, radio, "", {}},
      {"number typed", Click, 0, spin, "42!", {"235 spin 0 k00", "234 spin 42 k00"}},
      {"number stepped", Click, 1, spin, "^!", {"235 spin 0 k01", "234 spin 31 k01"}},
      {"number unchanged", Click, 1, spin, "31!", {"235 spin 0 k01"}},
      {"number beyond the range is left alone", Click, 2, spin, "!", {"235 spin 0 k02"}},
      {"number beyond the range cannot be typed", Click, 3, spin, "183!", {"235 spin 0 k03", "234 spin 18 k03"}},
      {"typed into a number", Current, 1, spin, "9!", {"235 spin 0 k01", "234 spin 9 k01"}},
      {"text typed", Click, 0, line, "a b!", {"45 line 0 k00", "229 line 0 a b of k00"}},
      {"text typed as it was", Click, 0, line, "a b!", {"45 line 0 k00", "229 line 0 a b of k00"}},
      {"text left", Click, 0, line, "!", {"45 line 0 k00"}},
      {"text cancelled", Click, 0, line, "x~", {"45 line 0 k00"}},
      {"typed into a text, emptied", Current, 1, line, "7#!", {"45 line 0 k01", "229 line 0  of k01"}},
  };
  const auto act = [&table](EWay way, int row, const CColumn* column, const char* then) {
    const QRect cell = table.cell(k(row), column);
    if (way == Current) table.view()->setCurrentCell(row, column->columnId());
    if (way == Click) table.click(k(row), column);
    if (way == Beside) QTest::mouseClick(table.view()->viewport(), Qt::LeftButton, {}, cell.topLeft() + QPoint(3, 3));
    keys(then);
  };
  const auto expect = [&table](const CTexts& expected, const char* what) {
    EXPECT_EQ(table.takeEvents(), expected) << what;
    EXPECT_FALSE(table.controls().isEditing()) << what;
    EXPECT_EQ(QApplication::focusWidget(), table.view()) << what;
    EXPECT_TRUE(table.isUpToDate()) << what;
  };
  for (const auto& step : steps) {
    act(step.way, step.row, step.column, step.then);
    expect(step.expected, step.what);
  }
  for (CColumn* column : columns) {
    for (int row : {4, 5}) act(Click, row, column, " "), act(Current, row, column, "1");
  }
  expect({}, "disabled and invisible");
  act(Click, 0, line, "y"), act(Click, 2, check, "");
  expect({"45 line 0 k00", "229 line 0 y of k00", "225 check 1 k02"}, "a click elsewhere commits");

  const auto shown = [&table](const CColumn* column) {
    CTexts all;
    for (int row = 0; row < 4; ++row) all.push_back(table.cellText(row, column->columnId()).toStdString());
    return all;
  };
  EXPECT_EQ(shown(spin), (CTexts{"42", "9", "999", "18"}));
  EXPECT_EQ(shown(line), (CTexts{"y", "", "", ""}));
  EXPECT_EQ(table.radio->checkedKey(), k(1));
  EXPECT_TRUE(check->isItemChecked(k(2)) && check->isItemChecked(k(3)));
}

TEST(CellControls, anEditorStaysWithItsCell) {
  CControlTable table(40);
  for (int row = 0; row < 40; ++row) table.spin->setItemText(k(row), QString::number(40 - row));
  table.updateTable();
  table.click(k(2), table.line);
  keys("77");
  const QPointer<QWidget> editor = table.line->editor();
  ASSERT_TRUE(editor);
  QScrollBar* const bar = table.view()->verticalScrollBar();
  const auto follows = [&] {
    return table.controls().isEditing() && editor == table.line->editor() && editor->hasFocus() &&
           editor->geometry() == table.cell(k(2), table.line);
  };
  const auto isOutOfSight = [&] { return !editor->geometry().intersects(table.view()->viewport()->rect()); };
  EXPECT_TRUE(follows());
  const struct {
    const char* what;
    std::function<void()> run;
  } steps[] = {
      {"scrolled a little", [&] { bar->setValue(bar->value() + bar->singleStep() / 2 + 3); }},
      {"column widened", [&] { table.setColumnWidth(table.check->columnId(), 120); }},
      {"column moved", [&] { table.moveColumn(table.line->columnId(), 0); }},
      {"push into the row",
       [&] {
         table.push(k(2));
         table.line->setItemText(k(2), QStringLiteral("1"));
         table.updateTable();
       }},
      {"rows added", [&] { table.push(k(50)), table.updateTable(); }},
      {"sorted, to the end", [&] { table.setSortColumn(table.spin->columnId(), Qt::AscendingOrder); }},
  };
  for (const auto& step : steps) {
    step.run();
    if (isOutOfSight()) table.view()->scrollToCell(table.rowOf(k(2)), table.line->columnId());
    EXPECT_TRUE(follows()) << step.what;
  }
  table.view()->verticalScrollBar()->setValue(0);
  EXPECT_TRUE(isOutOfSight() && editor->hasFocus());
  keys("8");
  EXPECT_TRUE(follows()) << "typing brings the cell into sight";
  table.setColumnHidden(table.line->columnId(), true);
  EXPECT_TRUE(isOutOfSight() && editor->hasFocus());
  table.setColumnHidden(table.line->columnId(), false);
  table.takeEvents();
  keys("!");
  EXPECT_EQ(table.takeEvents(), (CTexts{"229 line 0 778 of k02"}));
}

TEST(CellControls, anEditorClosesWithoutCommitWhenItsCellGoes) {
  const struct {
    const char* what;
    std::function<void(CControlTable&)> run;
    bool stays;
  } cases[] = {
      {"cleared", [](CControlTable& table) { table.clear(); }, false},
      {"replaced without the row",
       [](CControlTable& table) {
         GW::CTableBatch batch(table, GW::CTableScope());
         batch.dropAbsent([](const rdservice::IData& record) { return record.getKey() != "k00"; });
         EXPECT_TRUE(batch.commit());
       },
       false},
      {"replaced with the row at another slot",
       [](CControlTable& table) {
         GW::CTableBatch batch(table, GW::CTableScope());
         batch.dropAbsent([](const rdservice::IData& record) { return record.getKey() != "k03"; });
         EXPECT_TRUE(batch.commit());
       },
       true},
      {"disabled", [](CControlTable& table) { table.spin->setItemEnabled(k(3), false); }, false},
      {"invisible", [](CControlTable& table) { table.spin->setItemVisible(k(3), false); }, false},
      {"another cell disabled", [](CControlTable& table) { table.line->setItemEnabled(k(3), false); }, true},
      {"another delegate",
       [](CControlTable& table) {
         const int id = table.spin->columnId();
         table.setColumnDelegate(id, new GW::CBaseTableColumnSimpleTextDelegate(id, &table));
       },
       false},
  };
  for (const auto& one : cases) {
    // Seen by the view before the commit, or only by the commit.
    for (const bool isShown : {true, false}) {
      CControlTable table(5);
      table.click(k(3), table.spin);
      keys("66");
      table.takeEvents();
      one.run(table);
      if (isShown) {
        table.updateTable();
        EXPECT_EQ(table.controls().isEditing(), one.stays) << one.what;
      }
      keys("!");
      EXPECT_EQ(table.takeEvents(), one.stays ? CTexts{"234 spin 66 k03"} : CTexts()) << one.what << isShown;
      EXPECT_FALSE(table.controls().isEditing()) << one.what;
      EXPECT_EQ(QApplication::focusWidget(), table.view()) << one.what;
    }
  }
}

TEST(CellControls, aReceiverMayChangeTheCell) {
  const struct {
    const char* what;
    int type;
    std::function<void(CControlTable&)> handle;
    std::function<void(CControlTable&)> act;
    CTexts expected;
  } cases[] = {
      {"disabled at its beginning", GW::EventSpinBegin,
       [](CControlTable& table) { table.spin->setItemEnabled(k(1), false); },
       [](CControlTable& table) { table.click(k(1), table.spin); }, CTexts{"235 spin 0 k01"}},
      {"hidden at its beginning", GW::EventLineEditBegin,
       [](CControlTable& table) { table.line->setItemVisible(k(1), false); },
       [](CControlTable& table) { table.click(k(1), table.line); }, CTexts{"45 line 0 k01"}},
      {"cleared at its beginning", GW::EventSpinBegin,
       [](CControlTable& table) {
         table.clear();
         for (int row : {1, 0, 2}) table.push(k(row));
       },
       [](CControlTable& table) { table.click(k(1), table.spin); }, CTexts{"235 spin 0 k01"}},
      {"text answered by another, at the editor", GW::EventCellEdited,
       [](CControlTable& table) {
         EXPECT_TRUE(table.line->editor() != nullptr && table.line->editor()->isVisible());
         EXPECT_EQ(table.line->itemText(k(1)), QStringLiteral("8"));
         table.line->setItemText(k(1), QString());
       },
       [](CControlTable& table) {
         table.click(k(1), table.line), keys("8!");
         EXPECT_EQ(table.cellText(1, table.line->columnId()), QString());
         EXPECT_EQ(table.line->editor(), nullptr);
       },
       CTexts{"45 line 0 k01", "229 line 0 8 of k01"}},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    CControlTable table(3);
    table.onEvent = [&](int type) {
      if (type == one.type) one.handle(table);
    };
    one.act(table);
    EXPECT_EQ(table.takeEvents(), one.expected);
    EXPECT_FALSE(table.controls().isEditing());
    EXPECT_TRUE(table.isUpToDate());
    const auto opened = table.view()->viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    EXPECT_EQ(opened.empty(), one.expected.size() == 1) << "an editor shut before its time was opened";
  }
}

TEST(CellControls, aReceiverMayDestroyTheTable) {
  QPushButton other;
  other.show();
  using FAct = std::function<void(CControlTable&)>;
  const std::pair<int, FAct> cases[] = {
      {GW::EventCheckChanged, [](CControlTable& table) { table.click(k(1), table.check); }},
      {GW::EventLineEditBegin, [](CControlTable& table) { table.click(k(1), table.line); }},
      {GW::EventSpinChanged, [](CControlTable& table) { table.click(k(1), table.spin), keys("9!"); }},
      {GW::EventCellEdited, [](CControlTable& table) { table.click(k(1), table.line), keys("9>"); }},
      {GW::EventCellEdited,
       [](CControlTable& table) { table.click(k(1), table.line), keys("9"), table.click(k(2), table.spin); }},
      {GW::EventCellEdited,
       [&other](CControlTable& table) {
         table.click(k(1), table.line), keys("9");
         QApplication::setActiveWindow(&other);
       }},
  };
  for (const auto& [type, act] : cases) {
    auto table = std::make_unique<CControlTable>(3);
    table->onEvent = [&table, end = type](int told) {
      if (told == end) table.reset();
    };
    act(*table);
    EXPECT_EQ(table, nullptr) << type;
  }
  CControlTable table(2);  // an editor is open at the end
  table.click(k(1), table.line), keys("9");
}

TEST(CellControls, tabGoesToTheNextCellThatCanBeEdited) {
  CControlTable table(4);
  table.spin->setItemEnabled(k(1), false);
  table.line->setItemVisible(k(1), false);
  table.updateTable();
  table.click(k(0), table.spin);
  keys("5>6>7<<");
  EXPECT_EQ(table.takeEvents(), (CTexts{"235 spin 0 k00", "234 spin 5 k00", "45 line 0 k00", "229 line 0 6 of k00",
                                        "235 spin 0 k02", "234 spin 7 k02", "45 line 0 k00", "235 spin 0 k00"}));
  keys("<");
  EXPECT_FALSE(table.controls().isEditing()) << "there is none before the first";
  EXPECT_EQ(QApplication::focusWidget(), table.view());

  // The commit sorts the row to the end; the next cell is the one that the user saw next.
  for (int row = 0; row < 4; ++row) table.line->setItemText(k(row), QString::number(row));
  table.spin->setItemEnabled(k(1), true);
  table.line->setItemVisible(k(1), true);
  table.updateTable();
  table.setSortColumn(table.line->columnId(), Qt::AscendingOrder);
  table.click(k(0), table.line);
  table.takeEvents();
  keys("50>");
  EXPECT_EQ(table.rowOf(k(0)), 3);
  EXPECT_EQ(table.takeEvents(), (CTexts{"229 line 0 50 of k00", "235 spin 0 k01"}));
  EXPECT_EQ(table.view()->currentRow(), 0);
  keys("!");
  table.click(k(0), table.line);
  keys(">");
  EXPECT_FALSE(table.controls().isEditing()) << "there is none behind the last";
}

TEST(CellControls, losingTheFocusCommits) {
  CControlTable table(3);
  QPushButton other(&table);
  other.show();
  table.click(k(1), table.line);
  keys("4");
  other.setFocus();
  EXPECT_EQ(table.takeEvents(), (CTexts{"45 line 0 k01", "229 line 0 4 of k01"}));
  EXPECT_EQ(QApplication::focusWidget(), &other) << "the focus stays where the user put it";
  table.click(k(1), table.line);
  keys("5");
  table.view()->setFocus();
  EXPECT_TRUE(table.controls().isEditing()) << "a click into the rows is the view's to handle first";
  QCoreApplication::processEvents();
  EXPECT_EQ(table.takeEvents(), (CTexts{"45 line 0 k01", "229 line 0 5 of k01"}));
}

TEST(CellControls, anOpenEditorFollowsTheTheme) {
  CControlTable table(2);
  const GW::CBaseTableColumnWidgetDelegate* const columns[] = {table.spin, table.line};
  for (const auto* column : columns) {
    for (const GW::EUiTheme theme : {GW::EUiTheme::Light, GW::EUiTheme::Dark, GW::EUiTheme::Light}) {
      GW::setUiTheme(theme);
      if (!table.controls().isEditing()) table.click(k(0), column);
      const QWidget* const editor = QApplication::focusWidget();
      ASSERT_TRUE(table.view()->viewport()->isAncestorOf(editor));
      EXPECT_EQ(editor->palette().color(QPalette::Base),
                GW::CUiResource::getColor(QStringLiteral("clr_table_control_background")));
      EXPECT_EQ(editor->palette().color(QPalette::Text), GW::CUiResource::getColor(QStringLiteral("clr_table_text")));
      EXPECT_EQ(editor->palette().color(QPalette::Highlight),
                GW::CUiResource::getColor(QStringLiteral("clr_highlight")));
    }
    table.controls().cancel();
  }
}
