// Repay priorities in files, through the panel's buttons and the file dialogs.

#include "CPanelUnderTest.h"

#include "gw/column_delegates.h"
#include "kit/CExpectedBoxes.h"
#include "vn/CFileClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QTimer>

#include <functional>
#include <map>
#include <random>

namespace {

using kit::CTestRuntime;

const QString HINT = QStringLiteral("提示");

/// Answers the next file dialogs with a path; an empty one cancels.
class CFileChoice : public QObject {
 public:
  CFileChoice() { qApp->installEventFilter(this); }
  QString path;
  int asked = 0;
  std::function<void()> onShown;  ///< instead of an answer

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    auto* dialog = event->type() == QEvent::Show ? qobject_cast<QFileDialog*>(watched) : nullptr;
    if (dialog != nullptr)
      QTimer::singleShot(0, dialog, [this, dialog] {
        ++asked;
        if (onShown) return onShown();
        if (!path.isEmpty()) dialog->selectFile(path);
        QMetaObject::invokeMethod(dialog, path.isEmpty() ? "reject" : "accept");
      });
    return false;
  }
};

struct PriorityFiles : testing::Test {
  PriorityFiles() : p(runtime), edits(p.table->priorityEditDelegate()) {
    p.panel->findChild<GW::CRadioButtonGroup*>()->button(4)->click();
  }
  /// Shows compacts of two accounts; codes of six digits, some beginning with zeros.
  void show(int count) {
    std::vector<rdservice::IDataPtr> records[2];
    for (int i = 0; i < count; ++i) {
      const auto made = p.compact(i % 3 == 0 ? "3.1002" : "3.1001", "C" + std::to_string(i));
      made->code = QStringLiteral("%1").arg(i * 37 % 900000, 6, 10, QLatin1Char('0')).toStdString();
      made->exchangeId = i % 2 == 0 ? "SZ" : "SH";
      made->repayPriority = i % 4;
      records[i % 3 == 0 ? 1 : 0].push_back(made);
    }
    p.table->updateDatas(records[0], false);
    p.table->updateDatas(records[1], false);
    ASSERT_TRUE(kit::waitUntil([&] {
      p.table->updateTable();
      return p.table->isUpToDate();
    }));
    ASSERT_EQ(p.table->rowCount(), count);
  }
  void press(const char* text) {
    const auto buttons = p.panel->findChildren<GW::CSmallNoNormalButton*>();
    for (GW::CSmallNoNormalButton* button : buttons)
      if (button->text() == QString::fromUtf8(text)) return button->click();  // which may take the panel with it
  }
  void exportTo(const QString& path, const QString& answer = QStringLiteral("导出成功!")) {
    choice.path = path;
    if (!answer.isEmpty()) boxes.expect(HINT, answer, QMessageBox::Ok);
    press("导出优先级");
  }
  void importFrom(const QString& path, const QString& answer = QStringLiteral("导入数据成功!")) {
    choice.path = path;
    if (!answer.isEmpty()) boxes.expect(HINT, answer, QMessageBox::Ok);
    press("导入优先级");
  }
  QString write(const char* name, const QByteArray& content) const {
    QFile file(runtime.path(QString::fromUtf8(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    return file.fileName();
  }
  /// The non-empty texts of the edit store, by key.
  std::map<QString, QString> typed() const {
    std::map<QString, QString> texts;
    for (const rdservice::IDataPtr& record : p.table->getAllDatas()) {
      const QString key = QString::fromStdString(record->getKey());
      if (!edits->itemText(key).isEmpty()) texts[key] = edits->itemText(key);
    }
    return texts;
  }

  CTestRuntime runtime;
  CPanelUnderTest p;
  GW::CBaseTableColumnLineeditDelegate* edits;
  CFileChoice choice;
  kit::CExpectedBoxes boxes;
};

TEST_F(PriorityFiles, ExportThenImportRestoresEveryPriority) {
  show(10000);
  std::mt19937 random(11);
  for (const rdservice::IDataPtr& record : p.table->getAllDatas())
    if (random() % 3 != 0)
      edits->setItemText(QString::fromStdString(record->getKey()), QString::number(random() % 1000000));
  const std::map<QString, QString> before = typed();
  ASSERT_GT(before.size(), 5000U);
  p.table->setSortColumn(kit::columnOf(*p.table, "证券代码"), Qt::DescendingOrder);
  for (const char* name : {"a.csv", "a.xls", "a.xlsx"}) {
    SCOPED_TRACE(name);
    const QString path = runtime.path(QString::fromUtf8(name));
    exportTo(path);
    edits->reset();
    ASSERT_TRUE(typed().empty());
    importFrom(path);
    EXPECT_EQ(typed(), before);
  }
  EXPECT_EQ(VN::getOpenFileDir(), QFileInfo(runtime.path(QStringLiteral("a.csv"))).absolutePath());
  VN::setOpenFileDir(runtime.path(QStringLiteral("gone/a.csv")));
  EXPECT_NE(VN::getOpenFileDir(), runtime.path(QStringLiteral("gone")));
}

TEST_F(PriorityFiles, TheCsvFileHoldsTheDisplayedRows) {
  show(3);
  edits->setItemText(QString::fromStdString(p.table->getData(1)->getKey()), QStringLiteral("12"));
  const QString path = runtime.path(QStringLiteral("b.csv"));
  exportTo(path);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  std::string expected = "\xEF\xBB\xBF资金账号,交易所,证券代码,开仓日期,委托编号,偿还优先级,偿还优先级设置\n";
  for (int row = 0; row < 3; ++row) {
    const auto& c = dynamic_cast<const rdservice::CStkUnClosedCompacts&>(*p.table->getData(row));
    expected += c.accountInfo->accountId + "," + c.exchangeId.str() + "," + c.code.str() + "," + c.fieldA +
                ",2460000," + std::to_string(c.repayPriority) + (row == 1 ? ",12\n" : ",\n");
  }
  EXPECT_EQ(file.readAll().toStdString(), expected);
}

TEST_F(PriorityFiles, NamesThatAreNoContainerAreNotWritten) {
  boxes.expect(HINT, QStringLiteral("没有可导出的规则!"), QMessageBox::Ok);
  press("导出优先级");
  boxes.expect(HINT, QStringLiteral("当前不可导入!"), QMessageBox::Ok);
  press("导入优先级");
  EXPECT_EQ(choice.asked, 0);
  show(2);
  for (const char* name : {"rules.txt", "rules.CSV", "rules"}) {
    const QString path = runtime.path(QString::fromUtf8(name));
    exportTo(path, QStringLiteral("导出失败,部分数据缺失关键字段"));
    EXPECT_FALSE(QFile::exists(path)) << name;
  }
  exportTo(QString(), QString());
  importFrom(QString(), QString());
  EXPECT_GE(choice.asked, 5);
}

TEST_F(PriorityFiles, LinesAreTakenSkippedOrRejected) {
  show(4);  // C1 SH 000037 and C2 SZ 000074 of 1001, C0 SZ 000000 and C3 SH 000111 of 1002
  struct CCase {
    const char* line;
    const char* number;  ///< of the compact that has the text then
    const char* text;
  };
  const auto textOf = [&](const std::string& number) {
    for (const rdservice::IDataPtr& record : p.table->getAllDatas())
      if (dynamic_cast<const rdservice::CStkUnClosedCompacts&>(*record).fieldA == number)
        return edits->itemText(QString::fromStdString(record->getKey())).toStdString();
    return std::string("?");
  };
  for (const CCase& c : std::vector<CCase>{{"1001,SH,37,C1,2460000,0,5", "C1", "5"},
                                           {"1001,SH,000037,C1,2460000,0,05", "C1", "05"},
                                           {"1001,SH,9000037,C1,2460000,0,6", "C1", "6"},
                                           {"1001,SH,37,C1,2460000,0,7,a,b", "C1", "7"},
                                           {"1001,SH,37,C1,2460000,0,8,a", "C1", "7"},
                                           {"1001,SH,37,C1,2460000,0", "C1", "7"},
                                           {"1001,SH,37,C1,2460000,0,00", "C1", "7"},
                                           {"1001,SH,37,C1,2460000,0,1000000", "C1", "7"},
                                           {" 1001,SH,37,C1,2460000,0,9", "C1", "7"},
                                           {",SH,37,C1,2460000,0,9", "C1", "7"},
                                           {"1001,SH,37,C1,2460001,0,9", "C1", "7"},  // no such compact: shows nowhere
                                           {"1002,SH,37,C1,2460000,0,9", "C1", "7"},
                                           {"1002,SZ,0,C0,2460000,0,9", "C0", "9"},
                                           {"1001,SH,37,C1,2460000,0,0", "C1", "0"},
                                           {"1001,SH,37,C1,2460000,0,", "C1", ""}}) {
    SCOPED_TRACE(c.line);
    // Whether anything stands in the store decides what the user is told; the second row's keeps it from being empty.
    edits->setItemText(QString::fromStdString(p.table->getData(1)->getKey()), QStringLiteral("1"));
    importFrom(write("lines.csv", QByteArray("资金账号,交易所\n") + c.line + "\n"));
    EXPECT_EQ(textOf(c.number), c.text);
  }
}

TEST_F(PriorityFiles, GarbageSaysSoAndKeepsWhatWasTyped) {
  show(2);
  importFrom(write("garbage.xlsx", QByteArray("PK\x03\x04") + QByteArray(3000, '\x7f')),
             QStringLiteral("导入数据有误!"));
  importFrom(write("header.csv", "资金账号,交易所,证券代码,开仓日期,委托编号,偿还优先级,偿还优先级设置\n"),
             QStringLiteral("导入数据有误!"));
  const QString key = QString::fromStdString(p.table->getData(0)->getKey());
  edits->setItemText(key, QStringLiteral("3"));
  importFrom(write("garbage.xls", QByteArray(5000, '\0')));
  EXPECT_EQ(edits->itemText(key), QStringLiteral("3"));
}

TEST_F(PriorityFiles, ThePanelMayGoWhileADialogIsOpen) {
  show(2);
  choice.onShown = [this] { p.panel.reset(); };
  press("导出优先级");
  EXPECT_EQ(choice.asked, 1);
}

}  // namespace
