// Times of the table and the data centre, through their public classes, on deterministic records.

#include "bench_records.h"

#include "gw/CTableBatch.h"
#include "net/engine_factory.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/data_centre_factory.h"
#include "utils/CEventLoopMeter.h"
#include "vn/CHpfDataTable.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <algorithm>
#include <memory>
#include <random>
#include <thread>

namespace {

using rdservice::IDataPtr;

/// A table on the screen, in order of arrival or sorted by an amount.
std::unique_ptr<VN::CHpfDataTable> makeTable(bool sorted) {
  auto table = std::make_unique<VN::CHpfDataTable>(0, 13916, nullptr, 255);
  table->resize(1200, 600);
  table->show();
  if (sorted) table->setSortColumn(table->getColumnIdByFileId(1391609), Qt::AscendingOrder);
  QCoreApplication::processEvents();
  return table;
}

void showAll(VN::CHpfDataTable& table) {
  table.updateTable();
  while (!table.isUpToDate()) QCoreApplication::processEvents();
}

/// Records handed over in one batch, until every row is displayed; sorted by an amount.
void loadTable(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    const std::vector<IDataPtr> records = makeRecords(state.range(0), 1);
    auto table = makeTable(true);
    state.ResumeTiming();
    GW::CTableBatch batch(*table, table->scope());
    table->updateDatas(records, false);
    benchmark::DoNotOptimize(batch.commit());
    showAll(*table);
    state.PauseTiming();
    table.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(loadTable)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// The same from another thread, as the strand does it; `gap_ms` is the longest time the event loop did not turn.
void loadTableFromAnotherThread(benchmark::State& state) {
  double gap = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const std::vector<IDataPtr> records = makeRecords(state.range(0), 1);
    auto table = makeTable(false);
    utils::CEventLoopMeter meter(2, nullptr);
    state.ResumeTiming();
    std::thread writer([&] {
      GW::CTableBatch batch(*table, table->scope());
      table->updateDatas(records, true);
      benchmark::DoNotOptimize(batch.commit());
    });
    while (table->rowCount() < int(records.size())) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    writer.join();
    state.PauseTiming();
    gap = std::max(gap, meter.longestGap());
    table.reset();
    state.ResumeTiming();
  }
  state.counters["gap_ms"] = gap;
}
BENCHMARK(loadTableFromAnotherThread)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// A hundred changed records pushed into a sorted table and displayed.
void pushIntoTable(benchmark::State& state) {
  const auto table = makeTable(true);
  const std::vector<IDataPtr> records = makeRecords(state.range(0), 1);
  table->updateDatas(records, false);
  showAll(*table);
  std::mt19937 random(2);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<IDataPtr> changed;
    for (int i = 0; i < 100; ++i) {
      const IDataPtr copy = records[random() % records.size()]->copy();
      boost::static_pointer_cast<rdservice::CStkUnClosedCompacts>(copy)->unpaidAmount =
          double(random() % 100000000) / 100;
      changed.push_back(copy);
    }
    state.ResumeTiming();
    table->updateDatas(changed, false);
    showAll(*table);
  }
}
BENCHMARK(pushIntoTable)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

/// Storing the records of a reply, for the first time and again unchanged.
void storeReply(benchmark::State& state) {
  const bool again = state.range(1) != 0;
  for (auto _ : state) {
    state.PauseTiming();
    const auto store = rdservice::makeAccountData(benchAccount());
    if (again) store->updateDatas(makeRecords(state.range(0), 1));
    const std::vector<IDataPtr> records = makeRecords(state.range(0), 1);
    state.ResumeTiming();
    benchmark::DoNotOptimize(store->updateDatas(records));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(storeReply)
    ->ArgNames({"records", "again"})
    ->Args({100000, 0})
    ->Args({100000, 1})
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const auto engine = net::makeRPCEngine(2);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
