// The GUI side of the paged compact table: what the panel and the user ask for.

#include "compacts/tables/CCompactsPageTable.h"

#include "compacts/tables/compact_fields.h"
#include "gw/widget_events.h"
#include "rdservice/CQueryCompactReqV2.h"
#include "utils/threads.h"
#include "vn/CCompactQueryModel.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <boost/make_shared.hpp>

namespace VN {

namespace {

constexpr const char* PROGRESS = "已查询 %1 条…";

}  // namespace

CCompactsPageTable::CCompactsPageTable(int singleSelect, int tableId, int secondId, QWidget* parent)
    : CCompactsBaseTable(tableId, secondId, parent) {
  setSignals({[this] { Q_EMIT sigQueryData(); }, [this] { Q_EMIT sigUpdateTable(); }, [this] { abandonQuery(); }});
  setObjectName(QStringLiteral("compactsPageTable%1").arg(tableId));
  setTradeType(rdservice::TraderTypeStockCredit);
  connect(this, &CCompactsPageTable::sigQueryData, this, &CCompactsPageTable::slotQueryData);
  connect(this, &CCompactsPageTable::sigUpdateTable, this, &CCompactsPageTable::slotUpdateTable);
  setTableFlags(tableFlags() | GW::TableFlagPaging);
  setSimplePagingQueryType(GW::PagingPartPages);
  m_columns.build(*this, singleSelect != 0);
  refreshPagingButtons();
}

CCompactsPageTable::~CCompactsPageTable() {
  close();
  stopFullQuery();
  disconnect(this, &CCompactsPageTable::sigQueryData, this, &CCompactsPageTable::slotQueryData);
}

void CCompactsPageTable::setCompactType(int compactType, int) {
  utils::assertGui();
  if (storeCompactType(compactType)) refresh(std::string(), false, false);
}

void CCompactsPageTable::onPushData(rdservice::IDataPtr) {}

void CCompactsPageTable::reservedHook() {}

void CCompactsPageTable::setAccount(const std::string& account, bool queryIfChanged, bool notifyIfSame) {
  utils::assertGui();
  if (!storeAccount(account)) {
    if (notifyIfSame) emitQueryData();
  } else if (queryIfChanged) {
    refresh(std::string(), true, false);
  } else {
    clearData(true);  // nothing of the old account stays under the new one's name
  }
}

void CCompactsPageTable::clearData(bool dropCache) {
  utils::assertGui();
  postStep(shownScope(), turnBook([dropCache](CPageBook& book) { return book.reset(dropCache); }));
  stopFullQuery();
  m_received = 0;
  showProgress();
  refreshPagingButtons();
  clear();
  emitUpdateTable();
}

bool CCompactsPageTable::refresh(const std::string& account, bool flag, bool fullQuery) {
  utils::assertGui();
  if (!account.empty() && account != currentAccount()) return false;
  clearData(flag);
  startQuery(flag, fullQuery);
  return true;
}

void CCompactsPageTable::startQuery(bool direct, bool fullQuery) {
  const std::string account = currentAccount();
  if (account.empty())
    emitQueryData();
  else if (!direct)
    postToStrand([this, account, number = shownScope().query] { queryPage(account, number); });
  else if (fullQuery)
    queryEverything(account);
  else
    queryPage(account, shownScope().query);
}

void CCompactsPageTable::queryEverything(const std::string& account) {
  const CAccountPtr info = getUserConfig()->getAccountData(QString::fromStdString(account));
  if (!info) {
    emitQueryData();
    return;
  }
  CPageStep step = turnBook([](CPageBook& book) { return book.beginQuery(); });
  const std::uint64_t query = step.number;
  const int type = shownScope().type;
  const bool unclosed = getID() == TableUnclosedCompacts;
  postStep(shownScope(), std::move(step));
  refreshPagingButtons();
  auto complete = guarded([this, account, type, unclosed, query](bool success, std::vector<rdservice::IDataPtr> records,
                                                                 const std::string& errorText) {
    if (unclosed)
      onFullQueryUnfinishCompact(account, type, success, std::move(records), errorText, query);
    else
      onFullQueryfinishCompact(account, type, success, std::move(records), errorText, query);
  });
  auto progress = guarded([this, query](std::size_t records) {
    if (query != shownScope().query) return;
    m_received = records;
    if (!m_isProgressPosted.exchange(true))
      QMetaObject::invokeMethod(
          this, [this] { showProgress(); }, Qt::QueuedConnection);
  });
  const auto model =
      std::make_shared<CCompactQueryModel>(info, recordTypeOfTable(getID()), std::move(complete), std::move(progress));
  m_fullQuery = model;
  model->start();
}

void CCompactsPageTable::stopFullQuery() {
  if (const auto model = m_fullQuery.lock()) model->stop();
  m_fullQuery.reset();
}

/// Only a full query has received anything: other queries leave the footer's line empty.
void CCompactsPageTable::showProgress() {
  utils::assertGui();
  m_isProgressPosted = false;
  const std::size_t received = m_received;
  setPagingNote(received == 0 ? QString() : QString::fromUtf8(PROGRESS).arg(received));
}

void CCompactsPageTable::sendQuery(const GW::CTableScope& scope, const std::string& position) {
  const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
  request->compactType = scope.type;
  request->positionString = position;
  request->requestCount = pageSizeOf(scope.account);
  request->accountKey = scope.account;
  const auto type = static_cast<rdservice::EKVCompactType>(scope.type);
  const bool unclosed = getID() == TableUnclosedCompacts;
  auto reply = guarded([this, account = scope.account, type, unclosed, query = scope.query](
                           const utils::RDError& error, const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                           const bson::BSONObj& extra) {
    if (unclosed)
      onQueryUnfinishCompact(account, error, compacts, reserved, extra, type, query);
    else
      onQueryCompleteCompact(account, error, compacts, reserved, extra, type, query);
  });
  if (unclosed)
    CTradeClient::instance()->queryUnclosedCompacts(request, reply);
  else
    CTradeClient::instance()->queryClosedCompacts(request, reply);
}

void CCompactsPageTable::setSelectColumnVisible(bool visible) {
  utils::assertGui();
  m_columns.setSelectVisible(visible);
}

int CCompactsPageTable::compactIndex(const QString& key) {
  const utils::CMutexLock lock(m_bookMutex);
  return m_book.indexOf(key.toStdString());
}

void CCompactsPageTable::setBrushSourceFilter(int brushSource) { filterBrushSource(brushSource); }

void CCompactsPageTable::clearTable(const std::string& account) {
  if (account == currentAccount()) Q_EMIT sigClearTable(account);
}

void CCompactsPageTable::clearRadioSelection() {
  utils::assertGui();
  m_columns.clearRadioSelection();
}

rdservice::IDataPtr CCompactsPageTable::currentCheckedData() {
  utils::assertGui();
  return m_columns.checkedRadio();
}

QList<rdservice::IDataPtr> CCompactsPageTable::checkedDatas() {
  utils::assertGui();
  return m_columns.checkedRows();
}

GW::CBaseTableColumnLineeditDelegate* CCompactsPageTable::priorityEditDelegate() { return m_columns.priorityEditor; }

bool CCompactsPageTable::handleEvent(int type, int p1, int p2, QString text, void* data) {
  utils::assertGui();
  if (type == GW::EventRowDoubleClicked) {
    if (const rdservice::CStkUnClosedCompactsPtr compact = doubleClickedCompact(text)) {
      Q_EMIT sigDoubleClickCompact(compact);
      return true;
    }
  }
  if (type == GW::EventButtonClicked) pressed(static_cast<GW::EPagingButton>(p1));
  return m_columns.handleEvent(type, text) || CHpfDataTable::handleEvent(type, p1, p2, text, data);
}

void CCompactsPageTable::pressed(GW::EPagingButton button) {
  GW::CTableScope scope = shownScope();
  const int pageSize = pageSizeOf(scope.account);
  CPageStep step = turnBook([&](CPageBook& book) { return book.press(button, pageSize, scope.type); });
  scope.query = step.number;
  if (step.what != CPageStep::Nothing) clearRows();
  refreshPagingButtons();  // the bar has counted by itself
  if (step.what == CPageStep::Query) sendQuery(scope, step.position);
  postStep(scope, std::move(step));
}

void CCompactsPageTable::refreshPagingButtons() {
  utils::assertGui();
  const int pageSize = pageSizeOf(currentAccount());
  CPageButtons buttons;
  int page = 1;
  {
    const utils::CMutexLock lock(m_bookMutex);
    buttons = m_book.buttons(pageSize);
    page = m_book.pageNo();
  }
  resetPageNum(page);
  setPagingQueryBtnEnable(GW::PagingFirst, buttons.first);
  setPagingQueryBtnEnable(GW::PagingPrevious, buttons.previous);
  setPagingQueryBtnEnable(GW::PagingNext, buttons.next);
}

void CCompactsPageTable::slotQueryData() {
  refreshPagingButtons();
  showProgress();
  updateTable();
}

void CCompactsPageTable::slotUpdateTable() { updateTable(); }

}  // namespace VN
