#include "CDeskTest.h"

#include "CMainWindow.h"
#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "kit/CSignalCount.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/TraderCenter.h"
#include "runtime/CClientRuntime.h"
#include "vn/CCountDownButton.h"

#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QMenuBar>
#include <QTableWidget>
#include <QTest>

using kit::waitUntil;

DeskTest::DeskTest() = default;
DeskTest::~DeskTest() = default;

void DeskTest::SetUp() {
  const std::string database = m_folder.filePath(QStringLiteral("counter.db")).toStdString();
  const auto book = runtime::CClientRuntime::loadBook(SOURCE_DIR "/client/counter/sample_book", database, m_giveUp);
  ASSERT_TRUE(book.loaded) << book.errorText;
  // The shipped configuration, without the refresh lock.
  const QDir shipped(QStringLiteral(SOURCE_DIR "/client/desk/config"));
  const QStringList files = shipped.entryList(QDir::Files);
  for (const QString& name : files) ASSERT_TRUE(QFile::copy(shipped.filePath(name), m_folder.filePath(name)));
  QFile user(m_folder.filePath(QStringLiteral("user.toml")));
  ASSERT_TRUE(user.open(QIODevice::WriteOnly | QIODevice::Truncate));
  user.write("variant_code = 100\nquery_compact_interval = 0\n");
  user.close();
  open();
}

void DeskTest::open(const QString& layoutFile) {
  close();
  std::vector<std::string> errors;
  const std::string database = m_folder.filePath(QStringLiteral("counter.db")).toStdString();
  const std::string baskets = m_folder.filePath(QStringLiteral("baskets.json")).toStdString();
  auto client =
      runtime::CClientRuntime::open({m_folder.path().toStdString(), database, std::string(), baskets}, errors);
  ASSERT_TRUE(client) << errors.front();
  client->setCounterLatency(0);
  client->setCounterQuoteWalk(0, 1000);
  client->setCounterFillDelay(0);
  m_window = std::make_unique<CMainWindow>(layoutFile);
  m_window->show();
  m_window->startClient(std::move(client));
  m_combo = m_window->panel()->findChild<GW::CComboBox*>();
  m_refresh = m_window->panel()->findChild<VN::CCountDownButton*>();
  m_table = m_window->panel()->findChild<VN::CCompactsTable*>();
  // Five credit accounts log in by themselves; the sixth is logged out, the seventh trades ordinary stock.
  ASSERT_TRUE(waitUntil([this] { return m_combo->count() == 5; }));
  choose(EMPTY);
}

void DeskTest::close() { m_window.reset(); }

void DeskTest::choose(const char* key) {
  if (m_combo->currentKey() == QLatin1String(key)) return;
  const int index = m_combo->findData(QString::fromLatin1(key));
  ASSERT_GE(index, 0);
  kit::CSignalCount emptied(m_table, &VN::CCompactsTable::sigQueryData);
  m_combo->setCurrentIndex(index);
  ASSERT_TRUE(waitUntil([&emptied] { return emptied.count() > 0; }));
}

void DeskTest::refresh(int rows) {
  QTest::mouseClick(m_refresh, Qt::LeftButton);
  ASSERT_TRUE(waitUntil([this, rows] { return m_combo->isEnabled() && m_table->rowCount() == rows; }));
}

const QWidget& DeskTest::windowWidget() const { return *m_window; }

QWidget* DeskTest::findControl(const QWidget& parent, const QString& accessibleName) {
  const auto widgets = parent.findChildren<QWidget*>();
  for (QWidget* widget : widgets)
    if (widget->accessibleName() == accessibleName) return widget;
  return nullptr;
}

QDockWidget* DeskTest::dock(const char* name) const {
  return m_window->findChild<QDockWidget*>(QString::fromLatin1(name));
}

QWidget* DeskTest::openPanel(const char* menuText) {
  const auto docks = m_window->findChildren<QDockWidget*>();
  const auto actions = m_window->menuBar()->findChildren<QAction*>();
  for (QAction* action : actions)
    if (action->text() == QString::fromUtf8(menuText)) action->trigger();
  const auto now = m_window->findChildren<QDockWidget*>();
  for (QDockWidget* dock : now)
    if (!docks.contains(dock)) return dock->widget();
  return nullptr;
}

void DeskTest::raise(const char* dockName) {
  dock(dockName)->show();
  dock(dockName)->raise();
}

void DeskTest::chooseAtBroker(const char* key) {
  auto* accounts = control<QTableWidget>("柜台账号");
  accounts->clearSelection();
  for (int row = 0; row < accounts->rowCount(); ++row)
    if (accounts->item(row, 0)->data(Qt::UserRole) == QLatin1String(key)) accounts->selectRow(row);
  ASSERT_EQ(accounts->selectionModel()->selectedRows().size(), 1);
}

QString DeskTest::stateAtBroker(const char* key) const {
  const auto* accounts = control<QTableWidget>("柜台账号");
  for (int row = 0; row < accounts->rowCount(); ++row)
    if (accounts->item(row, 0)->data(Qt::UserRole) == QLatin1String(key)) return accounts->item(row, 1)->text();
  return QStringLiteral("no such account");
}

DeskTest::CAmounts DeskTest::shown() const {
  CAmounts amounts;
  for (int row = 0; row < m_table->rowCount(); ++row) {
    const auto compact = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(m_table->getData(row));
    amounts[compact->getKey()] = compact->unpaidAmount;
  }
  return amounts;
}

DeskTest::CAmounts DeskTest::stored(const char* key) {
  CAmounts amounts;
  const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
  for (const rdservice::IDataPtr& data : store->getData(rdservice::RecordStkUnClosedCompacts)) {
    const auto compact = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(data);
    amounts[compact->getKey()] = compact->unpaidAmount;
  }
  return amounts;
}

std::vector<std::string> DeskTest::storedKeys(const char* key, int recordType) {
  std::vector<std::string> keys;
  const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key);
  for (const rdservice::IDataPtr& data : store->getData(recordType)) keys.push_back(data->getKey());
  return keys;
}
