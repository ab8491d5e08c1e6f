// The confirmation of a batch return of securities: its rows and height, what editing writes, how it ends.

#include "dialogs/CSecuRepayComfirmDialog.h"
#include "gw/COddEvenRowTable.h"
#include "gw/controls.h"
#include "gw/widget_events.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <functional>
#include <list>
#include <vector>

namespace {

using VN::CSecuRepayComfirmDialog;

constexpr int COLUMN_VOLUME = 6;

VN::CSecuRepayEntry makeEntry(const char* market, const char* code, const char* name, int volume, int liability,
                              char source = '0') {
  static const rdservice::CAccountInfoPtr account = [] {
    auto made = boost::make_shared<rdservice::CAccountInfo>();
    made->accountId = "1001";
    return made;
  }();
  VN::CSecuRepayEntry entry;
  entry.account = account;
  entry.position = boost::make_shared<rdservice::CPositionStatics>();
  entry.position->exchangeId = market;
  entry.position->code = code;
  entry.position->name = name;
  entry.position->currentVolume = volume;
  entry.volume = volume < liability ? volume : liability;
  entry.liability = liability;
  entry.source = source;
  return entry;
}

std::list<VN::CSecuRepayEntry> makeEntries(int count) {
  std::list<VN::CSecuRepayEntry> entries;
  for (int i = 0; i < count; ++i) entries.push_back(makeEntry("SH", "600000", "浦发银行", 100 * (i + 1), 1000));
  return entries;
}

CSecuRepayComfirmDialog* makeDialog(std::list<VN::CSecuRepayEntry>& entries) {
  auto* const dialog = new CSecuRepayComfirmDialog(QString::fromUtf8("批量还券确认"), nullptr);
  dialog->setData(entries, nullptr);
  return dialog;
}

QString volumes(const std::list<VN::CSecuRepayEntry>& entries) {
  QStringList texts;
  for (const VN::CSecuRepayEntry& entry : entries) texts.append(QString::number(entry.volume));
  return texts.join(QLatin1Char(' '));
}

/// What a user does in the open dialog.
class CUser {
 public:
  explicit CUser(CSecuRepayComfirmDialog& dialog) : dialog(dialog), view(*dialog.findChild<QTableView*>()) {
    QApplication::setActiveWindow(&dialog);
  }
  /// Opens the editor of a displayed row by a double click, and types.
  void type(int row, const char* text) {
    const QPoint cell = view.visualRect(view.model()->index(row, COLUMN_VOLUME)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, cell);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, cell);
    ASSERT_NE(qobject_cast<QLineEdit*>(QApplication::focusWidget()), nullptr);
    QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(text));
  }
  void press(Qt::Key key) {
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &dialog, key);
    QApplication::processEvents();
  }
  void click(const char* text) {
    for (auto* button : dialog.findChildren<GW::CMediumNormalButton*>())
      if (button->text() == QString::fromUtf8(text)) QTest::mouseClick(button, Qt::LeftButton);
  }
  void clickTitle(int column) {
    const QHeaderView& header = *view.horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      {header.sectionViewportPosition(column) + header.sectionSize(column) / 2, 5});
  }
  /// Only rows whose name contains the text.
  void filterNames(const char* text) {
    view.setCurrentIndex(view.model()->index(0, 3));
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    const QPointer<QWidget> menu = QApplication::activePopupWidget();
    ASSERT_TRUE(menu);
    auto* const line = menu->findChild<QLineEdit*>();
    line->setText(QString::fromUtf8(text));
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&menu] { return menu.isNull(); }));
    QApplication::setActiveWindow(&dialog);
  }

  CSecuRepayComfirmDialog& dialog;
  QTableView& view;
};

/// Runs the dialog while the user acts, until it ends; an act that leaves it open fails.
int run(std::list<VN::CSecuRepayEntry>& entries, const std::function<void(CUser&)>& act) {
  const QPointer<CSecuRepayComfirmDialog> dialog = makeDialog(entries);
  QTimer::singleShot(0, dialog, [dialog, act] {
    CUser user(*dialog);
    act(user);
    if (!dialog || !dialog->isVisible()) return;
    ADD_FAILURE() << "the dialog stays open";
    dialog->reject();
  });
  const int result = dialog->exec();
  EXPECT_TRUE(dialog.isNull()) << "it deletes itself";
  delete dialog;
  return result;
}

}  // namespace

TEST(SecuRepayDialog, isAsHighAsItsEntriesNeedWithinLimits) {
  const struct {
    int entries;
    int lines;
  } cases[] = {{0, 12}, {3, 12}, {10, 12}, {11, 13}, {25, 27}, {40, 27}};
  for (const auto& one : cases) {
    auto entries = makeEntries(one.entries);
    const std::unique_ptr<CSecuRepayComfirmDialog> dialog(makeDialog(entries));
    auto* const table = dialog->findChild<GW::COddEvenRowTable*>();
    EXPECT_EQ(dialog->size(), QSize(900, table->itemHeight() * one.lines * 4 / 3 + 30)) << one.entries;
    EXPECT_EQ(table->rowCount(), one.entries);
    const int margins = 2 * GW::CCommonDialog::frameMargin();
    EXPECT_EQ(dialog->minimumSize(), QSize(460 + margins, 150 + margins + GW::CCommonDialog::titleHeight()));
    dialog->show();
    QApplication::processEvents();
    EXPECT_EQ(table->findChild<QTableView*>()->viewport()->height() >= one.entries * table->itemHeight(),
              one.entries <= 25)
        << "rows beyond the limit are scrolled to, others are not; " << one.entries;
  }
}

TEST(SecuRepayDialog, showsARowForEachEntry) {
  std::list<VN::CSecuRepayEntry> entries{makeEntry("SH", "600000", "浦发银行", 500, 300),
                                         makeEntry("SZ", "000001", "平安银行", 200, 900, '1')};
  const std::unique_ptr<CSecuRepayComfirmDialog> dialog(makeDialog(entries));
  dialog->setData(entries, nullptr);  // instead of the rows before
  const auto& table = *dialog->findChild<GW::COddEvenRowTable*>();
  const auto& model = *dialog->findChild<QTableView*>()->model();
  const char* const expected[] = {"账号 市场 代码 股票名称 头寸来源 交易类型 分配量 未还合约数量 当前拥股",
                                  "1001 SH 600000 浦发银行 普通 直接还券 300 300 500",
                                  "1001 SZ 000001 平安银行 专项 直接还券 200 900 200"};
  ASSERT_EQ(table.rowCount(), 2);
  for (int row = -1; row < 2; ++row) {
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column) {
      texts.append(row < 0 ? model.headerData(column, Qt::Horizontal).toString() : table.cellText(row, column));
      EXPECT_EQ(dialog->findChild<QTableView*>()->columnWidth(column), 84);
    }
    EXPECT_EQ(texts.join(QLatin1Char(' ')).toStdString(), expected[row + 1]);
  }
  EXPECT_EQ(table.sumText(COLUMN_VOLUME), QStringLiteral("500"));
  EXPECT_EQ(dialog->title(), QString::fromUtf8("批量还券确认"));
  const Qt::WindowFlags flags = dialog->windowFlags();
  EXPECT_EQ(flags & (Qt::WindowCloseButtonHint | Qt::WindowContextHelpButtonHint | Qt::WindowStaysOnTopHint),
            Qt::WindowStaysOnTopHint);
}

TEST(SecuRepayDialog, editedVolumesAreWrittenIntoTheirEntries) {
  // Four entries with volumes 300 100 400 200 of A, B, A, B. Acts: a digit begins an edit in that displayed row, the
  // rest is typed; s clicks the volume's title; a letter filters by name.
  const struct {
    const char* what;
    std::vector<const char*> acts;
    const char* volumes;
  } cases[] = {
      {"none", {}, "300 100 400 200"},
      {"a number", {"1:50"}, "300 50 400 200"},
      {"twice", {"1:50", "1:60"}, "300 60 400 200"},
      {"not a number", {"0:abc"}, "0 100 400 200"},
      {"nothing", {"0:"}, "300 100 400 200"},
      {"too large for a volume", {"0:99999999999"}, "0 100 400 200"},
      {"negative", {"3:-5"}, "300 100 400 -5"},
      {"above the holding", {"2:70000"}, "300 100 70000 200"},
      {"rising: 100 200 300 400", {"s", "0:1", "3:2"}, "300 1 2 200"},
      {"falling: 400 300 200 100", {"s", "s", "0:1"}, "300 100 1 200"},
      {"filtered: 100 200", {"B", "1:7"}, "300 100 400 7"},
      {"filtered and falling: 400 300", {"s", "s", "A", "1:7"}, "7 100 400 200"},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    std::list<VN::CSecuRepayEntry> entries{
        makeEntry("SH", "600001", "A", 300, 9000), makeEntry("SH", "600002", "B", 100, 9000),
        makeEntry("SZ", "000003", "A", 400, 9000), makeEntry("SZ", "000004", "B", 200, 9000)};
    const int result = run(entries, [&](CUser& user) {
      for (const char* act : one.acts) {
        if (*act == 's') {
          user.clickTitle(COLUMN_VOLUME);
        } else if (act[1] == ':') {
          user.type(*act - '0', act + 2);
          user.press(Qt::Key_Return);
          EXPECT_TRUE(user.dialog.isVisible()) << "Enter in an editor ends the edit, not the dialog";
        } else {
          user.filterNames(act);
        }
      }
      // The cells show what counts.
      const auto& table = *user.dialog.findChild<GW::COddEvenRowTable*>();
      QStringList shown;
      for (int row = 0; row < table.rowCount(); ++row) shown.append(table.cellText(row, COLUMN_VOLUME));
      EXPECT_EQ(shown.join(QLatin1Char(' ')).toStdString(), one.volumes);
      user.click("确定");
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(volumes(entries).toStdString(), one.volumes);
  }
}

TEST(SecuRepayDialog, endsByItsButtonsAndKeys) {
  const struct {
    const char* what;
    std::function<void(CUser&)> act;
    int result;
    const char* volumes;
  } cases[] = {
      {"OK", [](CUser& user) { user.click("确定"); }, 1, "100 200"},
      {"Enter", [](CUser& user) { user.press(Qt::Key_Return); }, 1, "100 200"},
      {"Cancel", [](CUser& user) { user.click("取消"); }, 0, "100 200"},
      {"Escape", [](CUser& user) { user.press(Qt::Key_Escape); }, 0, "100 200"},
      {"window system", [](CUser& user) { user.dialog.close(); }, 0, "100 200"},
      {"OK while typing",
       [](CUser& user) {
         user.type(0, "7");
         user.click("确定");
       },
       1, "7 200"},
      {"Escape while typing ends the edit first",
       [](CUser& user) {
         user.type(0, "7");
         user.press(Qt::Key_Escape);
         EXPECT_TRUE(user.dialog.isVisible());
         user.press(Qt::Key_Escape);
       },
       0, "100 200"},
  };
  for (const auto& one : cases) {
    auto entries = makeEntries(2);
    EXPECT_EQ(run(entries, one.act), one.result) << one.what;
    EXPECT_EQ(volumes(entries).toStdString(), one.volumes) << one.what;
  }
}

TEST(SecuRepayDialog, ignoresOtherColumnsAndRowsItDoesNotHave) {
  auto entries = makeEntries(2);
  const std::unique_ptr<CSecuRepayComfirmDialog> dialog(makeDialog(entries));
  const struct {
    GW::CPlainCell cell;
    const char* volumes;
  } cases[] = {{{0, 5}, "100 200"}, {{0, 7}, "100 200"}, {{2, 6}, "100 200"}, {{-1, 6}, "100 200"}, {{1, 6}, "100 9"}};
  for (const auto& one : cases) {
    GW::CPlainCell cell = one.cell;
    EXPECT_TRUE(dialog->handleEvent(GW::EventDialogCellEdited, 0, 0, QStringLiteral("9"), &cell));
    EXPECT_EQ(volumes(entries).toStdString(), one.volumes) << cell.row << ' ' << cell.column;
  }
  EXPECT_TRUE(dialog->handleEvent(GW::EventButtonClicked, 9, 0, QString(), nullptr));
  EXPECT_FALSE(dialog->handleEvent(GW::EventItemClicked, 0, 0, QString(), nullptr));
}
