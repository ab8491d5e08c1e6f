// The panel on a large account, used while the counter pushes: how long the event loop stands still without pushes and
// with them, in turn in one run, on the real counter, data centre and window. At the end the table must show what the
// data centre holds; a difference fails.

#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "counter/CBookGenerator.h"
#include "gw/controls.h"
#include "rdservice/TraderCenter.h"
#include "runtime/CClientRuntime.h"
#include "utils/CEventLoopMeter.h"
#include "vn/CCountDownButton.h"
#include "vn/CTradeClient.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <functional>

namespace {

using rdservice::IDataPtr;

constexpr const char* ACCOUNT = "3.60010001";  // the book's large one
constexpr int METER_MS = 2;
constexpr int PUSH_TICK_MS = 20;
constexpr int USE_TICK_MS = 50;
constexpr int USES_PER_SORT = 20;
constexpr double GAP_GOAL_MS = 16;
constexpr int PATIENCE_MS = 60000;

/// Processes events until `isDone` says so, looking at least every so often; false when that takes too long.
bool wait(const std::function<bool()>& isDone) {
  QTimer looks;
  looks.start(PUSH_TICK_MS);
  QElapsedTimer timer;
  timer.start();
  while (!isDone()) {
    if (timer.elapsed() > PATIENCE_MS) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

double processorMs() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Somebody at the window: scrolls, moves the current row, ticks rows, now and then sorts by another column.
class CUser : public QObject {
 public:
  explicit CUser(VN::CCompactsTable& table)
      : m_table(table), m_bar(table.findChild<QAbstractScrollArea*>()->verticalScrollBar()) {
    startTimer(USE_TICK_MS);
  }

 protected:
  void timerEvent(QTimerEvent*) override {
    ++m_uses;
    m_bar->setValue((m_bar->value() + 997) % std::max(m_bar->maximum(), 1));
    if (m_table.rowCount() > 0) m_table.selectRow((m_uses * 7919) % m_table.rowCount());
    if (m_uses % USES_PER_SORT == 0)
      m_table.setSortColumn((m_uses / USES_PER_SORT) % m_table.columnCount(),
                            m_uses % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
  }

 private:
  VN::CCompactsTable& m_table;
  QScrollBar* m_bar;
  int m_uses = 0;
};

struct CPhase {
  double longestGapMs;
  double processorShare;  ///< of one core
};

CPhase use(VN::CCompactsTable& table, runtime::CClientRuntime& client, int seconds, int pushesPerSecond) {
  CUser user(table);
  QTimer pushes;
  double due = 0;
  QObject::connect(&pushes, &QTimer::timeout, &pushes, [&] {
    due += pushesPerSecond * PUSH_TICK_MS / 1000.0;
    if (due < 1) return;
    client.changeSomeCompacts(ACCOUNT, static_cast<int>(due));
    due -= static_cast<int>(due);
  });
  if (pushesPerSecond > 0) pushes.start(PUSH_TICK_MS);
  utils::CEventLoopMeter meter(METER_MS, nullptr);
  const double before = processorMs();
  QElapsedTimer timer;
  timer.start();
  wait([&] { return timer.elapsed() >= seconds * 1000; });
  return {meter.longestGap(), (processorMs() - before) / static_cast<double>(timer.elapsed())};
}

/// Whether every row is as the data centre holds it, and no compact is missing.
bool isSameAsStored(const VN::CCompactsTable& table) {
  const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(ACCOUNT);
  for (int row = 0; row < table.rowCount(); ++row) {
    const IDataPtr record = table.getData(row);
    if (record != store->getData(rdservice::RecordStkUnClosedCompacts, record->getKey())) return false;
  }
  return store->getData(rdservice::RecordStkUnClosedCompacts).size() == static_cast<std::size_t>(table.rowCount());
}

bool writeConfig(const QString& folder) {
  const QDir shipped(QStringLiteral(SOURCE_DIR "/client/desk/config"));
  const QStringList files = shipped.entryList(QDir::Files);
  for (const QString& name : files)
    if (!QFile::copy(shipped.filePath(name), folder + QLatin1Char('/') + name)) return false;
  QFile user(folder + QStringLiteral("/user.toml"));
  return user.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
         user.write("variant_code = 100\nquery_compact_interval = 0\n") > 0;
}

int fail(const std::string& why) {
  fmt::print(stderr, "bench_pushes: {}\n", why);
  return 1;
}

int run(int rows, int seconds, int rate) {
  QTemporaryDir folder;
  const std::string path = folder.path().toStdString();
  if (!folder.isValid() || !writeConfig(folder.path())) return fail("cannot write to " + path);
  const std::string error = counter::CBookGenerator({rows, 0, 1}).write(path + "/book");
  if (!error.empty()) return fail(error);
  const std::atomic<bool> giveUp{false};
  const auto book = runtime::CClientRuntime::loadBook(path + "/book", path + "/counter.db", giveUp);
  if (!book.loaded) return fail(book.errorText);
  std::vector<std::string> errors;
  auto client = runtime::CClientRuntime::open({path, path + "/counter.db", std::string()}, errors);
  if (!client) return fail(errors.front());
  client->setCounterLatency(0);
  VN::CCompactsPanel panel(1, nullptr, 0);
  QObject::connect(VN::CTradeClient::instance(), &VN::CTradeClient::sigLoginStatus, &panel,
                   [&panel](const rdservice::CAccountInfoPtr& account) { panel.requestAccount(*account); });
  client->start();
  panel.resize(1280, 760);
  panel.show();
  auto& combo = *panel.findChild<GW::CComboBox*>();
  auto& table = *panel.findChild<VN::CCompactsTable*>();
  const QString account = QString::fromLatin1(ACCOUNT);
  if (!wait([&] { return combo.findData(account) >= 0; })) return fail("the account did not log in");
  combo.setCurrentIndex(combo.findData(account));
  panel.requestAccount(
      *rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(ACCOUNT)->getAccountInfo());

  utils::CEventLoopMeter meter(METER_MS, nullptr);
  QElapsedTimer timer;
  timer.start();
  QTest::mouseClick(panel.findChild<VN::CCountDownButton*>(), Qt::LeftButton);
  if (!wait([&] { return combo.isEnabled() && table.rowCount() == rows; })) return fail("the query brought no rows");
  fmt::print("{} rows queried and shown in {} ms, event loop still for {:.1f} ms at most\n", rows, timer.elapsed(),
             meter.longestGap());

  use(table, *client, 2, 0);  // every column has been sorted by once
  const CPhase quiet = use(table, *client, seconds, 0);
  const CPhase busy = use(table, *client, seconds, rate);
  fmt::print("in use {} s each      no pushes   {} pushes/s   ratio   goal\n", seconds, rate);
  fmt::print("longest stall        {:8.1f} ms   {:8.1f} ms   {:5.2f}   {} ms: {}\n", quiet.longestGapMs,
             busy.longestGapMs, busy.longestGapMs / quiet.longestGapMs, GAP_GOAL_MS,
             busy.longestGapMs <= GAP_GOAL_MS ? "met" : "MISSED");
  fmt::print("processor             {:8.1f} %    {:8.1f} %   {:5.2f}\n", quiet.processorShare * 100,
             busy.processorShare * 100, busy.processorShare / quiet.processorShare);

  const bool agrees = wait([&] {
    table.updateTable();
    return table.isUpToDate() && isSameAsStored(table);
  });
  fmt::print("table and data centre: {}\n", agrees ? "the same" : "DIFFERENT");
  client->stop();
  return agrees ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QCommandLineParser parser;
  parser.addHelpOption();
  const QCommandLineOption rows(QStringLiteral("rows"), QStringLiteral("compacts of the account"), QStringLiteral("N"),
                                QStringLiteral("100000"));
  const QCommandLineOption seconds(QStringLiteral("seconds"), QStringLiteral("of each phase"), QStringLiteral("N"),
                                   QStringLiteral("10"));
  const QCommandLineOption rate(QStringLiteral("rate"), QStringLiteral("pushes a second"), QStringLiteral("N"),
                                QStringLiteral("200"));
  parser.addOptions({rows, seconds, rate});
  parser.process(application);
  return run(parser.value(rows).toInt(), parser.value(seconds).toInt(), parser.value(rate).toInt());
}
