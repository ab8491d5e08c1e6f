// The view of a table: what the user does to selection and current cell, and what becomes of them when rows change;
// that the screen shows what it should without painting more than it must.

#include "CControlTable.h"
#include "CViewTable.h"

#include "gw/CUiResource.h"
#include "gw/ui_resources.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QToolTip>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>

namespace {

using GW::CHpfTableView;

/// "selected rows | current row,column | selection signals, current signals".
std::string stateOf(const CHpfTableView& view, QSignalSpy& selection, QSignalSpy& current) {
  QStringList rows;
  for (const int row : view.selectedRows()) rows << QString::number(row);
  const QString state = QStringLiteral("%1 | %2,%3 | %4,%5")
                            .arg(rows.join(QLatin1Char(' ')))
                            .arg(view.currentRow())
                            .arg(view.currentColumn())
                            .arg(selection.count())
                            .arg(current.count());
  selection.clear();
  current.clear();
  return state.toStdString();
}

/// Edges of letters are blended a little differently when only a part of them is painted.
bool isSimilar(const QImage& a, const QImage& b) {
  constexpr int BLENDING = 8;
  if (a == b) return true;
  if (a.size() != b.size()) return false;
  const auto differs = [](int one, int other) { return std::abs(one - other) > BLENDING; };
  for (int y = 0; y < a.height(); ++y) {
    const auto* p = reinterpret_cast<const QRgb*>(a.constScanLine(y));
    const auto* q = reinterpret_cast<const QRgb*>(b.constScanLine(y));
    for (int x = 0; x < a.width(); ++x) {
      if (p[x] == q[x]) continue;
      if (differs(qRed(p[x]), qRed(q[x])) || differs(qGreen(p[x]), qGreen(q[x])) || differs(qBlue(p[x]), qBlue(q[x])))
        return false;
    }
  }
  return true;
}

/// Whether the screen shows what painting everything anew shows.
bool isScreenRight(CViewTable& table) {
  table.settle();
  const QImage seen = QGuiApplication::primaryScreen()->grabWindow(table.view->winId()).toImage();
  for (int id = 0; id < table.rows.columnCount(); ++id) table.view->updateColumn(id);  // no text from the cache
  const QImage expected = table.view->grab().toImage();
  table.settle();
  const auto format = QImage::Format_RGB32;
  return isSimilar(seen.convertToFormat(format), expected.convertToFormat(format));
}

}  // namespace

TEST(TableView, keysMoveAndSelect) {
  CViewTable table(50);
  CHpfTableView& view = *table.view;
  view.setColumnMovable(0, true);
  view.header()->moveSection(0, 2);  // 1 2 0 3 4 5
  view.header()->hideSection(2);     // 1 0 3 4 5
  QSignalSpy selection(&view, &CHpfTableView::sigSelectionChanged);
  QSignalSpy current(&view, &CHpfTableView::sigCurrentCellChanged);
  const auto ctrl = Qt::ControlModifier;
  const auto shift = Qt::ShiftModifier;
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* expected;
  } steps[] = {
      {Qt::Key_Down, {}, "0 | 0,1 | 1,1"},
      {Qt::Key_Down, {}, "1 | 1,1 | 1,1"},
      {Qt::Key_Right, {}, "1 | 1,0 | 0,1"},
      {Qt::Key_Right, {}, "1 | 1,3 | 0,1"},
      {Qt::Key_Left, {}, "1 | 1,0 | 0,1"},
      {Qt::Key_Down, shift, "1 2 | 2,0 | 1,1"},
      {Qt::Key_Up, shift, "1 | 1,0 | 1,1"},
      {Qt::Key_Up, shift, "0 1 | 0,0 | 1,1"},
      {Qt::Key_Up, shift, "0 1 | 0,0 | 0,0"},
      {Qt::Key_Down, ctrl, "0 1 | 1,0 | 0,1"},
      {Qt::Key_End, {}, "0 1 | 1,5 | 0,1"},
      {Qt::Key_Home, {}, "0 1 | 1,1 | 0,1"},
      {Qt::Key_PageDown, {}, "10 | 10,1 | 1,1"},
      {Qt::Key_PageUp, shift, "1 2 3 4 5 6 7 8 9 10 | 1,1 | 1,1"},
      {Qt::Key_End, ctrl, "49 | 49,1 | 1,1"},
      {Qt::Key_Home, ctrl, "0 | 0,1 | 1,1"},
      {Qt::Key_A, ctrl, nullptr},
      {Qt::Key_Escape, {}, nullptr},
  };
  for (const auto& step : steps) {
    QTest::keyClick(&view, step.key, step.modifiers);
    const std::string state = stateOf(view, selection, current);
    if (step.expected != nullptr) {
      EXPECT_EQ(state, step.expected) << "at step " << &step - steps;
    }
    EXPECT_TRUE(view.viewport()->rect().contains(view.cellRect(view.currentRow(), view.currentColumn()))) << step.key;
  }
  EXPECT_EQ(view.selectedCount(), 50);
}

TEST(TableView, mouseSelects) {
  CViewTable table(50);
  CHpfTableView& view = *table.view;
  QSignalSpy selection(&view, &CHpfTableView::sigSelectionChanged);
  QSignalSpy current(&view, &CHpfTableView::sigCurrentCellChanged);
  QSignalSpy menu(&view, &CHpfTableView::sigMenuRequested);
  QSignalSpy doubleClicked(&view, &CHpfTableView::sigRowDoubleClicked);
  const auto ctrl = Qt::ControlModifier;
  const auto shift = Qt::ShiftModifier;
  const struct {
    int row;
    Qt::KeyboardModifiers modifiers;
    Qt::MouseButton button;
    const char* expected;
  } steps[] = {
      {3, {}, Qt::LeftButton, "3 | 3,1 | 1,1"},          {3, {}, Qt::LeftButton, "3 | 3,1 | 0,0"},
      {5, shift, Qt::LeftButton, "3 4 5 | 5,1 | 1,1"},   {1, shift, Qt::LeftButton, "1 2 3 | 1,1 | 1,1"},
      {7, ctrl, Qt::LeftButton, "1 2 3 7 | 7,1 | 1,1"},  {2, ctrl, Qt::LeftButton, "1 3 7 | 2,1 | 1,1"},
      {8, ctrl, Qt::LeftButton, "1 3 7 8 | 8,1 | 1,1"},  {9, ctrl | shift, Qt::LeftButton, "1 3 7 8 9 | 9,1 | 1,1"},
      {3, {}, Qt::RightButton, "1 3 7 8 9 | 3,1 | 0,1"}, {4, {}, Qt::RightButton, "4 | 4,1 | 1,1"},
      {6, shift, Qt::LeftButton, "4 5 6 | 6,1 | 1,1"},
  };
  for (const auto& step : steps) {
    table.click(step.row, 1, step.modifiers, step.button);
    EXPECT_EQ(stateOf(view, selection, current), step.expected) << "at step " << &step - steps;
  }

  // A drag extends, back too; below the viewport it scrolls on.
  QTest::mousePress(view.viewport(), Qt::LeftButton, {}, table.at(2, 1));
  const auto dragTo = [&](const QPoint& place) {
    QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &move);
  };
  dragTo(table.at(6, 1));
  dragTo(table.at(4, 1));
  EXPECT_EQ(stateOf(view, selection, current), "2 3 4 | 4,1 | 3,3");
  dragTo(QPoint(120, view.viewport()->height() + 200));
  EXPECT_TRUE(QTest::qWaitFor([&] { return view.currentRow() == 49; }));
  EXPECT_EQ(view.selectedCount(), 48);
  QTest::mouseRelease(view.viewport(), Qt::LeftButton);
  dragTo(QPoint(120, 5));
  EXPECT_EQ(view.selectedCount(), 48);

  EXPECT_TRUE(doubleClicked.isEmpty());
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, table.at(45, 1));
  ASSERT_EQ(doubleClicked.count(), 1);
  EXPECT_EQ(doubleClicked[0][0].toInt(), 45);
  QContextMenuEvent asked(QContextMenuEvent::Mouse, table.at(45, 1), view.viewport()->mapToGlobal(table.at(45, 1)));
  QApplication::sendEvent(view.viewport(), &asked);
  ASSERT_EQ(menu.count(), 1);
  EXPECT_EQ(menu[0][0].toPoint(), table.at(45, 1));

  // Below the rows nothing is hit, and a press there deselects.
  table.drop([](int slot) { return slot < 2; });
  view.selectAll();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(50, 3 * view.rowHeight()));
  EXPECT_EQ(view.selectedCount(), 0);
  EXPECT_EQ(view.rowAt(3 * view.rowHeight()), -1);
}

TEST(TableView, controlsComeFirst) {
  CControlTable table(4);
  CHpfTableView& view = *table.view();
  view.selectRows(1, 1);
  view.setCurrentCell(1, CTestRecord::ColumnId);
  // Space on a cell without a box takes the first box of the row.
  QTest::keyClick(&view, Qt::Key_Space);
  EXPECT_TRUE(table.check->isItemChecked(table.key(1)));
  view.setCurrentCell(2, table.radio->columnId());
  QTest::keyClick(&view, Qt::Key_Space);
  EXPECT_EQ(table.radio->checkedKey(), table.key(2));
  // A click on a box leaves the selection and makes its cell the current one; two quick clicks are two.
  QSignalSpy doubleClicked(&view, &CHpfTableView::sigRowDoubleClicked);
  const QPoint box = table.cell(table.key(3), table.check).center();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, box);
  EXPECT_TRUE(table.check->isItemChecked(table.key(3)));
  EXPECT_EQ(view.currentRow(), 3);
  EXPECT_EQ(view.currentColumn(), table.check->columnId());
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, box);
  EXPECT_FALSE(table.check->isItemChecked(table.key(3)));
  EXPECT_TRUE(doubleClicked.isEmpty());
  EXPECT_EQ(view.selectedRows(), std::vector<int>{1});

  // Tab goes through the cells that one can type into, row by row, and after the last one elsewhere.
  view.setCurrentCell(2, table.line->columnId());
  const std::pair<int, int> next = view.nextCell(2, table.line->columnId(), false, &GW::CCellControls::isEditable);
  EXPECT_EQ(next, std::make_pair(3, table.spin->columnId()));
  QTest::keyClick(&view, Qt::Key_Tab);
  EXPECT_EQ(std::make_pair(view.currentRow(), view.currentColumn()), next);
  QTest::keyClick(&view, Qt::Key_Backtab);
  EXPECT_EQ(view.currentRow(), 2);
  EXPECT_EQ(view.currentColumn(), table.line->columnId());
  const std::pair<int, int> none(-1, -1);
  EXPECT_EQ(view.nextCell(3, table.line->columnId(), false, &GW::CCellControls::isEditable), none);
  EXPECT_EQ(view.nextCell(0, table.spin->columnId(), true, &GW::CCellControls::isEditable), none);

  // Typing opens the editor, Escape drops it.
  QTest::keyClick(&view, Qt::Key_7);
  ASSERT_TRUE(table.controls().isEditing());
  QTest::keyClick(&view, Qt::Key_Escape);
  EXPECT_FALSE(table.controls().isEditing());
  EXPECT_TRUE(table.line->isEmpty());
}

TEST(TableView, headerTellsTitlesMarksAndBoxesApart) {
  CViewTable table(50);
  CHpfTableView& view = *table.view;
  QHeaderView& header = *view.header();
  QSignalSpy sort(&view, &CHpfTableView::sigSortRequested);
  QSignalSpy filter(&view, &CHpfTableView::sigFilterRequested);
  QSignalSpy box(&view, &CHpfTableView::sigHeaderCheckBoxClicked);
  const int y = header.height() / 2;
  const auto left = [&](int columnId) { return header.sectionViewportPosition(columnId); };
  const auto right = [&](int columnId) { return left(columnId) + header.sectionSize(columnId); };
  const auto click = [&](int x, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseMove(header.viewport(), QPoint(x, y));
    QTest::mouseClick(header.viewport(), Qt::LeftButton, modifiers, QPoint(x, y));
  };
  click(left(1) + 30);
  click(left(2) + 30, Qt::ShiftModifier);
  ASSERT_EQ(sort.count(), 2);
  EXPECT_EQ(sort[0], (QVariantList{1, false}));
  EXPECT_EQ(sort[1], (QVariantList{2, true}));
  click(right(1) - 11);
  ASSERT_EQ(filter.count(), 1);
  EXPECT_EQ(filter[0][0].toInt(), 1);
  EXPECT_EQ(filter[0][1].toRect().topLeft(), header.viewport()->mapToGlobal(QPoint(left(1), 0)));
  view.setHeaderCheckBoxVisible(1, true);
  click(left(1) + 12);
  view.rows().column(2)->title.clear();
  view.columnChanged(2);
  view.setHeaderCheckBoxVisible(2, true);
  view.setHeaderCheckBoxState(2, true);
  click(left(2) + 50);  // centred without a title
  ASSERT_EQ(box.count(), 2);
  EXPECT_EQ(box[0], (QVariantList{1, true}));
  EXPECT_EQ(box[1], (QVariantList{2, false}));
  EXPECT_TRUE(view.headerCheckBoxState(1));
  EXPECT_EQ(sort.count(), 2) << "only the title sorts";

  const auto drag = [&](int columnId) {
    QTest::mousePress(header.viewport(), Qt::LeftButton, {}, QPoint(left(columnId) + 30, y));
    for (const int x : {60, 150, 160}) {
      QMouseEvent move(QEvent::MouseMove, QPoint(left(columnId) + x, y), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(header.viewport(), &move);
    }
    QTest::mouseRelease(header.viewport(), Qt::LeftButton, {}, QPoint(left(columnId) + 160, y));
  };
  view.setColumnMovable(0, false);
  drag(0);
  EXPECT_EQ(header.visualIndex(0), 0);
  view.setColumnMovable(0, true);
  drag(0);
  EXPECT_EQ(header.visualIndex(0), 1);
  EXPECT_EQ(view.shownColumns(), (std::vector<int>{1, 0, 2, 3, 4, 5}));

  // A double click on the border fits the rows on screen and keeps the title whole; the column keeps the width.
  for (const int columnId : {0, 3}) {
    QTest::mouseDClick(header.viewport(), Qt::LeftButton, {}, QPoint(right(columnId) - 1, y));
    const int text = view.textWidth(view.rows().text(0, columnId));
    EXPECT_EQ(header.sectionSize(columnId), std::max(view.headerWidth(columnId), text)) << columnId;
    EXPECT_EQ(view.rows().column(columnId)->width, header.sectionSize(columnId));
  }
  const int widthBefore = view.fittingWidth(3);
  header.hideSection(3);
  EXPECT_EQ(view.fittingWidth(3), widthBefore) << "a hidden column will be shown with its whole title";
  view.rows().column(3)->title.clear();
  table.change({0, 1, 2, 3, 4, 5}, 2000000000);
  view.rows().setSum(3, true);
  EXPECT_EQ(view.fittingWidth(3), view.textWidth(QStringLiteral("12,000,000,000"))) << "the sum is wider than any cell";
  EXPECT_GT(view.rows().column(3)->width, 0);
  EXPECT_TRUE(view.cellRect(0, 3).isNull());
}

TEST(TableView, copiesAndTellsWhatIsCut) {
  CViewTable table(9);
  CHpfTableView& view = *table.view;
  view.header()->moveSection(3, 0);
  for (const int columnId : {1, 4, 5}) view.header()->hideSection(columnId);
  view.selectRows(1, 2);
  EXPECT_EQ(view.selectedText(false).toStdString(), "1\t000002\t贵州茅台\n2\t000003\tST 皇台");
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
            "未还数量\t合约编号\t证券名称\n1\t000002\t贵州茅台\n2\t000003\tST 皇台");
  QSignalSpy find(&view, &CHpfTableView::sigFindRequested);
  QTest::keyClick(&view, Qt::Key_F, Qt::ControlModifier);
  EXPECT_EQ(find.count(), 1);

  const auto tip = [](QWidget* widget, const QPoint& place) {
    for (QWidget* shown : QApplication::topLevelWidgets()) {
      if (shown->inherits("QTipLabel")) shown->hide();  // it would stay for a while
    }
    QHelpEvent help(QEvent::ToolTip, place, widget->mapToGlobal(place));
    QApplication::sendEvent(widget, &help);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
  };
  const QString name = view.rows().text(1, 2);
  const QPoint title(view.header()->sectionViewportPosition(2) + 9, 5);
  EXPECT_EQ(tip(view.viewport(), table.at(1, 2)), QString());
  EXPECT_EQ(tip(view.header()->viewport(), title), QString());
  view.header()->resizeSection(2, view.textWidth(name) - 1);
  EXPECT_EQ(tip(view.viewport(), table.at(1, 2)), name);
  view.header()->resizeSection(2, 40);
  EXPECT_EQ(tip(view.header()->viewport(), title), view.rows().column(2)->title);
  // The width that the header asks for has room for every mark.
  view.header()->resizeSection(2, view.headerWidth(2));
  view.rows().setSort({{0, Qt::AscendingOrder}, {2, Qt::AscendingOrder}});
  view.rows().setFilter(2, QStringList{name});
  view.updateMarks();
  EXPECT_EQ(tip(view.header()->viewport(), title), QString());
  view.header()->resizeSection(2, view.headerWidth(2) - 1);
  EXPECT_NE(tip(view.header()->viewport(), title), QString());

  view.rows().setSum(3, true);
  view.updateMarks();
  table.change({1}, 123456789);
  view.header()->resizeSection(3, 60);
  QWidget* sums = view.childAt(view.viewport()->geometry().bottomLeft() + QPoint(30, 8));
  EXPECT_EQ(tip(sums, QPoint(30, 5)), view.rows().sumText(3));
  view.header()->resizeSection(3, 200);
  EXPECT_EQ(tip(sums, QPoint(30, 5)), QString());
}

TEST(TableView, paintsOnlyWhatHasChanged) {
  CViewTable table(100000);
  CHpfTableView& view = *table.view;
  const auto rect = [&](int row, int columnId) { return view.cellRect(row, columnId) & view.viewport()->rect(); };
  const auto line = [&](int row) {
    return QRect(0, rect(row, 0).y(), view.viewport()->width(), rect(row, 0).height());
  };
  const QRegion nothing;
  view.setCurrentCell(3, 0);
  table.settle();
  const struct {
    const char* what;
    std::function<void()> act;
    QRegion expected;
  } steps[] = {
      {"a record off the screen",
       [&] {
         table.change({500, 70000}, 7);
       },
       nothing},
      {"one cell of three rows",
       [&] {
         table.change({2, 4, 900}, 77);
       },
       QRegion(rect(2, 3)) + rect(4, 3)},
      {"the same text again",
       [&] {
         table.change({2, 4, 900}, 77);
       },
       nothing},
      {"rows added below", [&] { table.append(10); }, nothing},
      {"a selected row", [&] { view.selectRows(5, 5); }, line(5)},
      {"another one", [&] { view.selectRows(6, 6); }, QRegion(line(5)) + line(6)},
      {"the current cell", [&] { view.setCurrentCell(7, 1); }, QRegion(line(3)) + line(7)},
      {"rows dropped below", [&] { table.drop([](int slot) { return slot < 5000; }); }, nothing},
      {"sorted as they are",
       [&] {
         view.rows().setSort({{0, Qt::AscendingOrder}});
       },
       nothing},
      {"scrolled by a row", [&] { view.verticalScrollBar()->setValue(view.rowHeight()); },
       QRect(0, view.viewport()->height() - view.rowHeight(), view.viewport()->width(), view.rowHeight())},
      {"a row dropped above: rows keep their shades", [&] { table.drop([](int slot) { return slot > 0; }); }, nothing},
      {"hidden",
       [&] {
         view.hide();
         table.change({2, 3}, 78);
       },
       nothing},
  };
  for (const auto& step : steps) {
    step.act();
    EXPECT_EQ(table.settle(), step.expected) << step.what;
  }
}

/// Random changes: selection and current row stay with their records, or go with them; the record at the top keeps its
/// place; and what the screen shows, mended piece by piece, is what painting it anew shows.
TEST(TableView, followsItsRecordsThroughChanges) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    CViewTable table(60);
    CHpfTableView& view = *table.view;
    if (seed % 2 == 0) {
      view.rows().setSum(3, true);
      view.updateMarks();
    }
    std::set<std::string> selected;
    std::string current;
    const auto shownKeys = [&] {
      std::vector<std::string> keys;
      for (int row = 0; row < table.rows.rowCount(); ++row) keys.push_back(table.keyAt(row));
      return keys;
    };
    for (int step = 0; step < 60; ++step) {
      const int count = table.rows.rowCount();
      if (count > 0) {
        const int row = below(count);
        const int last = std::min(count - 1, row + below(4));
        view.selectRows(row, last);
        const int other = below(count);
        view.addToSelection(other, !view.isSelected(table.rows.slotAt(other)));
        view.setCurrentCell(below(count), below(6));
        view.verticalScrollBar()->setValue(below(view.verticalScrollBar()->maximum() + 1));
        view.horizontalScrollBar()->setValue(below(view.horizontalScrollBar()->maximum() + 1));
      }
      selected.clear();
      for (const int one : view.selectedRows()) selected.insert(table.keyAt(one));
      current = view.currentRow() < 0 ? std::string() : table.keyAt(view.currentRow());
      const int top = view.visibleRows().first;
      const std::string topKey = top < 0 ? std::string() : table.keyAt(top);
      const int topY = top < 0 ? 0 : view.cellRect(top, 0).y();
      ASSERT_TRUE(isScreenRight(table)) << seed << " before step " << step;

      const int act = below(6);
      if (act == 0) table.append(1 + below(20));
      if (act == 1 && table.rows.slotCount() > 5) table.change({below(5), table.rows.slotCount() - 1}, below(1000));
      if (act == 2) table.drop([&](int) { return below(8) != 0; });
      if (act == 3) table.rows.setSort({{below(5), below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder}});
      if (act == 4) table.rows.setFilter(2, QStringList{QString::fromUtf8("浦发银行"), QString::fromUtf8("ST 皇台")});
      if (act == 5) table.rows.setFilter(2, std::nullopt);
      view.updateMarks();

      const std::vector<std::string> keys = shownKeys();
      std::set<std::string> stillSelected;
      for (const std::string& key : keys) {
        if (selected.count(key) > 0) stillSelected.insert(key);
      }
      std::set<std::string> now;
      for (const int one : view.selectedRows()) now.insert(table.keyAt(one));
      ASSERT_EQ(now, stillSelected) << seed << " act " << act;
      ASSERT_EQ(view.selectedCount(), static_cast<int>(stillSelected.size()));
      const auto place = std::find(keys.begin(), keys.end(), current);
      ASSERT_EQ(view.currentRow(), place == keys.end() ? -1 : static_cast<int>(place - keys.begin())) << seed;
      const auto topNow = std::find(keys.begin(), keys.end(), topKey);
      if (topNow != keys.end()) {
        const int wanted = static_cast<int>(topNow - keys.begin()) * view.rowHeight() - topY;
        ASSERT_EQ(view.verticalScrollBar()->value(), std::clamp(wanted, 0, view.verticalScrollBar()->maximum()))
            << seed << " act " << act;
      }
      ASSERT_TRUE(isScreenRight(table)) << seed << " act " << act << " at step " << step;
    }
  }
}

TEST(TableView, staysInItsBoundsWhenRowsGo) {
  CViewTable table(20);
  CHpfTableView& view = *table.view;
  QScrollBar& bar = *view.verticalScrollBar();
  const int boundAfter = bar.maximum() - view.rowHeight();
  bar.setValue(boundAfter + 3);  // the same rows on screen, a little higher
  const int top = view.visibleRows().first;
  table.settle();
  table.drop([](int slot) { return slot < 19; });
  EXPECT_EQ(view.visibleRows().first, top);
  EXPECT_EQ(bar.value(), boundAfter);
  EXPECT_TRUE(isScreenRight(table));
  // Several changes at once: the place that the first one takes away comes back with the next.
  view.changesBegin();
  table.drop([](int) { return false; });
  EXPECT_EQ(bar.maximum(), 0);
  table.append(30);
  view.changesEnd();
  EXPECT_EQ(bar.value(), boundAfter);
  EXPECT_TRUE(isScreenRight(table));
}

TEST(TableView, looksAsTheThemeAndTheFontSay) {
  CViewTable table(30);
  CHpfTableView& view = *table.view;
  view.selectRows(2, 2);
  view.rows().setSum(CTestRecord::ColumnVolume, true);
  const int heightBefore = view.viewport()->height();
  view.updateMarks();
  EXPECT_EQ(view.viewport()->height(), heightBefore - view.rowHeight());
  table.settle();
  const QImage image = view.grab().toImage();
  const QPoint origin = view.viewport()->pos();
  const auto expectColor = [&](const QPoint& place, const char* key) {
    EXPECT_EQ(image.pixelColor(place).name(), GW::CUiResource::getColor(QString::fromLatin1(key)).name()) << key;
  };
  const auto corner = [&](int row) { return origin + view.cellRect(row, 0).topLeft() + QPoint(1, 1); };
  expectColor(corner(0), "clr_table_background");
  expectColor(corner(1), "clr_table_alternate");
  expectColor(corner(2), "clr_table_selected");
  expectColor(origin + view.cellRect(0, 0).bottomRight(), "clr_table_grid");
  expectColor(QPoint(1, 1), "clr_table_header");
  expectColor(origin + QPoint(1, view.viewport()->height() + 3), "clr_table_sums");

  // Without the focus, when a find bar has it, the current cell is still marked.
  view.setCurrentCell(2, 1);
  const auto frameColor = [&] {
    return view.grab().toImage().pixelColor(origin + view.cellRect(2, 1).topLeft() + QPoint(0, 5)).name();
  };
  ASSERT_TRUE(view.hasFocus());
  EXPECT_EQ(frameColor(), GW::CUiResource::getColor(QStringLiteral("clr_table_current")).name());
  view.clearFocus();
  EXPECT_EQ(frameColor(), GW::CUiResource::getColor(QStringLiteral("clr_table_current_row")).name());

  GW::notifyUiResourceChanged();
  EXPECT_EQ(table.settle(), view.viewport()->rect());
  const int rowHeight = view.rowHeight();
  QFont larger = view.font();
  larger.setPointSize(larger.pointSize() * 2);
  view.setFont(larger);
  EXPECT_GT(view.rowHeight(), rowHeight * 3 / 2);
  EXPECT_EQ(table.at(3, 0).y(), 3 * view.rowHeight() + view.cellRect(0, 0).center().y());
  EXPECT_TRUE(isScreenRight(table));
  view.setEnabled(false);
  EXPECT_TRUE(isScreenRight(table));
}

TEST(TableView, wheelScrollsRowsOrSideways) {
  CViewTable table(100);
  CHpfTableView& view = *table.view;
  const auto turn = [&](Qt::KeyboardModifiers modifiers) {
    const QPoint place = view.viewport()->rect().center();
    QWheelEvent wheel(place, view.viewport()->mapToGlobal(place), {}, {0, -120}, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(view.viewport(), &wheel);
    return QPoint(view.horizontalScrollBar()->value(), view.verticalScrollBar()->value());
  };
  EXPECT_EQ(turn({}), QPoint(0, 3 * view.rowHeight()));
  EXPECT_EQ(turn(Qt::ShiftModifier), QPoint(3 * view.rowHeight(), 3 * view.rowHeight()));
  view.scrollToCell(0, 0);
  EXPECT_EQ(view.cellRect(0, 0).topLeft(), QPoint());
}
