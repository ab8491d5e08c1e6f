// The way of a reply to the screen: the panel on a real counter queries a large account again and again, and what is
// told is when the reply was there, when its rows were handed over, when all of them stood on the screen, and how long
// the event loop stood still meanwhile. Then the same functions run one by one on the same data, a stage each.

#include "CBenchClient.h"
#include "bench_options.h"

#include "compacts/priority/CBaseTableColumnRepayPriorityTextDelegate.h"
#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "compacts/tables/compact_fold.h"
#include "counter/CSqlConnection.h"
#include "counter/CSqlTable.h"
#include "counter/record_kinds.h"
#include "counter/sql_rows.h"
#include "gw/CTableBatch.h"
#include "gw/controls.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/data_centre_factory.h"
#include "rdservice/reply_marks.h"
#include "utils/CEventLoopMeter.h"
#include "utils/CLogCenter.h"
#include "vn/CCountDownButton.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QSqlQuery>
#include <QTest>

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;

constexpr int METER_MS = 2;
constexpr double AFTERMATH_MS = 100;  // what is left to be painted has been painted by then
constexpr int SMALL_ROWS = 100000;
constexpr int MOST_ROWS = 999999;  // a query asks for no more
constexpr double SMALL_GAP_GOAL_MS = 16;
constexpr double LARGE_GAP_GOAL_MS = 50;
constexpr double REST_MS = 300;
constexpr std::size_t FEW = 100;    // stay in the cache
constexpr int SORTED_BY = 1391609;  // an amount

double nowMs() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Milliseconds of processor time of this thread: of a stage by itself, whatever else the machine does.
double usedMs() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// Knows when the table's rows were painted last, and how long that took.
class CPaintClock : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    if (receiver != viewport || event->type() != QEvent::Paint) return QApplication::notify(receiver, event);
    const double begin = usedMs();
    const bool result = QApplication::notify(receiver, event);
    lastPaintMs = usedMs() - begin;
    paintedAt = nowMs();
    if (onPainted) onPainted();
    return result;
  }

  const QObject* viewport = nullptr;
  std::function<void()> onPainted;
  double paintedAt = 0;
  double lastPaintMs = 0;
};

/// How far a query has come, in ms from the click.
struct CTimes {
  double reply = 0;       ///< the table's handler has the records
  double handedOver = 0;  ///< they are stored, made into rows and handed over
  double first = 0;       ///< the first rows are painted
  double all = 0;         ///< all rows are displayed in their order
  double screen = 0;      ///< nothing was left to be painted
  double gap = 0;         ///< the longest time that the event loop did not turn
};

struct CDesk {
  VN::CCompactsTable& table() const { return *client.panel().findChild<VN::CCompactsTable*>(); }

  CBenchClient client;
  CPaintClock& clock;
  int rows;
};

/// What follows a log-in is over when the process has rested for a while.
void settle() {
  double used = CBenchClient::processorMs();
  double since = nowMs();
  CBenchClient::wait([&] {
    if (nowMs() < since + REST_MS) return false;
    const double now = CBenchClient::processorMs();
    const bool isAtRest = now - used < REST_MS / 10;
    used = now;
    since = nowMs();
    return isAtRest;
  });
}

/// False when the rows did not come.
bool query(CDesk& desk, CTimes& times) {
  const VN::CCompactsTable& table = desk.table();
  const auto& combo = *desk.client.panel().findChild<GW::CComboBox*>();
  std::atomic<double> reply{0}, handedOver{0};
  const auto listener = utils::CLogCenter::instance()->addListener([&](const utils::CLogLine& line) {
    if (line.message.rfind("[unclosed compact] query success", 0) == 0) reply = nowMs();
  });
  const auto emitted = QObject::connect(
      &table, &VN::CCompactsTable::sigQueryData, &table,
      [&] {
        if (reply > 0 && handedOver == 0) handedOver = nowMs();
      },
      Qt::DirectConnection);
  double first = 0;
  desk.clock.onPainted = [&] {
    if (reply > 0 && first == 0 && table.rowCount() > 0) first = desk.clock.paintedAt;
  };
  utils::CEventLoopMeter meter(METER_MS, nullptr);
  const double click = nowMs();
  QTest::mouseClick(desk.client.panel().findChild<VN::CCountDownButton*>(), Qt::LeftButton);
  double all = 0;
  const bool isDone = CBenchClient::wait([&] {
    if (all == 0 && handedOver > 0 && table.isUpToDate() && table.rowCount() == desk.rows) all = nowMs();
    return all > 0 && first > 0 && combo.isEnabled() && nowMs() > all + AFTERMATH_MS;
  });
  desk.clock.onPainted = nullptr;
  QObject::disconnect(emitted);
  times = {reply - click, handedOver - click,           first - click,
           all - click,   desk.clock.paintedAt - click, meter.longestGap()};
  return isDone;
}

/// Times of the stages, each as often as there are rounds.
class CStages {
 public:
  template <class F>
  void run(const char* name, F stage) {
    const double begin = usedMs();
    stage();
    add(name, usedMs() - begin);
  }
  void add(const char* name, double ms) {
    if (m_times.find(name) == m_times.end()) m_names.emplace_back(name);
    m_times[name].push_back(ms);
  }
  double last(const char* name) const { return m_times.at(name).back(); }
  void print(int rows) const {
    for (const std::string& name : m_names)
      fmt::print("  {:<44}{:9.1f} ms {:9.0f} ns a record\n", name, median(m_times.at(name)),
                 median(m_times.at(name)) * 1e6 / rows);
  }

 private:
  std::vector<std::string> m_names;
  std::map<std::string, std::vector<double>, std::less<>> m_times;
};

/// A table of the same kind as the panel's, which lets its rows be made as replies make them.
class CProbe : public VN::CCompactsTable {
 public:
  CProbe() : CCompactsTable(0, VN::TableUnclosedCompacts, rdservice::RecordStkUnClosedCompacts, nullptr) {
    for (int column = 0; column < columnCount(); ++column)
      if (auto* label = dynamic_cast<GW::CBaseTableColumnRepayPriorityTextDelegate*>(columnDelegate(column)))
        m_label = label;
  }

  bool write(const std::vector<IDataPtr>& records) {
    GW::CTableBatch batch(*this, shownScope());
    for (const IDataPtr& record : records) {
      updateData(record, false);
      if (m_label == nullptr) continue;
      const auto& compact = static_cast<const CStkUnClosedCompacts&>(*record);
      const QString key = QString::fromStdString(compact.getKey());
      m_label->setPriority(key, compact.repayPriority);
      m_label->setItemText(key, compact.repayPriority != 0 ? QString::number(compact.repayPriority) : QString());
    }
    return batch.commit();
  }

 private:
  GW::CBaseTableColumnRepayPriorityTextDelegate* m_label = nullptr;
};

int fail(const std::string& why) {
  fmt::print(stderr, "bench_path: {}\n", why);
  return 1;
}

/// The stages one by one.
int runStages(const CDesk& desk, int rounds) {
  const auto account =
      rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(CBenchClient::account())->getAccountInfo();
  const counter::CSqlConnection connection(desk.client.database());
  if (!connection.isOpen()) return fail(connection.error());
  constexpr int TYPE = rdservice::RecordStkUnClosedCompacts;
  const QString condition =
      QStringLiteral("WHERE \"account\" = ? ORDER BY \"position_string\" LIMIT %1").arg(MOST_ROWS);
  const QString key = QString::fromStdString(account->getKey());
  const auto size = static_cast<std::size_t>(desk.rows);
  CStages stages;
  bool isComplete = true;
  for (int round = 0; round < rounds; ++round) {
    stages.run("SQL: stepping, and fetching of the fields", [&] {
      QSqlQuery query = connection.makeQuery();
      query.prepare(counter::CSqlTable(*counter::recordKind(TYPE)).selectStatement() + QLatin1Char(' ') + condition);
      query.addBindValue(key);
      isComplete = isComplete && query.exec();
      std::size_t count = 0;
      while (query.next()) ++count;
      isComplete = isComplete && count == size;
    });
    std::vector<IDataPtr> records, again;
    std::string error;
    const double begin = usedMs();
    records = counter::selectRows(connection, TYPE, condition, {key}, account, error);
    stages.add("decoding into records", usedMs() - begin - stages.last("SQL: stepping, and fetching of the fields"));
    again = counter::selectRows(connection, TYPE, condition, {key}, account, error);
    isComplete = isComplete && records.size() == size && again.size() == size;
    if (!isComplete) break;

    std::size_t length = 0;
    stages.run("keys, of few records", [&] {
      for (std::size_t i = 0; i < size; ++i) length += records[i % FEW]->getKey().size();
    });
    const auto store = rdservice::makeAccountData(account);
    std::vector<IDataPtr> held;
    stages.run("data centre: new records", [&] {
      rdservice::noteMark(records, rdservice::takeMark(*store));
      held = store->updateDatas(records);
    });
    stages.run("data centre: records that it holds", [&] {
      rdservice::noteMark(again, rdservice::takeMark(*store));
      held = store->updateDatas(again);
    });
    stages.run("fold into statistics", [&] { isComplete = isComplete && !VN::foldCompacts(held).empty(); });

    CProbe probe;
    probe.setSortColumn(probe.getColumnIdByFileId(SORTED_BY), Qt::AscendingOrder);
    probe.resize(1280, 700);
    probe.show();
    QCoreApplication::processEvents();
    stages.run("rows: making and committing the batch", [&] { isComplete = isComplete && probe.write(held); });
    double paints = 0;
    desk.clock.viewport = probe.findChild<QAbstractScrollArea*>()->viewport();
    desk.clock.onPainted = [&] { paints += desk.clock.lastPaintMs; };
    const double shown = usedMs();
    probe.updateTable();
    while (!probe.isUpToDate()) QCoreApplication::processEvents();
    stages.add("taking over and sorting, without paints", usedMs() - shown - paints);
    desk.clock.onPainted = nullptr;
    probe.findChild<QAbstractScrollArea*>()->viewport()->repaint();
    stages.add("paint of the screen", desk.clock.lastPaintMs);
    isComplete = isComplete && probe.rowCount() == desk.rows && length > 0;
  }
  if (!isComplete) return fail("a stage lost records");
  fmt::print("{} records, each stage by itself, processor time, medians of {}:\n", desk.rows, rounds);
  stages.print(desk.rows);
  return 0;
}

int run(CPaintClock& clock, int rows, int rounds) {
  CDesk desk{CBenchClient({rows, 0, false}), clock, rows};
  if (!desk.client.error().empty()) return fail(desk.client.error());
  clock.viewport = desk.table().findChild<QAbstractScrollArea*>()->viewport();
  desk.table().setSortColumn(desk.table().getColumnIdByFileId(SORTED_BY), Qt::AscendingOrder);

  settle();
  fmt::print("{} records queried, ms from the click; the screen is complete with the later of the last two\n", rows);
  fmt::print("             reply   handed over   first rows    all rows   last paint   reply to screen   stall\n");
  const auto print = [](const char* name, const CTimes& t) {
    fmt::print("  {:<8}{:>8.0f}{:>14.0f}{:>13.0f}{:>12.0f}{:>13.0f}{:>18.0f}{:>8.1f}\n", name, t.reply, t.handedOver,
               t.first, t.all, t.screen, std::max(t.all, t.screen) - t.reply, t.gap);
  };
  std::vector<CTimes> again;
  double longest = 0;
  for (int round = 0; round <= rounds; ++round) {
    CTimes times;
    if (!query(desk, times)) return fail("the query brought no rows");
    longest = std::max(longest, times.gap);
    if (round == 0)
      print("first", times);
    else
      again.push_back(times);
  }
  const auto medianOf = [&again](double CTimes::*member) {
    std::vector<double> values;
    for (const CTimes& times : again) values.push_back(times.*member);
    return median(values);
  };
  print("median", {medianOf(&CTimes::reply), medianOf(&CTimes::handedOver), medianOf(&CTimes::first),
                   medianOf(&CTimes::all), medianOf(&CTimes::screen), medianOf(&CTimes::gap)});
  const double goal = rows <= SMALL_ROWS ? SMALL_GAP_GOAL_MS : LARGE_GAP_GOAL_MS;
  fmt::print("longest stall of all {:.1f} ms, goal {} ms: {}\n", longest, goal, longest <= goal ? "met" : "MISSED");
  return runStages(desk, rounds);
}

}  // namespace

int main(int argc, char** argv) {
  CPaintClock application(argc, argv);
  const std::vector<int> given = numbersGiven(application, {{"rows", "compacts of the account", SMALL_ROWS},
                                                            {"rounds", "refreshes, and runs of each stage", 5}});
  return run(application, std::min(given[0], MOST_ROWS), std::max(given[1], 1));
}
