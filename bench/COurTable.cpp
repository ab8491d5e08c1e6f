#include "COurTable.h"

#include "gw/CTableBatch.h"
#include "gw/table_flags.h"
#include "net/RPCEngine.h"
#include "rdservice/rdservice_enums.h"

#include "bench_times.h"

#include <QCoreApplication>

#include <future>
#include <memory>

namespace {

constexpr int ALL_MENUS = 255;

}  // namespace

COurTable::COurTable() : m_table(0, rdservice::RecordStkUnClosedCompacts, nullptr, ALL_MENUS) {
  // The largest is the view; headers and lists are smaller.
  m_table.resize(1200, 600);
  m_table.show();
  for (auto* area : m_table.findChildren<QAbstractScrollArea*>()) {
    const auto pixels = [](const QWidget* widget) { return widget->width() * widget->height(); };
    if (area->isVisible() && (m_area == nullptr || pixels(area) > pixels(m_area))) m_area = area;
  }
}

void COurTable::load(const std::vector<rdservice::IDataPtr>& records) {
  write([&] {
    GW::CTableBatch batch(m_table, m_table.scope());
    batch.clearFirst();
    m_table.updateDatas(records, false);
    if (!batch.commit()) qFatal("the table refused a batch");
  });
  show();
}

double COurTable::push(const std::vector<rdservice::IDataPtr>& records) {
  double ms = 0;
  write([&] { ms = msOf([&] { m_table.updateDatas(records, false); }); });
  return ms + msOf([this] { show(); });
}

void COurTable::filter(int column, const QStringList& texts) {
  m_table.onFilterTrigger(column, texts.isEmpty() ? GW::FilterNone : GW::FilterValues, texts);
}

void COurTable::write(const std::function<void()>& run) {
  const auto done = std::make_shared<std::promise<void>>();
  net::RPCEngine::instance()->getStrand("bench")->post([&run, done] {
    run();
    done->set_value();
  });
  done->get_future().wait();
}

void COurTable::show() {
  m_table.updateTable();
  while (!m_table.isUpToDate()) QCoreApplication::processEvents();
}
