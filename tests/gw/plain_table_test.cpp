// The plain table: what the user's edits report, and what sorting and filtering leave.

#include "gw/COddEvenRowTable.h"
#include "gw/view/CFilterMenu.h"
#include "gw/widget_events.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace {

enum EColumn : int { ColumnName, ColumnVolume, ColumnHeld };

/// A window with a table of securities; notes what it reports.
class CPlainWindow : public GW::CBaseWidget {
 public:
  CPlainWindow() : CBaseWidget(nullptr), table(this), view(*table.findChild<QTableView*>()) {
    table.setColumns({{QString::fromUtf8("名称"), 100, false, false, true, false},
                      {QString::fromUtf8("数量"), 100, true, true, true, true},
                      {QString::fromUtf8("拥股"), 100, true, false, false, true}});
    const struct {
      const char* name;
      int volume;
    } rows[] = {{"平安银行", 300}, {"浦发银行", 100}, {"ST 皇台", 2000}, {"中国石化", 50}};
    table.setRowCount(4);
    for (int row = 0; row < 4; ++row) {
      table.setCell(row, ColumnName, QString::fromUtf8(rows[row].name));
      table.setCell(row, ColumnVolume, rows[row].volume);
      table.setCell(row, ColumnHeld, qint64{1} << 40);
    }
    resize(400, 300);
    table.resize(size());
    show();
    QApplication::setActiveWindow(this);
    table.setFocus();
  }

  bool handleEvent(int type, int, int, QString text, void* data) override {
    const auto* cell = static_cast<const GW::CPlainCell*>(data);
    reports += QStringLiteral("%1 %2 %3 %4;").arg(type).arg(cell->row).arg(cell->column).arg(text);
    return true;
  }

  /// Keys by letter: ~ is F2, ! Enter, ^ Escape, > Tab, < Shift+Tab, _ Down; others type themselves.
  void press(const char* keys) {
    for (const char* key = keys; *key != '\0'; ++key) {
      QWidget* const target = QApplication::focusWidget();
      ASSERT_NE(target, nullptr);
      switch (*key) {
        case '~': QTest::keyClick(target, Qt::Key_F2); break;
        case '!': QTest::keyClick(target, Qt::Key_Return); break;
        case '^': QTest::keyClick(target, Qt::Key_Escape); break;
        case '>': QTest::keyClick(target, Qt::Key_Tab); break;
        case '<': QTest::keyClick(target, Qt::Key_Backtab); break;
        case '_': QTest::keyClick(target, Qt::Key_Down); break;
        default: QTest::keyClick(target, *key);
      }
      QApplication::processEvents();
    }
  }
  void clickCell(int row, int column) {
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(view.model()->index(row, column)).center());
  }
  void clickTitle(int column) {
    const QHeaderView& header = *view.horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      {header.sectionViewportPosition(column) + header.sectionSize(column) / 2, 5});
  }
  /// Where the filter mark stands while the mouse is over the section.
  void clickMark(int column) {
    const QHeaderView& header = *view.horizontalHeader();
    const QPoint place(header.sectionViewportPosition(column) + header.sectionSize(column) - 6, header.height() / 2);
    QTest::mouseMove(header.viewport(), place);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
  }
  /// In the open menu: only values that contain the text.
  void choose(const char* text) {
    const QPointer<GW::CFilterMenu> menu = view.findChild<GW::CFilterMenu*>();
    ASSERT_TRUE(menu) << text;
    auto* line = menu->findChild<QLineEdit*>();
    line->setText(QString::fromUtf8(text));
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&menu] { return menu.isNull(); })) << text;
    QApplication::setActiveWindow(this);  // a window system does so
  }
  QString shown(int column) const {
    QStringList texts;
    for (int row = 0; row < view.model()->rowCount(); ++row)
      texts.append(view.model()->index(row, column).data().toString());
    return texts.join(QLatin1Char(' '));
  }

  GW::COddEvenRowTable table;
  QTableView& view;
  QString reports;
};

}  // namespace

TEST(PlainTable, editsReportTheCellAsItWasFilled) {
  const struct {
    const char* what;
    int titleClicks;     ///< on the volume: rising, falling, as filled
    const char* filter;  ///< of the volume; null for none
    int row;             ///< displayed
    int column;
    const char* keys;
    const char* reports;
    const char* volumes;  ///< displayed afterwards
    const char* sum;
  } cases[] = {
      {"typed over", 0, nullptr, 1, ColumnVolume, "77!", "48 1 1 77;", "300 77 2000 50", "2427"},
      {"in place", 0, nullptr, 1, ColumnVolume, "~77!", "48 1 1 77;", "300 77 2000 50", "2427"},
      {"given up", 0, nullptr, 1, ColumnVolume, "77^", "", "300 100 2000 50", "2450"},
      {"the same again", 0, nullptr, 1, ColumnVolume, "100!", "", "300 100 2000 50", "2450"},
      {"no number", 0, nullptr, 1, ColumnVolume, "abc!", "48 1 1 abc;", "300 abc 2000 50", "2350"},
      {"a number again", 0, nullptr, 1, ColumnVolume, "abc!7!", "48 1 1 abc;48 1 1 7;", "300 7 2000 50", "2357"},
      {"negative", 0, nullptr, 1, ColumnVolume, "-7!", "48 1 1 -7;", "300 -7 2000 50", "2343"},
      {"not editable", 0, nullptr, 1, ColumnHeld, "7!~7!", "", "300 100 2000 50", "2450"},
      {"on to the next and back", 0, nullptr, 1, ColumnVolume, "1>2>3<4!", "48 1 1 1;48 2 1 2;48 3 1 3;48 2 1 4;",
       "300 1 4 3", "308"},
      {"rising", 1, nullptr, 0, ColumnVolume, "999!", "48 3 1 999;", "999 100 300 2000", "3399"},
      {"falling", 2, nullptr, 0, ColumnVolume, "1!_2!", "48 2 1 1;48 0 1 2;", "1 2 100 50", "153"},
      {"as filled again", 3, nullptr, 0, ColumnVolume, "1!", "48 0 1 1;", "1 100 2000 50", "2151"},
      {"filtered", 0, "00", 1, ColumnVolume, "5!_6!", "48 1 1 5;48 2 1 6;", "300 5 6", "311"},
      {"filtered and falling", 2, "00", 1, ColumnVolume, "5!", "48 0 1 5;", "2000 5 100", "2105"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    CPlainWindow window;
    for (int i = 0; i < one.titleClicks; ++i) window.clickTitle(ColumnVolume);
    if (one.filter != nullptr) {
      window.clickMark(ColumnVolume);
      window.choose(one.filter);
    }
    window.clickCell(one.row, one.column);
    window.press(one.keys);
    EXPECT_EQ(window.reports.toStdString(), one.reports);
    EXPECT_EQ(window.shown(ColumnVolume).toStdString(), one.volumes);
    EXPECT_EQ(window.table.sumText(ColumnVolume).toStdString(), one.sum);
    EXPECT_EQ(window.table.rowCount(), 4);
  }
}

TEST(PlainTable, openEditorIsTakenOverOnDemand) {
  CPlainWindow window;
  EXPECT_EQ(window.view.currentIndex().column(), ColumnVolume) << "typing right away goes to the first editable cell";
  window.press("12");
  window.table.commitEditing();
  EXPECT_EQ(window.reports, QStringLiteral("48 0 1 12;"));
  window.table.commitEditing();
  window.press("~");
  window.table.commitEditing();
  EXPECT_EQ(window.reports, QStringLiteral("48 0 1 12;"));
  window.press("13");
  window.clickTitle(ColumnVolume);
  EXPECT_EQ(window.reports, QStringLiteral("48 0 1 12;48 0 1 13;"));
  EXPECT_EQ(window.shown(ColumnVolume), QStringLiteral("13 50 100 2000")) << "sorted by the new number";
}

TEST(PlainTable, sortsAndFiltersByTheMouseAndTheKeyboard) {
  CPlainWindow window;
  window.clickTitle(ColumnName);
  EXPECT_EQ(window.shown(ColumnName), QString::fromUtf8("平安银行 浦发银行 中国石化 ST 皇台")) << "by pinyin";
  window.clickMark(ColumnName);
  window.choose("银行");
  EXPECT_EQ(window.shown(ColumnVolume), QStringLiteral("300 100"));
  EXPECT_EQ(window.table.displayedRowCount(), 2);
  EXPECT_EQ(window.table.sumText(ColumnHeld), QString::number(qint64{1} << 41));
  EXPECT_EQ(window.table.sumText(ColumnName), QString());

  // A second filter offers what the first leaves; the column without a filter offers nothing.
  window.clickCell(0, ColumnVolume);
  QTest::keyClick(&window.view, Qt::Key_Down, Qt::AltModifier);
  window.choose("1");
  EXPECT_EQ(window.shown(ColumnVolume), QStringLiteral("100"));
  window.clickCell(0, ColumnHeld);
  QTest::keyClick(&window.view, Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(window.view.findChild<GW::CFilterMenu*>(), nullptr);

  QTest::keyClick(&window.view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), QString::fromUtf8("浦发银行\t100\t1099511627776"));

  window.table.clear();
  window.table.setRowCount(1);
  window.table.setCell(0, ColumnVolume, 5);
  window.table.setCell(7, ColumnVolume, 5);
  EXPECT_EQ(window.shown(ColumnVolume), QStringLiteral("5")) << "neither filtered nor sorted any more";
  EXPECT_EQ(window.table.cellText(0, ColumnName) + window.table.cellText(9, 9), QString());
}

TEST(PlainTable, narrowTableScrollsRowsAndSumsTogether) {
  CPlainWindow window;
  QScrollBar* bar = nullptr;
  for (QScrollBar* one : window.table.findChildren<QScrollBar*>(QString(), Qt::FindDirectChildrenOnly)) bar = one;
  ASSERT_NE(bar, nullptr);
  QApplication::processEvents();
  EXPECT_FALSE(bar->isVisible());
  window.table.resize(220, 300);
  QApplication::processEvents();
  ASSERT_TRUE(bar->isVisible());
  EXPECT_EQ(bar->geometry().bottom(), window.table.height() - 1);
  EXPECT_EQ(bar->y() - window.view.geometry().bottom() - 1, window.table.itemHeight()) << "the sums stand between";
  bar->setValue(bar->maximum());
  EXPECT_EQ(window.view.horizontalHeader()->offset(), bar->maximum());
  window.clickCell(0, ColumnVolume);
  QTest::keyClick(&window.view, Qt::Key_Home);
  EXPECT_EQ(bar->value(), window.view.horizontalHeader()->offset());
  EXPECT_LT(bar->value(), bar->maximum());
}
