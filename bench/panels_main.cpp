// Two panels and one inside an order panel on the same account: what they cost while nothing happens, and how long the
// event loop stands still while the counter pushes and another account logs in and out. At the end all three must show
// what the data centre holds; a difference fails.

#include "CBenchClient.h"
#include "bench_options.h"

#include "compacts/panel_ids.h"
#include "compacts/tables/CCompactsTable.h"
#include "rdservice/TraderCenter.h"
#include "utils/CEventLoopMeter.h"
#include "vn/CCountDownButton.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <fmt/format.h>

#include <vector>

namespace {

constexpr int METER_MS = 2;
constexpr int IDLE_METER_MS = 1000;
constexpr int PUSH_TICK_MS = 20;
constexpr int LOGIN_TICK_MS = 400;
constexpr double GAP_GOAL_MS = 16;
constexpr double IDLE_GOAL = 0.02;  // of one core

struct CPhase {
  double longestGapMs;
  double processorShare;  ///< of one core
};

CPhase measure(int seconds, int meterMs) {
  utils::CEventLoopMeter meter(meterMs, nullptr);
  const double before = CBenchClient::processorMs();
  QElapsedTimer timer;
  timer.start();
  QEventLoop loop;  // waits for events: polling would count
  QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
  loop.exec();
  return {meter.longestGap(), (CBenchClient::processorMs() - before) / static_cast<double>(timer.elapsed())};
}

int fail(const std::string& why) {
  fmt::print(stderr, "bench_panels: {}\n", why);
  return 1;
}

int run(int rows, int seconds, int rate) {
  const CBenchClient desk({rows, 0, false});
  if (!desk.error().empty()) return fail(desk.error());
  const auto account =
      rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(CBenchClient::account())->getAccountInfo();
  VN::CCompactsPanel second(2, nullptr, VN::ModeIndependent);
  VN::CCompactsPanel inner(3, nullptr, VN::ModeOrderPanel);
  inner.setAccount(account->getKey(), true, true);
  std::vector<VN::CCompactsTable*> tables;
  for (VN::CCompactsPanel* panel : {&desk.panel(), &second, &inner}) {
    panel->resize(1200, 500);
    panel->show();
    panel->requestAccount(*account);
    tables.push_back(panel->findChild<VN::CCompactsTable*>());
    QTest::mouseClick(panel->findChild<VN::CCountDownButton*>(), Qt::LeftButton);
    if (!CBenchClient::wait([&] { return tables.back()->rowCount() == rows && tables.back()->isUpToDate(); }))
      return fail("a query brought no rows");
  }

  const CPhase idle = measure(seconds, IDLE_METER_MS);
  fmt::print("3 panels, {} rows each, idle {} s: processor {:.2f} % of a core, goal {:.0f} %: {}\n", rows, seconds,
             idle.processorShare * 100, IDLE_GOAL * 100, idle.processorShare <= IDLE_GOAL ? "met" : "MISSED");

  QTimer pushes;
  QObject::connect(&pushes, &QTimer::timeout, &pushes,
                   [&] { desk.client().changeSomeCompacts(CBenchClient::account(), rate * PUSH_TICK_MS / 1000); });
  QTimer logins;
  QObject::connect(&logins, &QTimer::timeout, &logins, [&, login = false]() mutable {
    const QList<VN::CAccountPtr> accounts = VN::getUserConfig()->getAccountDatas();
    for (const VN::CAccountPtr& other : accounts)
      if (other->getKey() != account->getKey()) VN::CTradeClient::instance()->setLogin(other->getKey(), login);
    login = !login;
  });
  pushes.start(PUSH_TICK_MS);
  logins.start(LOGIN_TICK_MS);
  const CPhase busy = measure(seconds, METER_MS);
  pushes.stop();
  logins.stop();
  fmt::print("{} pushes/s, accounts logging in and out: longest stall {:.1f} ms, goal {} ms: {}; processor {:.1f} %\n",
             rate, busy.longestGapMs, GAP_GOAL_MS, busy.longestGapMs <= GAP_GOAL_MS ? "met" : "MISSED",
             busy.processorShare * 100);

  const bool agree = CBenchClient::wait([&] {
    for (VN::CCompactsTable* table : tables) {
      table->updateTable();
      if (!table->isUpToDate() || !CBenchClient::isSameAsStored(*table)) return false;
    }
    return true;
  });
  fmt::print("all tables and the data centre: {}\n", agree ? "the same" : "DIFFERENT");
  return agree ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::vector<int> given = numbersGiven(
      application,
      {{"rows", "compacts of the account", 5000}, {"seconds", "of each phase", 10}, {"rate", "pushes a second", 200}});
  return run(given[0], given[1], given[2]);
}
