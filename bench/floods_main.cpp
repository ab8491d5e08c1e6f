// A panel on a large account, sorted by what is owed and in use, while the counter pushes far more than anybody can
// read, through the real data centre, subscription, strand and window. Once a minute the strand is kept busy, as a long
// fold would. At the end the table must show what the data centre holds; a difference fails.
//
// The pushes are made here: the embedded counter writes each change to its database first, and hardly brings about as
// many. Everything else of it is as it is.

#include "CBenchClient.h"
#include "bench_options.h"
#include "stolen_time.h"

#include "compacts/tables/CCompactsTable.h"
#include "counter/ICounter.h"
#include "gw/IBaseHpfTableModel.h"
#include "gw/controls.h"
#include "net/RPCEngine.h"
#include "rdservice/TraderCenter.h"
#include "utils/CEventLoopMeter.h"
#include "utils/background.h"
#include "vn/CCountDownButton.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <ctime>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr int METER_MS = 2;
constexpr int USE_TICK_MS = 50;
constexpr int SCROLLED_ROWS = 97;
constexpr int SAMPLE = 100;  ///< rows that are looked at to tell how many the view changes
constexpr int MINUTE_MS = 60000;
constexpr double GAP_GOAL_MS = 16;
constexpr double MEMORY_GOAL = 1.05;
constexpr std::chrono::milliseconds PUSH_TICK(1);
constexpr double CENTS = 100;
constexpr const char* SORT_TITLE = "未还金额";

/// The embedded counter, which besides pushes changes of random compacts of the account at a steady rate, one by one.
class CFloodingCounter final : public counter::ICounter {
 public:
  explicit CFloodingCounter(std::unique_ptr<counter::ICounter> embedded) : m_embedded(std::move(embedded)) {}
  ~CFloodingCounter() override { endFlood(); }

  void start(counter::ICounterSink& sink) override {
    m_sink = &sink;
    m_embedded->start(sink);
  }
  void request(const rdservice::IDataPtr& request, counter::CCounterReply reply) override {
    m_embedded->request(request, std::move(reply));
  }
  void stop() override {
    endFlood();
    m_embedded->stop();
  }

  void beginFlood(double perSecond) {
    m_thread = std::thread([this, perSecond] { push(perSecond); });
  }
  void endFlood() {
    m_isEnding = true;
    if (m_thread.joinable()) m_thread.join();
  }
  std::int64_t pushed() const { return m_pushed; }

 private:
  using CClock = std::chrono::steady_clock;

  void push(double perSecond) {
    utils::workInBackground();
    const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(CBenchClient::account());
    std::vector<std::string> keys;
    for (const auto& record : store->getData(rdservice::RecordStkUnClosedCompacts)) keys.push_back(record->getKey());
    std::mt19937 random(1);
    const auto begin = CClock::now();
    for (auto next = begin; !m_isEnding; std::this_thread::sleep_until(next += PUSH_TICK)) {
      const auto due =
          static_cast<std::int64_t>(std::chrono::duration<double>(CClock::now() - begin).count() * perSecond);
      for (; m_pushed < due && !m_isEnding; ++m_pushed) {
        const auto changed = boost::static_pointer_cast<rdservice::CStkUnClosedCompacts>(
            store->getData(rdservice::RecordStkUnClosedCompacts, keys[random() % keys.size()])->copy());
        const double share = static_cast<double>(random() % 1001) / 1000 - 0.5;  // of a hundredth
        changed->unpaidAmount = std::round(changed->unpaidAmount * (1 + share / 100) * CENTS) / CENTS + 1 / CENTS;
        m_sink->onPush({changed});
      }
    }
  }

  const std::unique_ptr<counter::ICounter> m_embedded;
  counter::ICounterSink* m_sink = nullptr;
  std::atomic<bool> m_isEnding{false};
  std::atomic<std::int64_t> m_pushed{0};
  std::thread m_thread;
};

/// Counts the rows that the view changes, by a sample of them: each time that it has changed any.
class CViewCount : public QObject {
 public:
  explicit CViewCount(VN::CCompactsTable& table) : m_table(table) {
    const int step = std::max(table.rowCount() / SAMPLE, 1);
    for (int row = 0; row < table.rowCount(); row += step)
      m_seen.emplace_back(table.getData(row)->getKey(), table.getData(row)->version());
    connect(table.getModel(), &QAbstractItemModel::layoutChanged, this, [this] { look(); });
  }
  double takeChanged() {
    return static_cast<double>(std::exchange(m_changed, 0)) * m_table.rowCount() / static_cast<double>(m_seen.size());
  }

 private:
  void look() {
    for (auto& [key, version] : m_seen) {
      const std::uint64_t shown = m_table.getData(m_table.rowOfKey(key))->version();
      if (shown != version) ++m_changed;
      version = shown;
    }
  }

  VN::CCompactsTable& m_table;
  std::vector<std::pair<std::string, std::uint64_t>> m_seen;  ///< by key: the version that it showed last
  std::int64_t m_changed = 0;
};

/// The most that the GUI thread works before its event loop turns: unlike a gap, it tells nothing of the times when
/// another process has the core.
class CWorkMeter : public QObject {
 public:
  CWorkMeter() : m_before(worked()) { startTimer(METER_MS, Qt::PreciseTimer); }
  double longestMs() const { return m_longest; }

 protected:
  void timerEvent(QTimerEvent*) override {
    const double now = worked();
    m_longest = std::max(m_longest, now - m_before);
    m_before = now;
  }

 private:
  static double worked() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  }

  double m_before;
  double m_longest = 0;
};

double residentMb() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes / 1024;
  }
  return 0;
}

void holdStrand(int milliseconds) {
  net::RPCEngine::instance()->getStrand("hpfmodel")->post([milliseconds] {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  });
}

int fail(const std::string& why) {
  fmt::print(stderr, "bench_floods: {}\n", why);
  return 1;
}

struct COptions {
  int rows;
  int minutes;
  double perMinute;
  int holdMs;
};

/// One minute's line; the longest gap in milliseconds.
double flood(const CBenchClient& desk, const CFloodingCounter& counter, CViewCount& view, int minute, int holdMs) {
  const std::int64_t before = counter.pushed();
  desk.panel().takePushLoad();
  view.takeChanged();
  utils::CEventLoopMeter meter(METER_MS, nullptr);
  const CWorkMeter work;
  const double processor = CBenchClient::processorMs();
  const double stolen = stolenMs();
  QTimer::singleShot(MINUTE_MS / 2, &meter, [holdMs] { holdStrand(holdMs); });
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < MINUTE_MS) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  const VN::CPushLoad load = desk.panel().takePushLoad();
  fmt::print("{:6} {:10} {:13.0f} {:13} {:7} {:14} {:9.1f} ms {:10.1f} ms {:8.1f} {:8.1f} % {:6.1f} %\n", minute,
             counter.pushed() - before, view.takeChanged(), load.mostWaiting, load.folded, meter.missedFrames(),
             meter.longestGap(), work.longestMs(), residentMb(),
             (CBenchClient::processorMs() - processor) / static_cast<double>(timer.elapsed()) * 100,
             (stolenMs() - stolen) / static_cast<double>(timer.elapsed()) * 100);
  std::fflush(stdout);
  return meter.longestGap();
}

int run(const COptions& options) {
  CFloodingCounter* counter = nullptr;
  const CBenchClient desk({options.rows, 0, false, [&](std::unique_ptr<counter::ICounter> embedded) {
                             auto flooding = std::make_unique<CFloodingCounter>(std::move(embedded));
                             counter = flooding.get();
                             return flooding;
                           }});
  if (!desk.error().empty()) return fail(desk.error());
  auto& table = *desk.panel().findChild<VN::CCompactsTable*>();
  const auto& combo = *desk.panel().findChild<GW::CComboBox*>();
  QTest::mouseClick(desk.panel().findChild<VN::CCountDownButton*>(), Qt::LeftButton);
  if (!CBenchClient::wait([&] { return combo.isEnabled() && table.rowCount() == options.rows; }))
    return fail("the query brought no rows");
  int column = table.columnCount() - 1;
  while (column >= 0 && table.columnTitle(column) != QString::fromUtf8(SORT_TITLE)) --column;
  if (column < 0) return fail("no column to sort by");
  table.setSortColumn(column, Qt::DescendingOrder);

  auto* const bar = table.findChild<QAbstractScrollArea*>()->verticalScrollBar();
  QTimer user;  // somebody scrolls
  QObject::connect(&user, &QTimer::timeout, bar,
                   [bar] { bar->setValue((bar->value() + SCROLLED_ROWS) % std::max(bar->maximum(), 1)); });
  user.start(USE_TICK_MS);
  CViewCount view(table);
  fmt::print("{} rows, sorted, in use; strand busy for {} ms each minute; {:.1f} MB before the first push\n",
             options.rows, options.holdMs, residentMb());
  fmt::print(
      "minute     pushed  rows changed  most waiting  folded  missed frames  longest gap  longest work       MB  "
      "processor   stolen\n");
  std::fflush(stdout);

  counter->beginFlood(options.perMinute * 1000 / MINUTE_MS);
  double longestGap = 0;
  double firstMb = 0;
  for (int minute = 1; minute <= options.minutes; ++minute) {
    longestGap = std::max(longestGap, flood(desk, *counter, view, minute, options.holdMs));
    if (minute == 1) firstMb = residentMb();
  }
  counter->endFlood();

  const bool agrees = CBenchClient::wait([&] {
    table.updateTable();
    return table.isUpToDate() && CBenchClient::isSameAsStored(table);
  });
  const double growth = residentMb() / firstMb;
  fmt::print("longest gap {:.1f} ms, goal {} ms: {}\n", longestGap, GAP_GOAL_MS,
             longestGap <= GAP_GOAL_MS ? "met" : "MISSED");
  fmt::print("memory at the end {:+.1f} % of the first minute's, goal +{:.0f} %: {}\n", (growth - 1) * 100,
             (MEMORY_GOAL - 1) * 100, growth <= MEMORY_GOAL ? "met" : "MISSED");
  fmt::print("table and data centre: {}\n", agrees ? "the same" : "DIFFERENT");
  return agrees ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::vector<int> given =
      numbersGiven(application, {{"rows", "compacts of the account", 100000},
                                 {"minutes", "that it lasts", 1},
                                 {"rate", "pushes a minute", 1000000},
                                 {"hold", "ms that the strand is busy, once a minute", 1000}});
  return run({given[0], given[1], double(given[2]), given[3]});
}
