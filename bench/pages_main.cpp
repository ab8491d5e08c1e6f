// Closed compacts page by page on a counter that has a great many: the time of "next" beside that of a bare query of
// one batch, the memory that each page costs, and the event loop during the query of everything.

#include "CBenchClient.h"
#include "bench_options.h"

#include "compacts/tables/CCompactsPageTable.h"
#include "compacts/tables/compact_fields.h"
#include "gw/containers.h"
#include "gw/controls.h"
#include "gw/widget_events.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "utils/CEventLoopMeter.h"
#include "vn/CCountDownButton.h"
#include "vn/CTradeClient.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <fmt/format.h>
#include <boost/make_shared.hpp>

#include <algorithm>
#include <atomic>
#include <vector>

namespace {

constexpr int METER_MS = 2;
constexpr int PAGES = 40;
constexpr int CLOSED_VIEW = 1;
constexpr double GAP_GOAL_MS = 16;

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

double residentMb() {
  QFile file(QStringLiteral("/proc/self/statm"));
  if (!file.open(QIODevice::ReadOnly)) return 0;
  return file.readAll().split(' ').value(1).toDouble() * 4096 / 1e6;
}

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

/// Milliseconds of one batch that nobody shows; `position` becomes its end.
double queryBatch(std::string& position) {
  const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
  request->accountKey = CBenchClient::account();
  request->compactType = rdservice::CompactTypeAll;
  request->positionString = position;
  request->requestCount = VN::PAGE_SIZE;
  std::atomic<bool> isAnswered{false};
  QElapsedTimer timer;
  timer.start();
  VN::CTradeClient::instance()->queryClosedCompacts(
      request, [&](const utils::RDError&, const std::vector<rdservice::IDataPtr>& records, int, const bson::BSONObj&) {
        if (!records.empty()) position = VN::positionOf(*records.back());
        isAnswered = true;
        QMetaObject::invokeMethod(
            qApp, [] {}, Qt::QueuedConnection);  // wakes the event loop
      });
  CBenchClient::wait([&] { return isAnswered.load(); });
  return ms(timer);
}

int fail(const std::string& why) {
  fmt::print(stderr, "bench_pages: {}\n", why);
  return 1;
}

int run(int rows) {
  const CBenchClient desk({1000, rows, true});
  if (!desk.error().empty()) return fail(desk.error());
  const auto tables = desk.panel().findChildren<VN::CCompactsPageTable*>();
  const auto closed = std::find_if(tables.begin(), tables.end(),
                                   [](const auto* table) { return table->getID() == VN::TableClosedCompacts; });
  if (closed == tables.end()) return fail("no table of closed compacts");
  VN::CCompactsPageTable& table = **closed;
  desk.panel().handleEvent(GW::EventButtonClicked, CLOSED_VIEW, 0, QString(), nullptr);
  const auto isShown = [&table](int page) {
    return table.getPageNum() == page && table.rowCount() == VN::PAGE_SIZE && table.isUpToDate();
  };
  if (!CBenchClient::wait([&] { return isShown(1); })) return fail("no first page");

  std::vector<double> nexts, batches;
  std::string position;
  const double before = residentMb();
  utils::CEventLoopMeter turning(METER_MS, nullptr);
  for (int page = 2; page <= PAGES; ++page) {
    batches.push_back(queryBatch(position));
    QElapsedTimer timer;
    timer.start();
    table.handleEvent(GW::EventButtonClicked, GW::PagingNext, 0, QString(), nullptr);
    if (!CBenchClient::wait([&] { return isShown(page); })) return fail(fmt::format("no page {}", page));
    nexts.push_back(ms(timer));
  }
  fmt::print("{} closed compacts, pages of {}\n", rows, VN::PAGE_SIZE);
  fmt::print("next page {:.2f} ms, a bare batch {:.2f} ms, ratio {:.2f}; longest stall {:.1f} ms; {:.2f} MB a page\n",
             median(nexts), median(batches), median(nexts) / median(batches), turning.longestGap(),
             (residentMb() - before) / (PAGES - 1));

  utils::CEventLoopMeter everything(METER_MS, nullptr);
  QElapsedTimer timer;
  timer.start();
  QTest::mouseClick(desk.panel().findChild<VN::CCountDownButton*>(), Qt::LeftButton);
  const auto& combo = *desk.panel().findChild<GW::CComboBox*>();
  if (!CBenchClient::wait([&] { return combo.isEnabled() && isShown(1); })) return fail("the full query did not end");
  const double gap = everything.longestGap();
  fmt::print("everything in {:.1f} s, longest stall {:.1f} ms, goal {} ms: {}; {:.0f} MB more\n", ms(timer) / 1000, gap,
             GAP_GOAL_MS, gap <= GAP_GOAL_MS ? "met" : "MISSED", residentMb() - before);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const std::vector<int> given = numbersGiven(application, {{"rows", "closed compacts of the account", 1000000}});
  return run(given[0]);
}
