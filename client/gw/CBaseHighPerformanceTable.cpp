#include "gw/CBaseHighPerformanceTable.h"

#include "gw/CBaseHighPerformanceTablePrivate.h"
#include "gw/view/CCellControls.h"
#include "gw/view/CTableAccessible.h"
#include "gw/widget_events.h"

#include "rdservice/prefetch.h"
#include "utils/threads.h"

#include <QVBoxLayout>

#include <algorithm>
#include <cassert>
#include <chrono>
#include <utility>

namespace GW {

namespace {

using std::chrono::steady_clock;

// Taking rows over is given five of a turn's 8 ms; the view's share takes the rest.
constexpr double TAKING_NS = 5e6;
/// After more, putting the rows in order is left to a turn of its own: of many it takes long too.
constexpr double ORDERING_NS = 2.5e6;
constexpr int BUSY_WAIT_MS = 1;
constexpr std::size_t KEY_BYTES = 192;  ///< of a record, from its beginning, in which its key stands
constexpr std::size_t ROWS_PER_STEP = 2048;
constexpr std::size_t ROWS_PER_TURN = 100000;
/// Fewer are left for the next turn.
constexpr double LEAST_ROWS = 256;

}  // namespace

CBaseHighPerformanceTable::Private::Private(CBaseHighPerformanceTable* table)
    : q(table),
      shared(std::make_shared<CSharedRows>([table] {
        QMetaObject::invokeMethod(
            table, [table] { table->updateTable(); }, Qt::QueuedConnection);
      })),
      face(
          rows, [table](int columnId, bool enabled) { table->setColumnSumVisible(columnId, enabled); }, nullptr),
      view(new CHpfTableView(rows, table)),
      findBar(new CFindBar(*view, table)) {
  rows.setObserver(this);
  QObject::connect(view, &CHpfTableView::sigSortRequested, table,
                   [this](int columnId, bool extend) { onSortRequested(columnId, extend); });
  QObject::connect(view, &CHpfTableView::sigFilterRequested, table,
                   [this](int columnId, const QRect& section) { openFilterMenu(columnId, section); });
  QObject::connect(view, &CHpfTableView::sigHeaderCheckBoxClicked, table, [table](int columnId, bool checked) {
    table->handleEvent(EventHeaderCheckBox, columnId, checked ? 1 : 0, QString(), nullptr);
  });
  QObject::connect(view, &CHpfTableView::sigRowDoubleClicked, table, [this](int row) {
    const int slot = rows.slotAt(row);
    if (slot < 0) return;
    q->handleEvent(EventRowDoubleClicked, row, 0, QString::fromStdString(rows.key(slot)), nullptr);
  });
  QObject::connect(&view->controls(), &CCellControls::sigStored, table, [table] { table->updateTable(); });
  turnTimer.setSingleShot(true);
  QObject::connect(&turnTimer, &QTimer::timeout, table, [table] { table->updateTable(); });
}

CBaseHighPerformanceTable::Private::~Private() {
  assert(!isUpdating && "no slot of the model's signals destroys the table");
  shared->close();
  rows.setObserver(nullptr);
  delete findBar;
  delete view;
}

void CBaseHighPerformanceTable::Private::rowsAboutToChange(const CRowsChange& change) {
  face.rowsAboutToChange(change);
  view->rowsAboutToChange(change);
}

void CBaseHighPerformanceTable::Private::rowsChanged(const CRowsChange& change) {
  view->rowsChanged(change);
  findBar->rowsChanged(change);
  if (filterMenu) filterMenu->rowsChanged(change);
  updateTableAccessibility(*view, change);
  face.rowsChanged(change);  // last: a slot of its signals may change the rows again
}

bool CBaseHighPerformanceTable::Private::takeTurn() {
  const auto begin = steady_clock::now();
  const auto spent = [begin] { return std::chrono::duration<double, std::nano>(steady_clock::now() - begin).count(); };
  if (isOrderingDue) rows.finishApplying();
  std::size_t left = ROWS_PER_TURN;
  std::size_t limit = ROWS_PER_STEP;  // the first rows of a turn tell how many more there may be
  double nsPerRow = 0;
  bool isMore = true;
  isWriterBusy = false;
  while (isMore && limit > 0 && !isWriterBusy) {
    CRowsDrain drain;
    // Only dropped rows part what is taken at once.
    std::size_t taken = 0;
    do {
      isMore = shared->drain(limit - taken, drain);
      if (drain.slots.size() == taken) break;
      taken = drain.slots.size();
    } while (isMore && taken < limit && !drain.isBusy);
    isWriterBusy = drain.isBusy;
    const bool isFew = left == ROWS_PER_TURN;  // no more than the first step's
    drain.isMore = isMore || (!isFew && spent() + static_cast<double>(taken) * nsPerRow > ORDERING_NS);
    if (!drain.isEmpty()) rows.apply(std::move(drain));
    left -= taken;
    nsPerRow = spent() / static_cast<double>(ROWS_PER_TURN - left + 1);
    const double rowsLeft = (TAKING_NS - spent()) / nsPerRow;
    limit = rowsLeft < LEAST_ROWS ? 0 : std::min(left, static_cast<std::size_t>(rowsLeft));
  }
  isOrderingDue = !isMore && rows.hasWaiting() && spent() > ORDERING_NS;
  if (!isMore && !isOrderingDue) rows.finishApplying();
  return !isMore && !isOrderingDue;
}

CBaseHighPerformanceTable::CBaseHighPerformanceTable(int tableId, QWidget* parent)
    : IBaseTable(tableId, parent), m_d(std::make_unique<Private>(this)) {
  installTableAccessibility();
}

CBaseHighPerformanceTable::~CBaseHighPerformanceTable() = default;

void CBaseHighPerformanceTable::updateData(const rdservice::IDataPtr& record, bool refreshNow) {
  m_d->shared->change([&](CChangeSet& changes) {
    changes.add(record);
    changes.refresh = changes.refresh || refreshNow;
  });
}

void CBaseHighPerformanceTable::updateDatas(const std::vector<rdservice::IDataPtr>& records, bool refreshNow) {
  m_d->shared->change([&](CChangeSet& changes) {
    changes.reserve(changes.records.size() + records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
      if (i + rdservice::PREFETCH_AHEAD < records.size())
        rdservice::prefetch(records[i + rdservice::PREFETCH_AHEAD].get(), KEY_BYTES);
      changes.add(records[i]);
    }
    changes.refresh = changes.refresh || refreshNow;
  });
}

rdservice::IDataPtr CBaseHighPerformanceTable::getDataByKey(const std::string& key) const {
  return m_d->shared->find(key);
}

int CBaseHighPerformanceTable::arrivalIndex(const std::string& key) const { return m_d->shared->slotOf(key); }

std::vector<rdservice::IDataPtr> CBaseHighPerformanceTable::getAllDatas() const { return m_d->shared->all(); }

void CBaseHighPerformanceTable::setScope(const CTableScope& scope) { m_d->shared->setScope(scope); }

CTableScope CBaseHighPerformanceTable::scope() const { return m_d->shared->scope(); }

void CBaseHighPerformanceTable::setCellValue(int columnId, const std::string& key, qint64 value) {
  CItemChange item;
  item.part = EItemPart::Value;
  item.value = value;
  m_d->changeCell(columnId, key, std::move(item));
}

void CBaseHighPerformanceTable::setCellText(int columnId, const std::string& key, const QString& text) {
  CItemChange item;
  item.part = EItemPart::Text;
  item.text = text;
  m_d->changeCell(columnId, key, std::move(item));
}

void CBaseHighPerformanceTable::Private::changeCell(int columnId, const std::string& key, CItemChange item) const {
  item.column = columnId;
  item.key = key;
  shared->change([&](CChangeSet& changes) { changes.add(item); });
}

void CBaseHighPerformanceTable::clear() {
  utils::assertGui();
  m_d->shared->clear();
  m_d->rows.clear();
}

void CBaseHighPerformanceTable::finishEditing() { m_d->view->controls().finish(); }

void CBaseHighPerformanceTable::clearRows() {
  utils::assertGui();
  m_d->shared->clearKeepingCells();
  m_d->rows.clear();
}

void CBaseHighPerformanceTable::updateTable() {
  utils::assertGui();
  if (m_d->isUpdating) {  // a slot of one of the model's signals, perhaps with an event loop of its own
    m_d->isAskedAgain = true;
    return;
  }
  m_d->isUpdating = true;
  m_d->view->changesBegin();
  const bool isDone = m_d->takeTurn();
  m_d->view->changesEnd();
  m_d->isUpdating = false;
  const bool isAskedAgain = std::exchange(m_d->isAskedAgain, false);
  if ((isDone && !isAskedAgain) || m_d->turnTimer.isActive()) return;
  // By a timer, for which events that wait come first. While a writer holds the rows, the event loop must not spin.
  m_d->turnTimer.start(m_d->isWriterBusy ? BUSY_WAIT_MS : 0);
}

bool CBaseHighPerformanceTable::isUpToDate() const {
  utils::assertGui();
  return m_d->shared->isDrained() && !m_d->rows.hasWaiting();
}

int CBaseHighPerformanceTable::rowCount() const {
  utils::assertGui();
  return m_d->rows.rowCount();
}

rdservice::IDataPtr CBaseHighPerformanceTable::getData(int row) const {
  utils::assertGui();
  return m_d->rows.record(m_d->rows.slotAt(row));
}

int CBaseHighPerformanceTable::rowOfKey(const std::string& key) const {
  utils::assertGui();
  return m_d->rows.rowOf(m_d->shared->slotOf(key));
}

QString CBaseHighPerformanceTable::cellText(int row, int columnId) const {
  utils::assertGui();
  return m_d->rows.text(m_d->rows.slotAt(row), columnId);
}

IBaseHpfTableModel* CBaseHighPerformanceTable::getModel() const {
  utils::assertGui();
  return &m_d->face;
}

std::vector<int> CBaseHighPerformanceTable::selectedRows() const {
  utils::assertGui();
  return m_d->view->selectedRows();
}

int CBaseHighPerformanceTable::currentRow() const {
  utils::assertGui();
  return m_d->view->currentRow();
}

void CBaseHighPerformanceTable::selectRow(int row) {
  utils::assertGui();
  if (row < 0 || row >= rowCount()) return;
  m_d->view->selectRows(row, row);
  m_d->view->setCurrentCell(row, m_d->view->currentColumn());
  m_d->view->scrollToCell(row, -1);
}

std::size_t CBaseHighPerformanceTable::memory() const {
  utils::assertGui();
  return m_d->shared->memory() + m_d->rows.memory();
}

CStandardHpfTable::CStandardHpfTable(int tableId, QWidget* parent) : CBaseHighPerformanceTable(tableId, parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(findChild<CHpfTableView*>(), 1);
  layout->addWidget(findChild<CFindBar*>());
  layout->addWidget(pagingBar());
}

CStandardHpfTable::~CStandardHpfTable() = default;

}  // namespace GW
