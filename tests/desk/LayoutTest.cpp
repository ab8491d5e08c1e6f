// The layout file: what it keeps, and what becomes of a damaged one.

#include "CDeskLayout.h"
#include "CDeskTest.h"
#include "CLayoutKeeper.h"

#include "CMainWindow.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "vn/ITradeDockableWidget.h"

#include <QDockWidget>
#include <QFile>
#include <QListWidget>
#include <QMainWindow>

#include <memory>

namespace {

using kit::waitUntil;

class CTestPanel : public VN::ITradeDockableWidget {
 public:
  CTestPanel(const char* type, int id, QWidget* parent)
      : ITradeDockableWidget(QString::fromLatin1(type), id, {QString::fromLatin1(type), {}, {}}, parent) {}
  void setParam(const QString& param) override { m_param = param; }
  QString param() const override { return m_param; }

 private:
  QString m_param = QStringLiteral("first");
};

/// A window with a docked panel and one more dock, whose layout is kept.
class CTestWindow : public QMainWindow {
 public:
  CTestWindow(const QString& path, const char* type, int id)
      : m_panel(type, id, this), m_keeper(std::make_unique<CLayoutKeeper>(*this, path)) {
    addDock("panel", &m_panel, Qt::TopDockWidgetArea);
    m_other = addDock("other", new QWidget, Qt::BottomDockWidgetArea);
    show();
    m_keeper->restore({&m_panel}, [this](const QString& text) { m_reports.append(text); });
  }
  ~CTestWindow() override { m_keeper.reset(); }

  CTestPanel& panel() { return m_panel; }
  QDockWidget& other() { return *m_other; }
  CLayoutKeeper& keeper() { return *m_keeper; }
  const QStringList& reports() const { return m_reports; }

 private:
  QDockWidget* addDock(const char* name, QWidget* widget, Qt::DockWidgetArea area) {
    auto* dock = new QDockWidget(this);
    dock->setObjectName(QString::fromLatin1(name));
    dock->setWidget(widget);
    addDockWidget(area, dock);
    return dock;
  }

  CTestPanel m_panel;
  QDockWidget* m_other = nullptr;
  QStringList m_reports;
  std::unique_ptr<CLayoutKeeper> m_keeper;
};

QByteArray readFile(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

void writeFile(const QString& path, const QByteArray& text) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
  ASSERT_EQ(file.write(text), text.size());
}

TEST(Layout, ComesBackAndOtherPanelsKeepTheirs) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("layout.json"));
  {
    CTestWindow window(path, "cpt", 1);
    EXPECT_EQ(window.panel().param(), QStringLiteral("first")) << "there was no file";
    window.panel().setParam(QStringLiteral("宽|\"2\"|\n"));
    window.other().hide();
    EXPECT_TRUE(waitUntil([&] { return readFile(path).contains("\\\"2\\\""); })) << "not written while it runs";
  }
  { CTestWindow(path, "cpt", 2).panel().setParam(QStringLiteral("second")); }
  { CTestWindow(path, "xyz", 1).other().show(); }
  const struct {
    const char* type;
    int id;
    const char* param;
  } cases[] = {{"cpt", 1, "宽|\"2\"|\n"}, {"cpt", 2, "second"}, {"xyz", 1, "first"}, {"xyz", 2, "first"}};
  for (const auto& c : cases) {
    CTestWindow window(path, c.type, c.id);
    EXPECT_EQ(window.panel().param(), QString::fromUtf8(c.param)) << c.type << c.id;
    EXPECT_FALSE(window.other().isHidden());
    EXPECT_EQ(window.reports(), QStringList());
  }
  CTestWindow(path, "cpt", 1).other().hide();
  EXPECT_TRUE(CTestWindow(path, "cpt", 1).other().isHidden());
}

TEST(Layout, WhatIsNoLayoutIsReportedAndKeptAside) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("layout.json"));
  CDeskLayout layout;
  layout.params[{QStringLiteral("cpt"), QStringLiteral("1")}] = QStringLiteral("p");
  const QByteArray good = layoutText(layout);
  layout.state = "no dock state";
  const QByteArray badState = layoutText(layout);
  const auto changed = [&](const char* from, const char* to) {
    QByteArray text = good;
    EXPECT_TRUE(text.contains(from)) << from;
    return text.replace(from, to);
  };
  const struct {
    QByteArray text;
    const char* problem;
  } cases[] = {
      {"", "第 0 字节"},
      {"[1, 2]", "format"},
      {"{\"format\": \"other\", \"version\": 1}", "format"},
      {good.left(good.size() / 2), "字节"},
      {changed("\"version\": 1", "\"version\": 2"), "version"},
      {changed("\"panels\": [", "\"panel\": ["), "panels"},
      {changed("\"window\": {", "\"window\": 1, \"w\": {"), "window"},
      {changed("\"state\": \"", "\"state\": \"*"), "window.state"},
      {changed("\"geometry\"", "\"geo\""), "window.geometry"},
      {changed("\"param\": \"p\"", "\"param\": 5"), "panels[0].param"},
      {changed("\"panels\": [", "\"panels\": [{\"type\": \"cpt\", \"id\": \"1\", \"param\": \"\"},"), "panels[1]"},
      {badState, "window.state"},
      {QByteArray(5 << 20, ' '), "字节"},
  };
  int kept = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.left(2000).toStdString());
    writeFile(path, c.text);
    {
      CTestWindow window(path, "cpt", 1);
      ASSERT_EQ(window.reports().size(), 1);
      EXPECT_TRUE(window.reports().front().contains(QString::fromUtf8(c.problem))) << qPrintable(window.reports()[0]);
      EXPECT_TRUE(window.reports().front().contains(path));
      window.panel().setParam(QStringLiteral("new"));
    }
    const QString aside =
        ++kept == 1 ? path + QStringLiteral(".damaged") : path + QStringLiteral(".damaged-%1").arg(kept);
    EXPECT_EQ(readFile(aside), c.text);
    CTestWindow again(path, "cpt", 1);
    EXPECT_EQ(again.panel().param(), QStringLiteral("new"));
    EXPECT_EQ(again.reports(), QStringList());
  }
}

TEST(Layout, AFileThatCannotBeWrittenIsReportedOnce) {
  const QTemporaryDir folder;
  CTestWindow window(folder.filePath(QStringLiteral("absent/layout.json")), "cpt", 1);
  for (const char* param : {"a", "b"}) {
    window.panel().setParam(QString::fromLatin1(param));
    window.keeper().save();
  }
  ASSERT_EQ(window.reports().size(), 1);
  EXPECT_TRUE(window.reports().front().contains(QStringLiteral("absent")));
}

TEST_F(DeskTest, ComesBackAsItWasLeft) {
  const QString path = m_folder.filePath(QStringLiteral("layout.json"));
  open(path);
  const QString first = m_window->panel()->param();
  m_table->setColumnWidth(1, 321);
  dock("log")->hide();
  dock("orders")->hide();
  m_window->tabifyDockWidget(dock("messages"), dock("baskets"));
  m_window->addDockWidget(Qt::LeftDockWidgetArea, dock("broker"));
  m_window->resize(1100, 830);
  const QString left = m_window->panel()->param();
  ASSERT_NE(left, first);

  open(path);
  EXPECT_EQ(m_window->panel()->param(), left);
  EXPECT_EQ(m_window->size(), QSize(1100, 830));
  EXPECT_TRUE(dock("log")->isHidden());
  EXPECT_FALSE(dock("messages")->isHidden());
  EXPECT_TRUE(dock("orders")->isHidden());
  EXPECT_FALSE(dock("positions")->isHidden());
  EXPECT_EQ(m_window->tabifiedDockWidgets(dock("messages")), QList<QDockWidget*>{dock("baskets")});
  EXPECT_EQ(m_window->dockWidgetArea(dock("broker")), Qt::LeftDockWidgetArea);
  close();

  // A file of a desk that had fewer docks.
  QMainWindow older;
  for (const char* name : {"compacts1", "broker", "messages", "log"}) {
    auto* docked = new QDockWidget(&older);
    docked->setObjectName(QString::fromLatin1(name));
    older.addDockWidget(Qt::BottomDockWidgetArea, docked);
  }
  CDeskLayout old;
  ASSERT_EQ(readLayoutText(readFile(path), old), QString());
  old.state = older.saveState(1);
  writeFile(path, layoutText(old));
  open(path);
  for (const char* name : {"positions", "orders", "baskets"}) {
    EXPECT_FALSE(dock(name)->isHidden()) << name;
    EXPECT_TRUE(m_window->tabifiedDockWidgets(dock("log")).contains(dock(name))) << name;
  }
  close();

  // A string that is none of the panel's leaves the panel as it is at first.
  CDeskLayout layout;
  ASSERT_EQ(readLayoutText(readFile(path), layout), QString());
  ASSERT_EQ(layout.params.size(), 1U);
  layout.params.begin()->second = QStringLiteral("something else|x");
  writeFile(path, layoutText(layout));
  open(path);
  EXPECT_EQ(m_window->panel()->param(), first);
  close();

  writeFile(path, "{");
  open(path);
  EXPECT_EQ(m_window->panel()->param(), first);
  const auto* messages = control<QListWidget>("消息");
  EXPECT_TRUE(messages->item(0)->text().contains(path)) << qPrintable(messages->item(0)->text());
  EXPECT_EQ(readFile(path + QStringLiteral(".damaged")), "{");
}

}  // namespace
