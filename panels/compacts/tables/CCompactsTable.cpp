#include "compacts/tables/CCompactsTable.h"

#include "compacts/priority/CBaseTableColumnRepayPriorityTextDelegate.h"
#include "compacts/priority/priority_rights.h"
#include "compacts/tables/compact_fields.h"
#include "rdservice/ConfigCollector.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <boost/make_shared.hpp>

namespace VN {

namespace {

constexpr int ALL_COMPACTS = 999999;

QString priorityTextTitle() { return QStringLiteral("偿还优先级"); }

}  // namespace

CCompactsTable::CCompactsTable(int tableId, int secondId, QWidget* parent)
    : CCompactsBaseTable(tableId, secondId, parent),
      m_calcCompactType(rdservice::ConfigCollector::instance()->calcCompactType()) {
  setSignals({[this] { Q_EMIT sigQueryData(); }, [this] { Q_EMIT sigUpdateTable(); }});
  setObjectName(QStringLiteral("compactsTable%1").arg(tableId));
  setTradeType(rdservice::TraderTypeStockCredit);
  connect(this, &CCompactsTable::sigQueryData, this, &CCompactsTable::slotQueryData);
  connect(this, &CCompactsTable::sigClearTable, this, &CCompactsTable::slotClearTable);
  m_changeSubscription = CTradeClient::instance()->subscribeCompactChange(
      guarded<CCompactsTable>([](CCompactsTable& table, bool replaced, const std::string& account, int dataType) {
        table.onCompactChange(replaced, account, dataType);
      }));
  buildColumns();
}

CCompactsTable::~CCompactsTable() {
  close();
  m_changeSubscription.reset();
  disconnect(this, &CCompactsTable::sigQueryData, this, &CCompactsTable::slotQueryData);
}

void CCompactsTable::buildColumns() {
  if (getID() != TableUnclosedCompacts) return;
  if (hasPrioritySettingAuth()) {
    CHpfDataColumnProperty property;
    property.title = priorityTextTitle();
    property.number = PriorityTextColumn;
    m_priorityTextColumn = addColumn(property, false, true, QString());
    m_priorityText = new GW::CBaseTableColumnRepayPriorityTextDelegate(m_priorityTextColumn, this);
    setColumnDelegate(m_priorityTextColumn, m_priorityText);
  } else {
    setColumnHidden(getColumnIdByFileId(FileIdUnclosedPriority), true);
  }
  moveColumnBehind(m_priorityTextColumn, getColumnIdByFileId(FileIdUnclosedCode));
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

void CCompactsTable::slotQueryData() { updateTable(); }

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
