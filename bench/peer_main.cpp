// Our table beside a QTableView that does the same: the same records, columns, widths and operations, in turn in one
// run. Prints the medians, their ratio, and whether the goals are met. What both show is compared; a difference fails.

#include "CPeerTable.h"
#include "bench_records.h"

#include "net/engine_factory.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "vn/CHpfDataTable.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScrollBar>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <memory>
#include <random>

namespace {

using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;
using CRecords = std::vector<IDataPtr>;

enum EOperation : int {
  OpLoad,
  OpReplace,
  OpSortAmount,
  OpSortName,
  OpFilter,
  OpClearFilter,
  OpPush,
  OpPushWorst,
  OpPushBusy,
  OpRepaint,
  OpJump,
  OpCount
};

struct COperation {
  const char* title;
  double ratioGoal;  ///< at least so many times as fast as the peer; 0 for none
  double msGoal;     ///< ours at most; 0 for none
};

constexpr COperation OPERATIONS[OpCount] = {
    {"load into a sorted view, to the first screen", 2, 0},
    {"replace every row, to the next screen", 0, 0},
    {"sort by an amount, to the next screen", 10, 0},
    {"sort by name, to the next screen", 0, 0},
    {"filter to a tenth, to the next screen", 0, 0},
    {"clear the filter, to the next screen", 0, 0},
    {"push of 100 changed records (median)", 50, 0},
    {"push of 100 changed records (worst)", 0, 0},
    {"push of 100, worst, processor time", 0, 1},  // other programs may hold the processor
    {"repaint of one screen", 3, 0},
    {"jump to another screen, with repaint", 0, 0},
};
constexpr double BYTES_GOAL = 150;

constexpr int FILE_ID_AMOUNT = 1391609;
constexpr int FILE_ID_NAME = 1391622;
constexpr int PUSH_RECORDS = 100;
constexpr int PUSHES = 5;        ///< a round, for both
constexpr int MORE_PUSHES = 95;  ///< a round, for ours alone, to find the worst
constexpr int REPAINTS = 10;
constexpr int ACCEPTED_NAMES = 20;  ///< of 200
constexpr int TRIAL_ROWS = 20000;
constexpr int WIDTH = 1200;
constexpr int HEIGHT = 600;

using CTimes = std::array<std::vector<double>, OpCount>;  ///< milliseconds

template <class F>
double msOf(F run) {
  const auto begin = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double busyMs() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

template <class F>
void measurePush(CTimes& times, F push) {
  QCoreApplication::processEvents();
  const double before = busyMs();
  times[OpPush].push_back(msOf(push));
  times[OpPushBusy].push_back(busyMs() - before);
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

int columnOf(int fileId) {
  const auto& des = CStkUnClosedCompacts::structDes();
  return int(des.fieldByFileId(fileId) - des.begin());
}

/// Both have one column for each field, in the field table's order.
class COurs {
 public:
  COurs() : m_table(0, 13916, nullptr, 255) {
    m_table.resize(WIDTH, HEIGHT);
    m_table.show();
    // The largest is the view; headers and lists are smaller.
    for (auto* area : m_table.findChildren<QAbstractScrollArea*>()) {
      const auto pixels = [](const QWidget* widget) { return widget->width() * widget->height(); };
      if (area->isVisible() && (m_area == nullptr || pixels(area) > pixels(m_area))) m_area = area;
    }
  }

  static void prepare(const CRecords&) {}
  void load(const CRecords& records) {
    m_table.clear();
    push(records);
  }
  void push(const CRecords& records) {
    m_table.updateDatas(records, false);
    m_table.updateTable();
    while (!m_table.isUpToDate()) QCoreApplication::processEvents();
  }
  void sort(int column, Qt::SortOrder order) { m_table.setSortColumn(column, order); }
  void filter(int column, const QStringList& texts) {
    m_table.onFilterTrigger(column, texts.isEmpty() ? GW::FilterNone : GW::FilterValues, texts);
  }
  QAbstractScrollArea& area() { return *m_area; }
  int rowCount() const { return m_table.rowCount(); }
  QString cellText(int row, int column) const { return m_table.cellText(row, column); }
  int columnWidth(int column) const { return m_table.columnWidth(column); }
  std::size_t memory() const { return m_table.memory(); }

 private:
  VN::CHpfDataTable m_table;
  QAbstractScrollArea* m_area = nullptr;
};

class CPeer {
 public:
  explicit CPeer(const COurs& ours) : m_table(CStkUnClosedCompacts::structDes()) {
    m_table.resize(WIDTH, HEIGHT);
    int column = 0;
    for (const rdservice::CFieldDes& field : CStkUnClosedCompacts::structDes()) {
      m_table.setColumnWidth(column, ours.columnWidth(column));
      m_table.setColumnHidden(column++, field.hidden);
    }
    m_table.show();
  }

  void prepare(const CRecords& records) { m_table.prepare(records); }
  void load(const CRecords&) { m_table.load(); }
  void push(const CRecords& records) { m_table.push(records, s_signals); }
  void sort(int column, Qt::SortOrder order) { m_table.sort(column, order); }
  void filter(int column, const QStringList& texts) { m_table.setFilter(column, texts, s_filterWay); }
  QAbstractScrollArea& area() { return m_table; }
  int rowCount() const { return m_table.rowCount(); }
  QString cellText(int row, int column) const { return m_table.cellText(row, column); }

  static CPeerTable::EPushSignals s_signals;
  static CPeerTable::EFilterWay s_filterWay;

 private:
  CPeerTable m_table;
};

CPeerTable::EPushSignals CPeer::s_signals = CPeerTable::EPushSignals::Runs;
CPeerTable::EFilterWay CPeer::s_filterWay = CPeerTable::EFilterWay::Reset;

/// Batches of changed copies.
std::vector<CRecords> makePushes(const CRecords& records, int count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<CRecords> pushes(static_cast<std::size_t>(count));
  for (CRecords& changed : pushes) {
    for (int i = 0; i < PUSH_RECORDS; ++i) {
      changed.push_back(records[random() % records.size()]->copy());
      static_cast<CStkUnClosedCompacts&>(*changed.back()).unpaidAmount = double(random() % 100000000) / 100;
    }
  }
  return pushes;
}

struct CRound {
  const CRecords& records;
  const CRecords& others;  ///< of the same keys
  std::vector<CRecords> pushes;
  Qt::SortOrder order;
};

/// Samples of what is shown, of all columns or of one.
template <class Table>
void note(const Table& table, int onlyColumn, QStringList& shown) {
  const int rows = table.rowCount();
  shown.push_back(QString::number(rows));
  for (const int row : {0, 1, rows / 3, rows / 2, rows - 1}) {
    for (int column = 0; column < int(CStkUnClosedCompacts::structDes().size()); ++column)
      if (onlyColumn < 0 || onlyColumn == column) shown.push_back(table.cellText(row, column));
  }
}

/// Every operation once; `shown` are samples of the rows after each.
template <class Table>
void runRound(Table& table, const CRound& round, CTimes& times, QStringList& shown) {
  const int amount = columnOf(FILE_ID_AMOUNT);
  const int name = columnOf(FILE_ID_NAME);
  QWidget& screen = *table.area().viewport();
  const auto measure = [&](EOperation operation, auto run) {
    QCoreApplication::processEvents();
    times[std::size_t(operation)].push_back(msOf([&] {
      run();
      screen.repaint();
    }));
    // Equal rows stand in order of arrival after loading; the proxy later leaves them as they stood before.
    const bool isLoaded = operation == OpLoad || operation == OpReplace;
    if (operation != OpRepaint) note(table, isLoaded ? -1 : operation == OpSortName ? name : amount, shown);
  };
  QStringList accepted;
  for (int i = 0; i < ACCEPTED_NAMES; ++i) accepted.push_back(QString::fromUtf8("证券%1").arg(i * 7));

  table.sort(amount, Qt::AscendingOrder);
  table.prepare(round.records);
  measure(OpLoad, [&] { table.load(round.records); });
  for (const CRecords& changed : round.pushes) {
    measurePush(times, [&] { table.push(changed); });
    note(table, amount, shown);
  }
  for (int i = 0; i < REPAINTS; ++i) {
    measure(OpRepaint, [] {});
    QScrollBar& bar = *table.area().verticalScrollBar();
    measure(OpJump, [&] { bar.setValue(bar.maximum() / REPAINTS * (i + 1)); });
  }
  measure(OpSortName, [&] { table.sort(name, round.order); });
  measure(OpSortAmount, [&] { table.sort(amount, round.order); });
  measure(OpFilter, [&] { table.filter(name, accepted); });
  measure(OpClearFilter, [&] { table.filter(name, {}); });
  table.prepare(round.others);
  measure(OpReplace, [&] { table.load(round.others); });
}

/// The peer is given the way of signalling that is faster for it; found with fewer rows, because one signal for all
/// takes seconds from 100,000 on.
void choosePushSignals(const COurs& ours, const CRecords& all) {
  const CRecords records(all.begin(), all.begin() + std::min<std::ptrdiff_t>(std::ptrdiff_t(all.size()), TRIAL_ROWS));
  const auto time = [&](CPeerTable::EPushSignals signalling) {
    CPeer::s_signals = signalling;
    CPeer peer(ours);
    peer.sort(columnOf(FILE_ID_AMOUNT), Qt::AscendingOrder);
    peer.prepare(records);
    peer.load(records);
    std::vector<double> times;
    for (const CRecords& changed : makePushes(records, 3, 99)) {
      QCoreApplication::processEvents();
      times.push_back(msOf([&] { peer.push(changed); }));
    }
    return median(times);
  };
  const double oneAll = time(CPeerTable::EPushSignals::OneAll);
  const double runs = time(CPeerTable::EPushSignals::Runs);
  CPeer::s_signals = runs < oneAll ? CPeerTable::EPushSignals::Runs : CPeerTable::EPushSignals::OneAll;
  fmt::print("the peer's push into {} rows: {:.1f} ms with a signal for each run of rows, {:.1f} ms with one for all\n",
             records.size(), runs, oneAll);
}

/// Of ours, a row, beyond the records.
struct CBytes {
  double loaded = 0;
  double used = 0;  ///< after every operation
};

void printTable(const CTimes& ours, const CTimes& peer, const CBytes& bytes) {
  constexpr const char* LINE = "{:<46}{:>11}{:>11}{:>10}  {:<14}{}\n";
  const auto verdict = [](bool isMet) { return isMet ? "met" : "NOT MET"; };
  fmt::print(LINE, "", "ours ms", "peer ms", "ratio", "goal", "");
  for (int i = 0; i < OpCount; ++i) {
    const COperation& operation = OPERATIONS[i];
    const auto timeOf = [i](const CTimes& times) {
      const auto& values = times[std::size_t(i == OpPushWorst ? int(OpPush) : i)];
      const bool isWorst = i == OpPushWorst || i == OpPushBusy;
      return isWorst ? *std::max_element(values.begin(), values.end()) : median(values);
    };
    const double mine = timeOf(ours);
    const double other = timeOf(peer);
    std::string goal, result;
    if (operation.ratioGoal > 0) {
      goal = fmt::format(">= {} x", operation.ratioGoal);
      result = verdict(other >= operation.ratioGoal * mine);
    } else if (operation.msGoal > 0) {
      goal = fmt::format("<= {} ms", operation.msGoal);
      result = verdict(mine <= operation.msGoal);
    }
    fmt::print(LINE, operation.title, fmt::format("{:.3f}", mine), fmt::format("{:.3f}", other),
               fmt::format("{:.1f}", other / mine), goal, result);
  }
  const std::pair<const char*, double> sizes[] = {{"bytes a row beyond the record, loaded", bytes.loaded},
                                                  {"bytes a row, also sorted and filtered", bytes.used}};
  for (const auto& [title, size] : sizes)
    fmt::print(LINE, title, fmt::format("{:.1f}", size), "", "", fmt::format("<= {}", BYTES_GOAL),
               verdict(size <= BYTES_GOAL));
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const auto engine = net::makeRPCEngine(2);
  QCommandLineParser options;
  const QCommandLineOption rowsOption(QStringLiteral("rows"), QStringLiteral("Rows of the tables (100000)."),
                                      QStringLiteral("N"), QStringLiteral("100000"));
  const QCommandLineOption roundsOption(QStringLiteral("rounds"), QStringLiteral("Rounds (5)."), QStringLiteral("N"),
                                        QStringLiteral("5"));
  const QCommandLineOption invalidateOption(
      QStringLiteral("invalidate"), QStringLiteral("The peer filters by invalidateFilter() instead of a reset."));
  options.addOptions({rowsOption, roundsOption, invalidateOption});
  options.addHelpOption();
  options.process(application);
  const int rows = std::max(1000, options.value(rowsOption).toInt());
  const int rounds = std::max(1, options.value(roundsOption).toInt());
  if (options.isSet(invalidateOption)) CPeer::s_filterWay = CPeerTable::EFilterWay::Invalidate;

  const CRecords records = makeRecords(rows, 1);
  const CRecords others = makeRecords(rows, 2);
  COurs first;
  first.sort(columnOf(FILE_ID_AMOUNT), Qt::AscendingOrder);
  first.load(records);
  CBytes bytes{double(first.memory()) / rows, 0};
  choosePushSignals(first, records);
  fmt::print("{} rows (the goals are for 100000), {} rounds, screens of {} x {}\n\n", rows, rounds, WIDTH, HEIGHT);
  CTimes ourTimes, peerTimes;
  for (int i = 0; i < rounds; ++i) {
    const CRound round{records, others, makePushes(records, PUSHES, unsigned(i)),
                       i % 2 == 0 ? Qt::DescendingOrder : Qt::AscendingOrder};
    QStringList ourRows, peerRows;
    COurs ours;
    runRound(ours, round, ourTimes, ourRows);
    bytes.used = std::max(bytes.used, double(ours.memory()) / rows);
    for (const CRecords& changed : makePushes(others, MORE_PUSHES, unsigned(1000 + i)))
      measurePush(ourTimes, [&] { ours.push(changed); });
    CPeer peer(ours);
    runRound(peer, round, peerTimes, peerRows);
    if (ourRows != peerRows) {
      const auto differing = std::mismatch(ourRows.begin(), ourRows.end(), peerRows.begin(), peerRows.end());
      fmt::print("The tables show different rows, first at sample {}: \"{}\" and \"{}\".\n",
                 differing.first - ourRows.begin(), differing.first->toStdString(), differing.second->toStdString());
      return 1;
    }
  }
  printTable(ourTimes, peerTimes, bytes);
  return 0;
}
