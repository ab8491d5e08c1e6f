#include "gw/CBaseHighPerformanceTable.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/table_drain.h"
#include "gw/widget_events.h"

#include "utils/threads.h"

#include <QTimer>
#include <QVBoxLayout>

#include <chrono>

namespace GW {

namespace {

// Taking rows over, with their sort keys, is given half of a turn's 8 ms; ordering them and the view's share take the
// rest.
constexpr std::chrono::milliseconds TAKING_TIME{4};
constexpr int NEXT_TURN_MS = 1;
constexpr std::size_t ROWS_PER_STEP = 1024;
constexpr std::size_t ROWS_PER_TURN = 25 * ROWS_PER_STEP;

}  // namespace

CBaseHighPerformanceTable::Private::Private(CBaseHighPerformanceTable* table)
    : q(table),
      store(std::make_shared<CTableStore>([table] {
        QMetaObject::invokeMethod(
            table, [table] { table->updateTable(); }, Qt::QueuedConnection);
      })),
      view(new CTableView(&model, table)) {
  QObject::connect(view, &CTableView::sigHeaderClicked, table, [this](int columnId) { onHeaderClicked(columnId); });
  QObject::connect(view, &QTableView::doubleClicked, table, [this](const QModelIndex& index) {
    const rdservice::IDataPtr record = model.record(index.row());
    if (record)
      q->deliverEvent(EventRowDoubleClicked, index.row(), 0, QString::fromStdString(record->getKey()), nullptr);
  });
}

CBaseHighPerformanceTable::Private::~Private() {
  store->close();
  delete view;
}

CBaseHighPerformanceTable::CBaseHighPerformanceTable(int tableId, QWidget* parent)
    : IBaseTable(tableId, parent), m_d(std::make_unique<Private>(this)) {}

CBaseHighPerformanceTable::~CBaseHighPerformanceTable() = default;

void CBaseHighPerformanceTable::updateData(const rdservice::IDataPtr& record, bool refreshNow) {
  m_d->store->change([&](CTableChanges& changes) {
    changes.add(record);
    changes.refresh = changes.refresh || refreshNow;
  });
}

void CBaseHighPerformanceTable::updateDatas(const std::vector<rdservice::IDataPtr>& records, bool refreshNow) {
  m_d->store->change([&](CTableChanges& changes) {
    changes.records.reserve(changes.records.size() + records.size());
    for (const auto& record : records) changes.add(record);
    changes.refresh = changes.refresh || refreshNow;
  });
}

rdservice::IDataPtr CBaseHighPerformanceTable::getDataByKey(const std::string& key) const {
  return m_d->store->find(key);
}

std::vector<rdservice::IDataPtr> CBaseHighPerformanceTable::getAllDatas() const { return m_d->store->all(); }

void CBaseHighPerformanceTable::setScope(const CTableScope& scope) { m_d->store->setScope(scope); }

CTableScope CBaseHighPerformanceTable::scope() const { return m_d->store->scope(); }

void CBaseHighPerformanceTable::clear() {
  utils::assertGui();
  m_d->store->clear();
  m_d->model.clear();
}

void CBaseHighPerformanceTable::updateTable() {
  utils::assertGui();
  if (m_d->isUpdating) return;  // a slot of one of the model's signals
  const auto end = std::chrono::steady_clock::now() + TAKING_TIME;
  const CDrainLimits limits{ROWS_PER_STEP, ROWS_PER_TURN, [end] { return std::chrono::steady_clock::now() >= end; }};

  m_d->isUpdating = true;
  bool isDone = false;
  {
    const CTableView::CScrollKeeper keeper(*m_d->view);
    isDone = drainTable(*m_d->store, m_d->model, limits);
  }
  m_d->isUpdating = false;
  // The next turn also waits for a writer that holds the rows; a millisecond keeps the loop from spinning meanwhile.
  if (isDone || m_d->isGoingOn) return;
  m_d->isGoingOn = true;
  QTimer::singleShot(NEXT_TURN_MS, this, [this] {
    m_d->isGoingOn = false;
    updateTable();
  });
}

bool CBaseHighPerformanceTable::isUpToDate() const {
  utils::assertGui();
  return m_d->store->isDrained();
}

int CBaseHighPerformanceTable::rowCount() const {
  utils::assertGui();
  return m_d->model.rowCount();
}

rdservice::IDataPtr CBaseHighPerformanceTable::getData(int row) const {
  utils::assertGui();
  return m_d->model.record(row);
}

QString CBaseHighPerformanceTable::cellText(int row, int columnId) const {
  utils::assertGui();
  return m_d->model.text(row, columnId);
}

CStandardHpfTable::CStandardHpfTable(int tableId, QWidget* parent) : CBaseHighPerformanceTable(tableId, parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(findChild<CTableView*>());
}

CStandardHpfTable::~CStandardHpfTable() = default;

}  // namespace GW
