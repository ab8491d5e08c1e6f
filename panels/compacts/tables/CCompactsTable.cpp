#include "compacts/tables/CCompactsTable.h"

#include "compacts/tables/compact_fields.h"
#include "gw/widget_events.h"
#include "rdservice/ConfigCollector.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <boost/make_shared.hpp>

namespace VN {

namespace {

constexpr int ALL_COMPACTS = 999999;

}  // namespace

CCompactsTable::CCompactsTable(int singleSelect, int tableId, int secondId, QWidget* parent)
    : CCompactsBaseTable(tableId, secondId, parent),
      m_splitPage(rdservice::ConfigCollector::instance()->useSplitPageOfStkCompact()),
      m_calcCompactType(rdservice::ConfigCollector::instance()->calcCompactType()) {
  setSignals({[this] { Q_EMIT sigQueryData(); }, [this] { Q_EMIT sigUpdateTable(); }});
  setObjectName(QStringLiteral("compactsTable%1").arg(tableId));
  setTradeType(rdservice::TraderTypeStockCredit);
  connect(this, &CCompactsTable::sigQueryData, this, &CCompactsTable::slotQueryData);
  connect(this, &CCompactsTable::sigClearTable, this, &CCompactsTable::slotClearTable);
  if (m_splitPage) {
    setTableFlags(tableFlags() | GW::TableFlagPaging);
    setPagingQueryType({QString::number(PAGE_SIZE)});
    setSimplePagingQueryType(GW::PagingPartPages | GW::PagingPartLast | GW::PagingPartTotal);
  }
  m_changeSubscription = CTradeClient::instance()->subscribeCompactChange(
      guarded([this](bool replaced, const std::string& account, int dataType) {
        onCompactChange(replaced, account, dataType);
      }));
  m_columns.build(*this, singleSelect != 0);
}

CCompactsTable::~CCompactsTable() {
  close();
  m_changeSubscription.reset();
  disconnect(this, &CCompactsTable::sigQueryData, this, &CCompactsTable::slotQueryData);
}

void CCompactsTable::setCompactType(int compactType, int) {
  utils::assertGui();
  if (storeCompactType(compactType)) refresh(std::string(), false, false);
}

void CCompactsTable::setAccount(const std::string& account, bool serverQuery, bool notifyIfSame) {
  utils::assertGui();
  if (!storeAccount(account)) {
    if (notifyIfSame) emitQueryData();
    return;
  }
  clearData(true);
  startQuery(serverQuery);
}

void CCompactsTable::clearData(bool) {
  utils::assertGui();
  resetPageNum(1);
  m_total = 0;
  refreshPagingButtons();
  clear();
  emitUpdateTable();
}

bool CCompactsTable::refresh(const std::string& account, bool flag, bool) {
  utils::assertGui();
  if (!account.empty() && account != currentAccount()) return false;
  clearData(flag);
  startQuery(flag);
  return true;
}

void CCompactsTable::clearTable(const std::string& account) {
  if (account == currentAccount()) Q_EMIT sigClearTable(account);
}

void CCompactsTable::setSelectColumnVisible(bool visible) {
  utils::assertGui();
  m_columns.setSelectVisible(visible);
}

void CCompactsTable::reservedHook() {}

int CCompactsTable::compactIndex(const QString& key) { return arrivalIndex(key.toStdString()) + 1; }

void CCompactsTable::setBrushSourceFilter(int brushSource) { filterBrushSource(brushSource); }

void CCompactsTable::clearRadioSelection() {
  utils::assertGui();
  m_columns.clearRadioSelection();
}

rdservice::IDataPtr CCompactsTable::currentCheckedData() {
  utils::assertGui();
  return m_columns.checkedRadio();
}

QList<rdservice::IDataPtr> CCompactsTable::checkedDatas() {
  utils::assertGui();
  return m_columns.checkedRows();
}

GW::CBaseTableColumnLineeditDelegate* CCompactsTable::priorityEditDelegate() { return m_columns.priorityEditor; }

bool CCompactsTable::handleEvent(int type, int p1, int p2, QString text, void* data) {
  utils::assertGui();
  if (type == GW::EventRowDoubleClicked) {
    if (const rdservice::CStkUnClosedCompactsPtr compact = doubleClickedCompact(text)) {
      Q_EMIT sigDoubleClickCompact(compact);
      return true;
    }
  }
  if (type == GW::EventButtonClicked && m_splitPage) {
    clearRows();
    refreshPagingButtons();  // there is no page behind the last one
    postRebuild(currentAccount());
  }
  return m_columns.handleEvent(type, text) || CHpfDataTable::handleEvent(type, p1, p2, text, data);
}

void CCompactsTable::refreshPagingButtons() {
  if (!m_splitPage) return;
  const int page = getPageNum();
  const int total = m_total;
  setPagingTotal(total);
  setPagingQueryBtnEnable(GW::PagingFirst, page != 1);
  setPagingQueryBtnEnable(GW::PagingPrevious, page != 1);
  setPagingQueryBtnEnable(GW::PagingNext, total >= page * PAGE_SIZE);
  setPagingQueryBtnEnable(GW::PagingLast, page != total / PAGE_SIZE + 1);
}

void CCompactsTable::slotQueryData() {
  refreshPagingButtons();
  updateTable();
}

void CCompactsTable::slotUpdateTable() { updateTable(); }

void CCompactsTable::slotClearTable(const std::string& account) {
  if (account != currentAccount()) return;  // another account has been chosen since the signal was emitted
  clearData(true);
  postRebuild(account);
}

void CCompactsTable::startQuery(bool serverQuery) {
  const GW::CTableScope scope = shownScope();
  if (scope.account.empty()) {
    emitQueryData();
    return;
  }
  if (!serverQuery) {
    postRebuild(scope.account);
    return;
  }
  if (!m_calcCompactType) {
    const auto request = boost::make_shared<rdservice::CQueryDataReq>();
    request->accountInfo = getUserConfig()->getAccountData(QString::fromStdString(scope.account));
    if (!request->accountInfo) {
      emitQueryData();  // nobody would announce the answer for an account that the client does not know
      return;
    }
    request->dataType = recordTypeOfTable(getID());
    CTradeClient::instance()->queryData(request, nullptr);
    return;
  }
  const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
  request->compactType = scope.type;
  request->accountKey = scope.account;
  request->requestCount = ALL_COMPACTS;
  const auto type = static_cast<rdservice::EKVCompactType>(scope.type);
  const bool unclosed = getID() == TableUnclosedCompacts;
  auto reply = guarded([this, account = scope.account, type, unclosed](const utils::RDError& error,
                                                                       const std::vector<rdservice::IDataPtr>& compacts,
                                                                       int reserved, const bson::BSONObj& extra) {
    if (unclosed)
      onQueryUnfinishCompact(account, error, compacts, reserved, extra, type);
    else
      onQueryCompleteCompact(account, error, compacts, reserved, extra, type);
  });
  if (unclosed)
    CTradeClient::instance()->queryUnclosedCompacts(request, reply);
  else
    CTradeClient::instance()->queryClosedCompacts(request, reply);
}

}  // namespace VN
