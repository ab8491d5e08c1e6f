#include "many_tables.h"

#include "CBenchClient.h"
#include "COurTable.h"
#include "bench_screen.h"
#include "bench_times.h"
#include "table_round.h"

#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsTable.h"
#include "rdservice/TraderCenter.h"
#include "vn/CCountDownButton.h"

#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <vector>

namespace {

using CRecords = std::vector<rdservice::IDataPtr>;

constexpr int TABLES = 20;
constexpr int ROWS = 10000;
constexpr int PUSHES = 60;
/// One table's rows stay in the caches between two pushes, those of twenty do not.
constexpr double CACHE_FACTOR = 2.5;

// --- tables on the screen ---

/// Sorted, with records of its own: nothing of them is in a cache because another table has just used it.
class CLoadedTable {
 public:
  CLoadedTable(int pushes, unsigned seed) {
    const CRecords records = makeRecords(ROWS, seed);
    m_table.sort(round_columns::of(round_columns::FILE_ID_AMOUNT), Qt::AscendingOrder);
    m_table.load(records);
    m_pushes = makePushes(records, pushes, seed);
  }

  /// Milliseconds of the next push, without painting.
  double pushNext() { return m_table.push(m_pushes[m_next++]); }

 private:
  COurTable m_table;
  std::vector<CRecords> m_pushes;
  std::size_t m_next = 0;
};

// --- hidden panels ---

constexpr int PERIOD_MS = 50;
constexpr int QUIET_PERIODS = 10;
constexpr double QUIET_MS = 5;  ///< of the GUI thread in so many periods: the timers of the panels, nothing else
constexpr int MOST_WINDOWS = 120;
constexpr double NOTICEABLE_US = 5;  ///< of the GUI thread, for a hidden panel and a push

/// Milliseconds of processor time that this thread has used.
double threadMs() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// What the GUI thread works in so many periods, in each of which the counter changes so many compacts.
double guiMs(runtime::CClientRuntime& client, int periods, int changed) {
  QEventLoop loop;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
    if (periods-- == 0)
      loop.quit();
    else if (changed > 0)
      client.changeSomeCompacts(CBenchClient::account(), changed);
  });
  timer.start(PERIOD_MS);
  const double before = threadMs();
  loop.exec();
  return threadMs() - before;
}

/// Milliseconds of the GUI thread for a push, beyond those of the timers.
double guiMsOfPush(runtime::CClientRuntime& client) {
  const double idle = guiMs(client, PUSHES, 0);
  return (guiMs(client, PUSHES, BENCH_PUSH) - idle) / PUSHES;
}

class CPanels {
 public:
  explicit CPanels(const CBenchClient& desk) : m_desk(desk) {}

  /// Opens a panel, which then shows every compact of the account.
  bool open() {
    m_panels.push_back(std::make_unique<VN::CCompactsPanel>(int(m_panels.size()) + 2, nullptr, VN::ModeIndependent));
    return show(*m_panels.back());
  }
  bool show(VN::CCompactsPanel& panel) {
    const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(CBenchClient::account());
    panel.resize(1200, 500);
    panel.show();
    panel.requestAccount(*store->getAccountInfo());
    m_tables.push_back(panel.findChild<VN::CCompactsTable*>());
    return query(panel);
  }
  static bool query(VN::CCompactsPanel& panel) {
    const auto* const table = panel.findChild<VN::CCompactsTable*>();
    QTest::mouseClick(panel.findChild<VN::CCountDownButton*>(), Qt::LeftButton);
    return CBenchClient::wait([table] { return table->rowCount() == ROWS && table->isUpToDate(); });
  }
  /// Milliseconds of the GUI thread for a query of the first panel, which alone is shown for it; negative on failure.
  double guiMsOfQuery() {
    m_desk.panel().show();
    if (!settle()) return -1;
    const double before = threadMs();
    if (!query(m_desk.panel()) || !settle()) return -1;
    const double ms = threadMs() - before;
    m_desk.panel().hide();
    return settle() ? ms : -1;
  }
  bool setVisible(bool isVisible) {
    m_desk.panel().setVisible(isVisible);
    for (const auto& panel : m_panels) panel->setVisible(isVisible);
    return settle();
  }
  /// Whether the tables hold what the data centre does, shown or not.
  bool areHeldAsStored() const {
    const auto store = rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(CBenchClient::account());
    return CBenchClient::wait([&] {
      return std::all_of(m_tables.begin(), m_tables.end(), [&](const VN::CCompactsTable* table) {
        const CRecords held = table->getAllDatas();
        return held.size() == ROWS && std::all_of(held.begin(), held.end(), [&](const rdservice::IDataPtr& record) {
                 return record == store->getData(record->getBaseId(), record->getKey());
               });
      });
    });
  }
  bool isEvery(bool upToDate) const {
    return std::all_of(m_tables.begin(), m_tables.end(),
                       [=](const VN::CCompactsTable* table) { return table->isUpToDate() == upToDate; });
  }

 private:
  /// Waits for what a query sets going: the rows of its reply in every panel's table, the countdown of its button.
  bool settle() {
    m_desk.panel().findChild<VN::CCountDownButton*>()->unlock();
    for (const auto& panel : m_panels) panel->findChild<VN::CCountDownButton*>()->unlock();
    for (int i = 0; i < MOST_WINDOWS; ++i)
      if (guiMs(m_desk.client(), QUIET_PERIODS, 0) < QUIET_MS) return true;
    return false;
  }

  const CBenchClient& m_desk;
  std::vector<std::unique_ptr<VN::CCompactsPanel>> m_panels;
  std::vector<VN::CCompactsTable*> m_tables;  ///< the first panel's too
};

bool fail(const char* why) {
  fmt::print(stderr, "bench_growth: {}\n", why);
  return false;
}

}  // namespace

void measureShownTables() {
  constexpr int WARM_PUSHES = 3;  ///< after the others' turn: the last one finds the caches as a table alone does
  CLoadedTable alone(PUSHES * WARM_PUSHES, TABLES + 1);
  std::vector<std::unique_ptr<CLoadedTable>> tables;
  for (unsigned i = 0; i < TABLES; ++i) tables.push_back(std::make_unique<CLoadedTable>(PUSHES, i + 1));
  std::vector<double> all, one;
  for (int push = 0; push < PUSHES; ++push) {  // in turn, so that what else the machine does falls on both alike
    QCoreApplication::processEvents();
    double ms = 0;
    for (const auto& table : tables) ms += table->pushNext();
    all.push_back(ms + msOf(paintDue));
    for (int i = 0; i < WARM_PUSHES; ++i) {
      QCoreApplication::processEvents();
      ms = alone.pushNext() + msOf(paintDue);
    }
    one.push_back(ms);
  }
  const double expected = TABLES * median(one);
  const double ratio = median(all) / expected;
  fmt::print("{} shown tables of {} rows, a push of {} into each, painted: {:.2f} ms (worst {:.2f})\n", TABLES, ROWS,
             BENCH_PUSH, median(all), largest(all));
  fmt::print("  {} times one table alone: {:.2f} ms; {:.2f} times as much, limit {}: {}\n", TABLES, expected, ratio,
             CACHE_FACTOR, ratio <= CACHE_FACTOR ? "met" : "NOT MET");
}

bool measureHiddenPanels() {
  constexpr const char* NO_ROWS = "a query brought no rows";
  constexpr const char* NO_QUIET = "the panels do not come to rest";
  const CBenchClient desk({ROWS, 0, false});
  if (!desk.error().empty()) return fail(desk.error().c_str());
  CPanels panels(desk);
  if (!panels.show(desk.panel())) return fail(NO_ROWS);
  if (!panels.setVisible(false)) return fail(NO_QUIET);
  const double firstQuery = panels.guiMsOfQuery();
  const double firstPush = guiMsOfPush(desk.client());
  for (int i = 0; i < TABLES; ++i)
    if (!panels.open()) return fail(NO_ROWS);
  if (!panels.setVisible(false)) return fail(NO_QUIET);
  const double query = panels.guiMsOfQuery();
  if (firstQuery < 0 || query < 0) return fail(NO_ROWS);
  const double hidden = guiMsOfPush(desk.client());
  if (!panels.areHeldAsStored()) return fail("a hidden table does not hold what was pushed");
  const bool isUntouched = panels.isEvery(false);
  const double before = threadMs();
  if (!panels.setVisible(true) || !panels.isEvery(true)) return fail("a table does not show what was pushed");
  const double showing = threadMs() - before;
  const double shown = guiMsOfPush(desk.client());

  const double hiddenUs = (hidden - firstPush) * 1e3 / TABLES;
  fmt::print("{} hidden panels of {} rows, GUI thread for each panel\n", TABLES, ROWS);
  fmt::print("  a push of {} while hidden: {:.1f} us, limit {} us: {}; rows taken meanwhile: {}\n", BENCH_PUSH,
             hiddenUs, NOTICEABLE_US, hiddenUs <= NOTICEABLE_US && isUntouched ? "met" : "NOT MET",
             isUntouched ? "none" : "SOME");
  fmt::print("  a push of {} while shown: {:.1f} us; shown again after {} pushes: {:.2f} ms\n", BENCH_PUSH,
             (shown - firstPush) * 1e3 / TABLES, PUSHES, showing / TABLES);
  fmt::print("  a query by another panel of the same account while hidden: {:.2f} ms\n", (query - firstQuery) / TABLES);
  return true;
}
