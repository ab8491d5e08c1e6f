#include "compacts/tables/CCompactsTable.h"

#include "compacts/tables/compact_fields.h"
#include "gw/column_delegates.h"
#include "gw/widget_events.h"
#include "rdservice/ConfigCollector.h"
#include "rdservice/TypeManager.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <iterator>

namespace VN {

namespace {

constexpr int ALL_COMPACTS = 999999;

constexpr int PAGE_SIZE = 500;
/// Counter types whose compacts may be renewed by a number of days, and which know no repayment by double click.
constexpr int RENEWAL_COUNTERS[] = {200, 102};

bool isRenewalCounter(int counterType) {
  return std::find(std::begin(RENEWAL_COUNTERS), std::end(RENEWAL_COUNTERS), counterType) != std::end(RENEWAL_COUNTERS);
}

/// What a table's own bar and cells report stays in it: further out, small ids mean views of the panel.
bool isOwnEvent(int type) {
  switch (type) {
    case GW::EventButtonClicked:
    case GW::EventItemClicked:
    case GW::EventCheckChanged:
    case GW::EventSpinChanged:
    case GW::EventSpinBegin:
    case GW::EventLineEditBegin: return true;
    default: return false;
  }
}

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
      guarded<CCompactsTable>([](CCompactsTable& table, bool replaced, const std::string& account, int dataType) {
        table.onCompactChange(replaced, account, dataType);
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
  if (m_columns.select < 0) return;
  setColumnVisible(m_columns.select, visible);
  setColumnChoosable(m_columns.select, visible);
}

void CCompactsTable::reservedHook() {}

int CCompactsTable::compactIndex(const QString& key) { return arrivalIndex(key.toStdString()) + 1; }

void CCompactsTable::setBrushSourceFilter(int brushSource) {
  utils::assertGui();
  if (getID() != TableUnclosedCompacts) return;
  const std::string name = rdservice::TypeManager::getEnumItemName("rdservice::EKVCompactBrushSource", brushSource,
                                                                   rdservice::TraderTypeStockCredit);
  onFilterTrigger(getColumnIdByFileId(FileIdUnclosedSource), GW::FilterValues, {QString::fromStdString(name)});
  updateFilter();
}

void CCompactsTable::clearRadioSelection() {
  utils::assertGui();
  if (m_columns.radio == nullptr) return;
  const QString key = m_columns.radio->checkedKey();
  if (!key.isEmpty()) m_columns.resetSelectItem(key);
  updateTable();
}

rdservice::IDataPtr CCompactsTable::currentCheckedData() {
  if (m_columns.radio == nullptr) return nullptr;
  const QString key = m_columns.radio->checkedKey();
  return key.isEmpty() ? nullptr : getDataByKey(key.toStdString());
}

QList<rdservice::IDataPtr> CCompactsTable::checkedDatas() {
  utils::assertGui();
  QList<rdservice::IDataPtr> checked;
  if (m_columns.check == nullptr) return checked;
  const int rows = rowCount();
  checked.reserve(rows);
  for (int row = 0; row < rows; ++row) {
    const rdservice::IDataPtr record = getData(row);
    if (m_columns.check->isItemChecked(QString::fromStdString(record->getKey()))) checked.push_back(record);
  }
  return checked;
}

GW::CBaseTableColumnLineeditDelegate* CCompactsTable::priorityEditDelegate() { return m_columns.priorityEditor; }

bool CCompactsTable::handleEvent(int type, int p1, int p2, QString text, void* data) {
  utils::assertGui();
  if (type == GW::EventRowDoubleClicked && onRowDoubleClicked(text.toStdString())) return true;
  if (type == GW::EventButtonClicked && m_splitPage) {
    clear();
    postToStrand<CCompactsTable>(
        [account = currentAccount()](CCompactsTable& table) { table.rebuildRows(account, false); });
  }
  return isOwnEvent(type) || CHpfDataTable::handleEvent(type, p1, p2, text, data);
}

bool CCompactsTable::onRowDoubleClicked(const std::string& key) {
  if (getID() != TableUnclosedCompacts || isRenewalCounter(CUserManager::getUserConfig()->counterType())) return false;
  const auto compact = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(getDataByKey(key));
  if (!compact) return false;
  Q_EMIT sigDoubleClickCompact(compact);
  return true;
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
  postToStrand<CCompactsTable>([account](CCompactsTable& table) { table.rebuildRows(account, false); });
}

void CCompactsTable::startQuery(bool serverQuery) {
  const GW::CTableScope scope = shownScope();
  if (scope.account.empty()) {
    emitQueryData();
    return;
  }
  if (!serverQuery) {
    postToStrand<CCompactsTable>(
        [account = scope.account](CCompactsTable& table) { table.rebuildRows(account, false); });
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
  auto reply = guarded<CCompactsTable>(
      [account = scope.account, type, unclosed](CCompactsTable& table, const utils::RDError& error,
                                                const std::vector<rdservice::IDataPtr>& compacts, int reserved,
                                                const bson::BSONObj& extra) {
        if (unclosed)
          table.onQueryUnfinishCompact(account, error, compacts, reserved, extra, type);
        else
          table.onQueryCompleteCompact(account, error, compacts, reserved, extra, type);
      });
  if (unclosed)
    CTradeClient::instance()->queryUnclosedCompacts(request, reply);
  else
    CTradeClient::instance()->queryClosedCompacts(request, reply);
}

}  // namespace VN
