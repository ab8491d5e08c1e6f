// The panel on a large account, used while the counter pushes: how long the event loop stands still without pushes and
// with them, in turn in one run, on the real counter, data centre and window. At the end the table must show what the
// data centre holds; a difference fails.

#include "CBenchClient.h"
#include "bench_options.h"

#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "rdservice/TraderCenter.h"
#include "utils/CEventLoopMeter.h"
#include "vn/CCountDownButton.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int METER_MS = 2;
constexpr int PUSH_TICK_MS = 20;
constexpr int USE_TICK_MS = 50;
constexpr int USES_PER_SORT = 20;
constexpr double GAP_GOAL_MS = 16;

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
    client.changeSomeCompacts(CBenchClient::account(), static_cast<int>(due));
    due -= static_cast<int>(due);
  });
  if (pushesPerSecond > 0) pushes.start(PUSH_TICK_MS);
  utils::CEventLoopMeter meter(METER_MS, nullptr);
  const double before = CBenchClient::processorMs();
  QElapsedTimer timer;
  timer.start();
  CBenchClient::wait([&] { return timer.elapsed() >= seconds * 1000; });
  return {meter.longestGap(), (CBenchClient::processorMs() - before) / static_cast<double>(timer.elapsed())};
}

int fail(const std::string& why) {
  fmt::print(stderr, "bench_pushes: {}\n", why);
  return 1;
}

int run(int rows, int seconds, int rate) {
  const CBenchClient desk({rows, 0, false});
  if (!desk.error().empty()) return fail(desk.error());
  auto& table = *desk.panel().findChild<VN::CCompactsTable*>();
  const auto& combo = *desk.panel().findChild<GW::CComboBox*>();

  utils::CEventLoopMeter meter(METER_MS, nullptr);
  QElapsedTimer timer;
  timer.start();
  QTest::mouseClick(desk.panel().findChild<VN::CCountDownButton*>(), Qt::LeftButton);
  if (!CBenchClient::wait([&] { return combo.isEnabled() && table.rowCount() == rows; }))
    return fail("the query brought no rows");
  fmt::print("{} rows queried and shown in {} ms, event loop still for {:.1f} ms at most\n", rows, timer.elapsed(),
             meter.longestGap());

  use(table, desk.client(), 2, 0);  // every column has been sorted by once
  const CPhase quiet = use(table, desk.client(), seconds, 0);
  const CPhase busy = use(table, desk.client(), seconds, rate);
  fmt::print("in use {} s each      no pushes   {} pushes/s   ratio   goal\n", seconds, rate);
  fmt::print("longest stall        {:8.1f} ms   {:8.1f} ms   {:5.2f}   {} ms: {}\n", quiet.longestGapMs,
             busy.longestGapMs, busy.longestGapMs / quiet.longestGapMs, GAP_GOAL_MS,
             busy.longestGapMs <= GAP_GOAL_MS ? "met" : "MISSED");
  fmt::print("processor             {:8.1f} %    {:8.1f} %   {:5.2f}\n", quiet.processorShare * 100,
             busy.processorShare * 100, busy.processorShare / quiet.processorShare);

  const bool agrees = CBenchClient::wait([&] {
    table.updateTable();
    return table.isUpToDate() && CBenchClient::isSameAsStored(table);
  });
  fmt::print("table and data centre: {}\n", agrees ? "the same" : "DIFFERENT");
  return agrees ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::vector<int> given = numbersGiven(application, {{"rows", "compacts of the account", 100000},
                                                            {"seconds", "of each phase", 10},
                                                            {"rate", "pushes a second", 200}});
  return run(given[0], given[1], given[2]);
}
