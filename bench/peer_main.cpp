// The panels' table beside a QTableView that does the same: the same records, columns, widths and operations, in turn
// in one run. Prints the medians, how many times as fast ours is, and how near it comes to a bare program without any
// view, whose times stand here as shares of the QTableView's, both once measured on one machine. Goals in milliseconds
// are of that machine too; "at pace" are those which are met when they are as many times longer as the QTableView takes
// longer here than there. What both tables show is compared; a difference fails.

#include "COurTable.h"
#include "CPeer.h"
#include "bench_screen.h"
#include "bench_times.h"
#include "stolen_time.h"
#include "table_round.h"

#include "net/engine_factory.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QHeaderView>
#include <QScrollBar>

#include <fmt/format.h>

#include <array>
#include <functional>
#include <memory>
#include <type_traits>

#include <malloc.h>

namespace {

using rdservice::IDataPtr;
using CRecords = std::vector<IDataPtr>;

constexpr int MANY_ROWS = 500000;  ///< from here on the goals of a million hold
constexpr std::size_t SCALES = 2;  ///< 100,000 rows and a million
constexpr double NONE = 0;

/// Once measured on one machine, milliseconds, at 100,000 rows and at a million.
struct CRecorded {
  double peer[SCALES];
  double floor[SCALES];
};

struct CGoal {
  EOperation operation;
  const char* title;
  double ratio[SCALES];  ///< at least so many times as fast as the peer
  CRecorded recorded;
  double floorFactor;  ///< at most so many times the floor
  double ms[SCALES];   ///< at most
};

constexpr CGoal GOALS[] = {
    {OpLoad, "load into a sorted view, painted", {3, 3}, {{80, 1863}, {16.5, 368}}, 2, {}},
    {OpReplace, "replace every row, painted", {5, 5}, {{139, 2786}, {16.7, 381}}, NONE, {}},
    {OpSortAmount, "sort again by an amount", {25, 40}, {{55, 1717}, {0.85, 17.9}}, 2.5, {}},
    {OpSortText, "sort again by a text of its own", {10, 10}, {{340, 5914}, {9.6, 127}}, 2, {}},
    {OpSortName, "sort again by security name", {100, 100}, {{312, 5148}, {0.18, 4.5}}, NONE, {}},
    {OpFilterFirst, "filter to a tenth, first of its column", {}, {{6.5, 93}, {0.05, 0.9}}, NONE, {1, 15}},
    {OpFilter, "filter to a tenth", {25, 25}, {{6.5, 93}, {0.05, 0.9}}, NONE, {}},
    {OpClearFilter, "clear the filter", {100, 100}, {{40, 1524}, {0.02, 0.02}}, NONE, {}},
    {OpPush, "push of 100, half of them move", {100, 800}, {{16.9, 217}, {0.07, 0.112}}, NONE, {}},
};
constexpr double PUSH_WORST_MS[SCALES] = {0.25, 0.5};
constexpr double PAINTED_PUSH_MS = 2.3;
constexpr double PAINT_MS = 2.0;
constexpr double SCROLL_MS = 0.3;
/// The peer's own, once measured.
constexpr double PEER_PUSH_MS[SCALES] = {16.9, 217};
constexpr double PEER_PAINTED_PUSH_MS[SCALES] = {9.1, 14};
constexpr double PEER_PAINT_MS = 10.1;
constexpr double PEER_SCROLL_MS = 0.83;
constexpr double ROW_BYTES = 130;
constexpr double ALL_BYTES = 420;

constexpr int PUSHES = 5;        ///< a round, for both
constexpr int MORE_PUSHES = 95;  ///< a round, for ours alone, to find the worst
constexpr int PAINTS = 10;
constexpr int SCROLLS = 20;

struct CTimes {
  std::array<std::vector<double>, OpCount> operations;
  std::vector<double> worstPushes;
  std::vector<double> bareLoops;  ///< one after each of them
  std::vector<double> paintedPushes;
  std::vector<double> paints;
  std::vector<double> scrolls;
};

/// Always the same work, about as long as a push: what it takes longer now and then, the machine does.
void runBareLoop() {
  constexpr int STEPS = 300000;
  static volatile std::uint64_t s_result = 0;
  std::uint64_t number = s_result + 1;
  for (int i = 0; i < STEPS; ++i) number = number * 6364136223846793005U + 1442695040888963407U;
  s_result = number;
}

/// Samples of what is shown.
template <class Table>
void note(const Table& table, int onlyColumn, QStringList& shown) {
  const int rows = table.rowCount();
  shown.push_back(QString::number(rows));
  for (const int row : {0, 1, rows / 3, rows / 2, rows - 1}) {
    for (int column = 0; column < columnCount(); ++column)
      if (onlyColumn < 0 || onlyColumn == column) shown.push_back(table.cellText(row, column));
  }
}

template <class Table>
void measureRound(Table& table, const CRound& round, CTimes& times, QStringList& shown) {
  QWidget& screen = *table.area().viewport();
  const auto measure = [&](EOperation operation, const auto& run) {
    QCoreApplication::processEvents();
    double ms = 0;
    if constexpr (std::is_same_v<decltype(run()), double>)
      ms = run();
    else
      ms = msOf(run);
    if (operation == OpLoad || operation == OpReplace) ms += msOf([&] { screen.repaint(); });
    times.operations[std::size_t(operation)].push_back(ms);
  };
  runRound(table, round, measure, [&](int column) { note(table, column, shown); });

  QScrollBar& bar = *table.area().verticalScrollBar();
  for (int i = 0; i < PAINTS; ++i) {
    bar.setValue(bar.maximum() / PAINTS * i);
    table.widget().selectRow((table.rowCount() - SCREEN_ROWS) / PAINTS * i + SCREEN_ROWS / 2);
    QCoreApplication::processEvents();
    times.paints.push_back(msOf([&] { screen.repaint(); }));
  }
  const int rowHeight = screen.height() / SCREEN_ROWS;
  for (int i = 0; i < SCROLLS; ++i) {
    QCoreApplication::processEvents();
    times.scrolls.push_back(msOf([&] {
      bar.setValue(bar.value() + (bar.maximum() > SCREEN_ROWS * rowHeight ? rowHeight : 1));
      paintDue();
    }));
  }

  table.filter(round_columns::of(round_columns::FILE_ID_NAME), acceptedNames(0));
  bar.setValue(0);
  for (const auto& changed : round.pushes) {
    QCoreApplication::processEvents();
    const double ms = table.push(changed);
    times.paintedPushes.push_back(ms + msOf(paintDue));
    note(table, -1, shown);
  }
  table.filter(round_columns::of(round_columns::FILE_ID_NAME), {});
}

/// The peer is given the way of signalling that is faster for it; found with fewer rows, because one signal for all
/// takes seconds from 100,000 on.
void choosePushSignals(const CRecords& all) {
  constexpr std::size_t TRIAL_ROWS = 20000;
  const CRecords records(all.begin(), all.begin() + std::ptrdiff_t(std::min(all.size(), TRIAL_ROWS)));
  const auto time = [&](CPeerTable::EPushSignals signalling) {
    CPeer::s_signals = signalling;
    CPeer peer;
    peer.sort(round_columns::of(round_columns::FILE_ID_AMOUNT), Qt::AscendingOrder);
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

double heapBytes() {
  const auto info = mallinfo2();
  return double(info.uordblks + info.hblkhd);
}

constexpr const char* LINE = "{:<40}{:>11}{:>11}{:>9}{:>9}  {:<33}{}\n";

/// Of the goals of one line.
class CVerdict {
 public:
  void addRatio(double least, double ours, double peer) {
    add(fmt::format(">= {} x", least), peer >= least * ours ? Met : NotMet);
  }
  void addLimit(double most, double value, const char* unit = "") {
    add(fmt::format("<= {:.4g}{}", most, unit), value <= most ? Met : NotMet);
  }
  /// `pace`: how many times longer the peer takes than on the machine that the goal is of.
  void addPacedLimit(double most, double ms, double pace) {
    add(fmt::format("<= {} ms, at pace {:.2f}", most, most * pace), ms <= most          ? Met
                                                                    : ms <= most * pace ? MetAtPace
                                                                                        : NotMet);
  }

  const std::string& goals() const { return m_goals; }
  const char* text() const {
    constexpr const char* TEXTS[] = {"met", "met at pace", "NOT MET"};
    return m_goals.empty() ? "" : TEXTS[m_worst];
  }

 private:
  enum EOutcome : unsigned char { Met, MetAtPace, NotMet };

  void add(const std::string& goal, EOutcome outcome) {
    m_goals += (m_goals.empty() ? "" : ", ") + goal;
    m_worst = std::max(m_worst, outcome);
  }

  std::string m_goals;
  EOutcome m_worst = Met;
};

std::string number(double value) { return fmt::format(value < 100 ? "{:.3f}" : "{:.1f}", value); }

void printGoal(const CGoal& goal, std::size_t scale, const CTimes& ours, const CTimes& peer) {
  // The first of two filters is not measured apart for the peer, which keeps nothing.
  const double mine = median(ours.operations[std::size_t(goal.operation)]);
  const double other = median(peer.operations[std::size_t(goal.operation)]);
  const double floor = other * goal.recorded.floor[scale] / goal.recorded.peer[scale];
  const double floorGoal = goal.floorFactor * floor + (goal.operation == OpLoad ? median(ours.paints) : 0);
  CVerdict verdict;
  if (goal.ratio[scale] > NONE) verdict.addRatio(goal.ratio[scale], mine, other);
  if (goal.floorFactor > NONE) verdict.addLimit(floorGoal, mine, " ms");
  if (goal.ms[scale] > NONE) verdict.addPacedLimit(goal.ms[scale], mine, other / goal.recorded.peer[scale]);
  fmt::print(LINE, goal.title, number(mine), number(other), fmt::format("{:.1f}", other / mine),
             fmt::format("{:.1f}", mine / floor), verdict.goals(), verdict.text());
}

void printTime(const char* title, double mine, double other, const CVerdict& verdict) {
  fmt::print(LINE, title, number(mine), number(other), fmt::format("{:.1f}", other / mine), "", verdict.goals(),
             verdict.text());
}

void printBytes(const char* title, double bytes, double limit) {
  CVerdict verdict;
  verdict.addLimit(limit, bytes);
  fmt::print(LINE, title, number(bytes), "", "", "", verdict.goals(), verdict.text());
}

struct CBytes {
  double record = 0;  ///< one record, with all that it holds
  double loaded = 0;  ///< of the table a row, beyond the records
  double used = 0;    ///< after every operation
};

void printAll(std::size_t scale, const CTimes& ours, const CTimes& peer, const CBytes& bytes) {
  fmt::print(LINE, "", "ours ms", "peer ms", "ratio", "/ floor", "goal", "");
  for (const CGoal& goal : GOALS) printGoal(goal, scale, ours, peer);
  const std::vector<double>& peerPushes = peer.operations[std::size_t(OpPush)];
  const auto printPaced = [](const char* title, double mine, double other, double most, double pace) {
    CVerdict verdict;
    verdict.addPacedLimit(most, mine, pace);
    printTime(title, mine, other, verdict);
  };
  printPaced("push of 100, the worst", largest(ours.worstPushes), largest(peerPushes), PUSH_WORST_MS[scale],
             median(peerPushes) / PEER_PUSH_MS[scale]);
  fmt::print(LINE, "push of 100, 99 of 100 are faster", number(percentile(ours.worstPushes, 0.99)), "", "", "", "", "");
  fmt::print(LINE, "a bare loop between them, the worst", number(largest(ours.bareLoops)), "", "", "",
             fmt::format("its median: {:.3f}", median(ours.bareLoops)), "");
  printPaced("push into a filtered view, painted", median(ours.paintedPushes), median(peer.paintedPushes),
             PAINTED_PUSH_MS, median(peer.paintedPushes) / PEER_PAINTED_PUSH_MS[scale]);
  printPaced("paint 40 rows of 22 columns", median(ours.paints), median(peer.paints), PAINT_MS,
             median(peer.paints) / PEER_PAINT_MS);
  printPaced("scroll by one row, painted", median(ours.scrolls), median(peer.scrolls), SCROLL_MS,
             median(peer.scrolls) / PEER_SCROLL_MS);
  printBytes("bytes a row beyond the record, loaded", bytes.loaded, ROW_BYTES);
  printBytes("bytes a row, sorted and filtered too", bytes.used, ROW_BYTES);
  printBytes("bytes of a compact in the table, all told", bytes.record + bytes.used, ALL_BYTES);
}

int run(int rows, int rounds) {
  const double heapBefore = heapBytes();
  const CRecords records = makeRecords(rows, 1);
  CBytes bytes;
  bytes.record = (heapBytes() - heapBefore) / rows;
  const CRecords others = makeRecords(rows, 2);
  choosePushSignals(records);
  const std::size_t scale = rows >= MANY_ROWS ? 1 : 0;
  fmt::print("{} rows (the goals are those for {}), {} rounds, a screen {} pixels wide\n\n", rows,
             scale == 0 ? "100,000" : "1,000,000", rounds, SCREEN_WIDTH);
  CTimes ourTimes, peerTimes;
  const double stolen = stolenMs();
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < rounds; ++i) {
    const CRound round{records, others, makePushes(records, PUSHES, unsigned(i))};
    QStringList ourRows, peerRows;
    int rowHeight = 0;
    {
      COurTable ours;
      ours.load(CRecords(records.begin(), records.begin() + SCREEN_ROWS * 2));
      rowHeight = ours.area().verticalScrollBar()->singleStep();
      fitScreen(ours, rowHeight);
      ours.load(records);
      bytes.loaded = std::max(bytes.loaded, double(ours.widget().memory()) / rows);
      measureRound(ours, round, ourTimes, ourRows);
      bytes.used = std::max(bytes.used, double(ours.widget().memory()) / rows);
      for (const CRecords& changed : makePushes(records, MORE_PUSHES, unsigned(1000 + i))) {
        QCoreApplication::processEvents();
        ourTimes.worstPushes.push_back(ours.push(changed));
        ourTimes.bareLoops.push_back(msOf(runBareLoop));
      }
    }
    CPeer peer;
    peer.widget().verticalHeader()->setDefaultSectionSize(rowHeight);
    fitScreen(peer, rowHeight);
    measureRound(peer, round, peerTimes, peerRows);
    if (ourRows != peerRows) {
      const auto differing = std::mismatch(ourRows.begin(), ourRows.end(), peerRows.begin(), peerRows.end());
      fmt::print("The tables show different rows, first at sample {}: \"{}\" and \"{}\".\n",
                 differing.first - ourRows.begin(), differing.first->toStdString(), differing.second->toStdString());
      return 1;
    }
  }
  printAll(scale, ourTimes, peerTimes, bytes);
  fmt::print("\nThe host of this machine took {:.1f} % of a processor away meanwhile.\n",
             (stolenMs() - stolen) / msSince(begin) * 100);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const auto engine = net::makeRPCEngine(2);
  QCommandLineParser options;
  const QCommandLineOption rows(QStringLiteral("rows"), QStringLiteral("Rows of the tables (100000)."),
                                QStringLiteral("N"), QStringLiteral("100000"));
  const QCommandLineOption rounds(QStringLiteral("rounds"), QStringLiteral("Rounds (5)."), QStringLiteral("N"),
                                  QStringLiteral("5"));
  const QCommandLineOption invalidate(QStringLiteral("invalidate"),
                                      QStringLiteral("The peer filters by invalidateFilter() instead of a reset."));
  options.addOptions({rows, rounds, invalidate});
  options.addHelpOption();
  options.process(application);
  if (options.isSet(invalidate)) CPeer::s_filterWay = CPeerTable::EFilterWay::Invalidate;
  return run(std::max(1000, options.value(rows).toInt()), std::max(1, options.value(rounds).toInt()));
}
