// The baskets below the compacts: shown, changed by clicks, kept.

#include "CDeskTest.h"

#include "CMainWindow.h"
#include "gw/CSimpleInputDialog.h"
#include "kit/CExpectedBoxes.h"
#include "rdservice/CPriceData.h"
#include "rdservice/rdservice_enums.h"
#include "runtime/CClientRuntime.h"
#include "vn/CUserConfig.h"
#include "vn/basket_file.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

using kit::waitUntil;

double lastPrice(const std::string& code) {
  return rdservice::CPriceDataHelper::getLastPrice(rdservice::PriceSourceLast, "SH", code);
}

class Baskets : public DeskTest {
 protected:
  void press(const char* accessibleName) {
    auto* button = control<QPushButton>(accessibleName);
    ASSERT_TRUE(button->isVisible() && button->isEnabled()) << accessibleName;
    QTest::mouseClick(button, Qt::LeftButton);
  }

  /// Clicks a row of the list.
  void choose(int row) {
    auto* names = control<QListWidget>("篮子");
    const QPoint place = names->visualItemRect(names->item(row)).center();
    QTest::mouseClick(names->viewport(), Qt::LeftButton, Qt::NoModifier, place);
  }

  QPoint cellPlace(int row, int column) const {
    const auto* lines = control<QTableWidget>("篮子明细");
    return lines->visualItemRect(lines->item(row, column)).center();
  }

  /// Double-clicks the line's volume, types over it, and presses Return.
  void typeVolume(int row, const char* text) {
    auto* lines = control<QTableWidget>("篮子明细");
    lines->scrollToItem(lines->item(row, VOLUME));
    QTest::mouseClick(lines->viewport(), Qt::LeftButton, Qt::NoModifier, cellPlace(row, VOLUME));
    QTest::mouseDClick(lines->viewport(), Qt::LeftButton, Qt::NoModifier, cellPlace(row, VOLUME));
    auto* editor = lines->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->selectAll();
    QTest::keyClicks(editor, QString::fromUtf8(text));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([lines] { return lines->viewport()->findChild<QLineEdit*>() == nullptr; }));
  }

  void rename(const char* name) {
    QTimer::singleShot(0, m_window.get(), [name] {
      auto* dialog = qobject_cast<GW::CSimpleInputDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(dialog, nullptr);
      dialog->setText(QString::fromUtf8(name));
      QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
    });
    press("重命名篮子");
  }

  void deleteLines(const std::vector<int>& rows) {
    auto* lines = control<QTableWidget>("篮子明细");
    lines->clearSelection();
    for (const int row : rows)
      QTest::mouseClick(lines->viewport(), Qt::LeftButton, Qt::ControlModifier, cellPlace(row, 0));
    press("删除选中的证券");
  }

  /// "name: code volume, ...; name: ..." as the file has it.
  QString written() const {
    QFile file(m_folder.filePath(QStringLiteral("baskets.json")));
    std::vector<VN::CBasketPtr> read;
    if (!file.open(QIODevice::ReadOnly) || !VN::readBasketText(file.readAll(), read).isEmpty()) return {};
    QStringList baskets;
    for (const VN::CBasketPtr& basket : read) {
      QStringList lines;
      for (const auto& line : qAsConst(basket->stocks))
        lines.append(line.code + QStringLiteral(" %1").arg(line.volume));
      baskets.append(basket->name() + QStringLiteral(": ") + lines.join(QStringLiteral(", ")));
    }
    return baskets.join(QStringLiteral("; "));
  }

  /// The same as the pane shows it, basket by basket.
  QString displayed() {
    QStringList baskets;
    auto* names = control<QListWidget>("篮子");
    auto* lines = control<QTableWidget>("篮子明细");
    for (int basket = 0; basket < names->count(); ++basket) {
      choose(basket);
      QStringList texts;
      for (int row = 0; row < lines->rowCount(); ++row) {
        const auto volume = lines->item(row, VOLUME)->data(Qt::EditRole).toLongLong();
        texts.append(lines->item(row, 1)->text() + QStringLiteral(" %1").arg(volume));
        const double amount = static_cast<double>(volume) *
                              rdservice::CPriceDataHelper::getLastPrice(rdservice::PriceSourceLast,
                                                                        lines->item(row, 0)->text().toStdString(),
                                                                        lines->item(row, 1)->text().toStdString());
        EXPECT_NEAR(numberOf(lines->item(row, AMOUNT)->text()), amount, 0.0051);
      }
      baskets.append(names->item(basket)->text() + QStringLiteral(": ") + texts.join(QStringLiteral(", ")));
    }
    return baskets.join(QStringLiteral("; "));
  }

  /// As a panel makes one.
  static void make(const char* name, const std::vector<const char*>& codes) {
    const auto basket = VN::getUserConfig()->getBasketSettingNoCreate(QString::fromUtf8(name));
    basket->setName(QString::fromUtf8(name));
    for (const char* code : codes)
      basket->stocks.append(
          {QStringLiteral("SH"), QString::fromLatin1(code), QStringLiteral("n"), rdservice::OperationSell, 1000, 0});
    EXPECT_EQ(VN::getUserConfig()->saveBaskets(), QString());
  }

  static constexpr int VOLUME = 4;
  static constexpr int AMOUNT = 5;
};

TEST_F(Baskets, AreRenamedEditedAndDeletedByClicksAndKept) {
  raise("baskets");
  EXPECT_FALSE(control<QListWidget>("篮子")->isVisible()) << "there is none yet";
  make("甲", {"600000", "600009", "600010"});
  make("乙", {"600000"});
  make("丙", {});
  ASSERT_TRUE(control<QListWidget>("篮子")->isVisible());
  ASSERT_TRUE(waitUntil([] { return lastPrice("600010") > 0; }));

  kit::CExpectedBoxes boxes;
  const auto expect = [&](const char* title, const char* text, QMessageBox::StandardButton answer) {
    boxes.expect(QString::fromUtf8(title), QString::fromUtf8(text), answer);
  };
  const struct {
    const char* what;
    int basket;
    std::function<void()> act;
    const char* after;
  } steps[] = {
      {"nothing", 0, [] {}, "甲: 600000 1000, 600009 1000, 600010 1000; 乙: 600000 1000; 丙: "},
      {"renamed", 1, [&] { rename(" 丁 "); }, "甲: 600000 1000, 600009 1000, 600010 1000; 丁: 600000 1000; 丙: "},
      {"name taken", 0,
       [&] {
         expect("重命名篮子", "已有名为“丁”的篮子", QMessageBox::Ok);
         rename("丁");
       },
       "甲: 600000 1000, 600009 1000, 600010 1000; 丁: 600000 1000; 丙: "},
      {"a volume", 0, [&] { typeVolume(1, "12345"); },
       "甲: 600000 1000, 600009 12345, 600010 1000; 丁: 600000 1000; 丙: "},
      {"no volume", 0, [&] { typeVolume(0, "-0x7"); },
       "甲: 600000 7, 600009 12345, 600010 1000; 丁: 600000 1000; 丙: "},
      {"lines kept", 0,
       [&] {
         expect("删除证券", "确定从篮子“甲”中删除选中的 1 行？", QMessageBox::No);
         deleteLines({0});
       },
       "甲: 600000 7, 600009 12345, 600010 1000; 丁: 600000 1000; 丙: "},
      {"lines deleted", 0,
       [&] {
         expect("删除证券", "确定从篮子“甲”中删除选中的 2 行？", QMessageBox::Yes);
         deleteLines({0, 2});
       },
       "甲: 600009 12345; 丁: 600000 1000; 丙: "},
      {"kept", 2,
       [&] {
         expect("删除篮子", "确定删除篮子“丙”？", QMessageBox::No);
         press("删除篮子");
       },
       "甲: 600009 12345; 丁: 600000 1000; 丙: "},
      {"deleted", 1,
       [&] {
         expect("删除篮子", "确定删除篮子“丁”？", QMessageBox::Yes);
         press("删除篮子");
       },
       "甲: 600009 12345; 丙: "},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.what);
    choose(step.basket);
    step.act();
    EXPECT_EQ(written(), QString::fromUtf8(step.after));
    EXPECT_EQ(displayed(), QString::fromUtf8(step.after));
  }

  // Amounts follow the quotes.
  choose(0);
  auto* lines = control<QTableWidget>("篮子明细");
  const QString amount = lines->item(0, AMOUNT)->text();
  m_window->client().setCounterQuoteWalk(1000, 10);
  EXPECT_TRUE(waitUntil([&] { return lines->item(0, AMOUNT)->text() != amount; }));

  open();
  raise("baskets");
  ASSERT_TRUE(waitUntil([] { return lastPrice("600009") > 0; }));
  choose(1);
  choose(0);
  EXPECT_EQ(displayed(), QStringLiteral("甲: 600009 12345; 丙: "));
  for (const char* name : {"甲", "丙"}) VN::getUserConfig()->removeBasketSetting(QString::fromUtf8(name));
  EXPECT_FALSE(control<QListWidget>("篮子")->isVisible());
}

TEST_F(Baskets, ChangesThatCannotBeWrittenAreTold) {
  raise("baskets");
  make("甲", {"600000"});
  const QString path = m_folder.filePath(QStringLiteral("baskets.json"));
  ASSERT_TRUE(QFile::remove(path) && QDir().mkdir(path));  // a folder where the file belongs
  const QString problem = VN::getUserConfig()->saveBaskets();
  ASSERT_TRUE(problem.contains(path));
  auto* names = control<QListWidget>("篮子");
  const struct {
    const char* what;
    std::function<void(kit::CExpectedBoxes&)> act;
    QString shown;  ///< the first basket; the change holds as long as the desk is open
  } steps[] = {
      {"renamed", [&](kit::CExpectedBoxes&) { rename("乙"); }, QStringLiteral("乙")},
      {"deleted",
       [&](kit::CExpectedBoxes& boxes) {
         boxes.expect(QStringLiteral("删除篮子"), QStringLiteral("确定删除篮子“乙”？"), QMessageBox::Yes);
         press("删除篮子");
       },
       QString()},
  };
  for (const auto& step : steps) {
    SCOPED_TRACE(step.what);
    kit::CExpectedBoxes boxes;
    choose(0);
    step.act(boxes);
    boxes.expect(QStringLiteral("警告"), problem, QMessageBox::Ok);
    QCoreApplication::processEvents();
    EXPECT_EQ(names->count() > 0 ? names->item(0)->text() : QString(), step.shown);
  }
}

TEST_F(Baskets, WhatWasWrongWithTheFileStandsAmongTheMessages) {
  close();
  QFile file(m_folder.filePath(QStringLiteral("baskets.json")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  file.write("{");
  file.close();
  open();
  EXPECT_TRUE(control<QListWidget>("消息")->item(0)->text().contains(file.fileName()));
}

}  // namespace
