// Statistics of a great many compacts: the fold beside a bare one over the same records, in turn in one run; pushes
// into a data centre that keeps the statistics; then the panel's statistics view on a real counter, and how long the
// event loop stands still meanwhile.

#include "CBenchClient.h"
#include "bench_options.h"
#include "bench_records.h"
#include "bench_times.h"

#include "compacts/tables/CCompactsStaticsTable.h"
#include "compacts/tables/compact_fold.h"
#include "gw/widget_events.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/data_centre_factory.h"
#include "utils/CEventLoopMeter.h"

#include <QApplication>
#include <QElapsedTimer>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <vector>

namespace {

using rdservice::CStkUnClosedCompacts;
using rdservice::IDataPtr;

constexpr int METER_MS = 2;
constexpr int ROUNDS = 7;
constexpr int PUSHES = 300;
constexpr int STATISTICS_VIEW = 3;
constexpr double RATIO_GOAL = 3;
constexpr double GAP_GOAL_MS = 16;

struct CSums {
  std::int64_t volumes[2] = {};
  double amounts[6] = {};
};

/// As little as a fold can do: no records are made, nothing is ordered, no account is looked at.
double bareFold(const std::vector<IDataPtr>& records, std::size_t& groups) {
  std::unordered_map<std::uint64_t, CSums> sums;
  for (const IDataPtr& record : records) {
    const auto& compact = static_cast<const CStkUnClosedCompacts&>(*record);
    const auto text = reinterpret_cast<std::uintptr_t>(&compact.code.str());
    CSums& sum = sums[text * 4 + static_cast<std::uint64_t>((compact.compactType & 1) * 2 + (compact.source & 1))];
    sum.volumes[0] += compact.financingVolume;
    sum.volumes[1] += compact.lendingVolume;
    sum.amounts[0] += compact.compactAmount;
    sum.amounts[1] += compact.unpaidAmount;
    sum.amounts[2] += compact.repaidAmount;
    sum.amounts[3] += compact.interestAmount;
    sum.amounts[4] += compact.feeAmount;
    sum.amounts[5] += compact.penaltyAmount;
  }
  groups = sums.size();
  double total = 0;
  for (const auto& [key, sum] : sums) total += sum.amounts[1];
  return total;
}

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

int fail(const std::string& why) {
  fmt::print(stderr, "bench_statistics: {}\n", why);
  return 1;
}

int foldBoth(int rows) {
  const std::vector<IDataPtr> records = makeRecords(rows, 1);
  std::vector<double> ours, bare;
  for (int round = 0; round < ROUNDS; ++round) {
    std::size_t groups = 0;
    QElapsedTimer timer;
    timer.start();
    const double expected = bareFold(records, groups);
    bare.push_back(ms(timer));
    timer.start();
    const auto statistics = VN::foldCompacts(records);
    ours.push_back(ms(timer));
    double total = 0;
    for (const auto& statistic : statistics) total += statistic->unpaidAmount;
    if (statistics.size() != groups || std::abs(total - expected) > 1e-6 * expected)
      return fail(fmt::format("{} statistics of {}, {} yuan of {}", statistics.size(), groups, total, expected));
  }
  const double ratio = median(ours) / median(bare);
  fmt::print("folding {} compacts {:.1f} ms, a bare fold {:.1f} ms, ratio {:.2f}, goal {}: {}\n", rows, median(ours),
             median(bare), ratio, RATIO_GOAL, ratio <= RATIO_GOAL ? "met" : "MISSED");
  return 0;
}

/// The statistics that the data centre keeps: what pushes cost that change them too, beside pushes that do not.
int keepStatistics(int rows) {
  const std::vector<IDataPtr> records = makeRecords(rows, 1);
  const auto pushMs = [&](bool isWholeSet) {
    const auto store = rdservice::makeAccountData(benchAccount());
    if (isWholeSet)
      store->updateCompacts(rdservice::RecordStkUnClosedCompacts, records);
    else
      store->updateDatas(records);
    std::vector<double> times;
    for (const auto& changed : makePushes(records, PUSHES, 1))
      times.push_back(msOf([&] { store->updateDatas(changed); }));
    const bool isKept = !store->getData(rdservice::RecordStkUnClosedCompactsStatics).empty();
    return isKept == isWholeSet ? median(times) : -1;
  };
  const double without = pushMs(false);
  const double with = pushMs(true);
  if (without < 0 || with < 0) return fail("statistics were kept that should not be, or were not");
  fmt::print("a push of {} into {} compacts {:.3f} ms, {:.3f} ms without keeping their statistics\n", BENCH_PUSH, rows,
             with, without);
  return 0;
}

int showStatistics(int rows) {
  const CBenchClient desk({rows, 0, false});
  if (!desk.error().empty()) return fail(desk.error());
  auto& table = *desk.panel().findChild<VN::CCompactsStaticsTable*>();
  utils::CEventLoopMeter meter(METER_MS, nullptr);
  QElapsedTimer timer;
  timer.start();
  desk.panel().handleEvent(GW::EventButtonClicked, STATISTICS_VIEW, 0, QString(), nullptr);
  if (!CBenchClient::wait([&] { return table.rowCount() > 0 && table.isUpToDate(); })) return fail("no statistics");
  fmt::print(
      "statistics of {} compacts queried and shown in {:.1f} s: {} rows, longest stall {:.1f} ms, goal {} ms: {}\n",
      rows, ms(timer) / 1000, table.rowCount(), meter.longestGap(), GAP_GOAL_MS,
      meter.longestGap() <= GAP_GOAL_MS ? "met" : "MISSED");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::vector<int> given = numbersGiven(application, {{"rows", "compacts of the account", 1000000}});
  for (const auto part : {foldBoth, keepStatistics, showStatistics}) {
    if (const int error = part(given[0]); error != 0) return error;
  }
  return 0;
}
