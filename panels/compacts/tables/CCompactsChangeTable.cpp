#include "compacts/tables/CCompactsChangeTable.h"

#include "compacts/tables/compact_fields.h"
#include "gw/column_delegates.h"
#include "rdservice/CStkCompactChange.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CTradeClient.h"
#include "vn/CUserConfig.h"

#include <boost/make_shared.hpp>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr int MENU_FLAGS = 255;
constexpr int TEXT_KIND = 10;
constexpr const char* NAME_TITLE = "证券名称";

// The compact tables share one file name in the log.
constexpr utils::CLogSite SITE{"CCompactsTable.cpp",
                               "void VN::CCompactsChangeTable::onQueryData(const std::string&, const utils::RDError&, "
                               "const std::vector<rdservice::IDataPtr>&, const bson::BSONObj&)"};

}  // namespace

CCompactsChangeTable::CCompactsChangeTable(QWidget* parent)
    : CHpfDataTable(TableCompactChanges, rdservice::RecordStkCompactChange, parent, MENU_FLAGS),
      m_dataType(rdservice::RecordStkCompactChange),
      m_tasks([this](const std::string& what) {
        utils::logError(SITE, "[change compact] task failed : acc = {0}, what = {1}", currentAccount(), what);
        Q_EMIT sigQueryData();
      }) {
  setObjectName(QStringLiteral("compactsChangeTable"));
  setTradeType(rdservice::TraderTypeStockCredit);
  connect(this, &CCompactsChangeTable::sigQueryData, this, &CCompactsChangeTable::slotQueryData);
  CHpfDataColumnProperty name;
  name.title = QString::fromUtf8(NAME_TITLE);
  name.number = NameColumn;
  name.kind = TEXT_KIND;
  m_nameColumn = addColumn(name, false, true, QString());
  m_names = new GW::CBaseTableColumnSimpleTextDelegate(m_nameColumn, this);
  setColumnDelegate(m_nameColumn, m_names);
  if (m_dataType == rdservice::RecordStkCompactChange)
    moveColumnBehind(m_nameColumn, getColumnIdByFileId(FileIdChangeCode));
}

CCompactsChangeTable::~CCompactsChangeTable() {
  m_tasks.close();
  disconnect(this, &CCompactsChangeTable::sigQueryData, this, &CCompactsChangeTable::slotQueryData);
}

std::string CCompactsChangeTable::currentAccount() const {
  const utils::CMutexLock lock(m_accountLock);
  return m_account;
}

void CCompactsChangeTable::setAccount(const std::string& account, bool, bool notifyIfSame) {
  utils::assertGui();
  bool isSame = false;
  {
    const utils::CMutexLock lock(m_accountLock);
    isSame = account == m_account;
    m_account = account;
  }
  if (!isSame)
    refresh(std::string());
  else if (notifyIfSame)
    Q_EMIT sigQueryData();
}

void CCompactsChangeTable::refresh(const std::string& account) {
  utils::assertGui();
  if (!account.empty() && account != currentAccount()) return;
  startOver();
  updateTable();
  query();
}

void CCompactsChangeTable::startOver() {
  setScope({currentAccount(), 0, scope().query + 1});
  clear();
}

void CCompactsChangeTable::clearData() {
  utils::assertGui();
  startOver();
  Q_EMIT sigQueryData();
}

void CCompactsChangeTable::query() {
  const std::string account = currentAccount();
  if (account.empty()) return;
  const auto request = boost::make_shared<rdservice::CQueryDataReq>();
  request->accountInfo = getUserConfig()->getAccountData(QString::fromStdString(account));
  request->dataType = m_dataType;
  CTradeClient::instance()->queryData(
      request,
      m_tasks.guarded(
          [this, madeFor = scope()](const utils::RDError& error, const std::vector<IDataPtr>& records,
                                    const bson::BSONObj& extra) { onQueryData(madeFor, error, records, extra); }),
      0, 0);
}

void CCompactsChangeTable::onQueryData(const GW::CTableScope& madeFor, const utils::RDError& error,
                                       const std::vector<IDataPtr>& records, const bson::BSONObj& extra) {
  const std::string& account = madeFor.account;
  if (madeFor != scope()) {
    logStale(account);
    return;
  }
  if (!error.isSuccess() || !extra.isEmpty()) {
    const std::string why = error.errorMsg().empty() ? extra.toString() : error.errorMsg();
    utils::logInfo(SITE, "[change compact] fail : acc = {0}, errmsg = {1}", account, why);
  } else {
    utils::logInfo(SITE, "[change compact] query success : data acc = {0}, data size = {1}.", account, records.size());
    if (!showRows(madeFor, records)) return;
  }
  Q_EMIT sigQueryData();
}

bool CCompactsChangeTable::showRows(const GW::CTableScope& madeFor, const std::vector<IDataPtr>& records) {
  GW::CTableBatch batch(*this, madeFor);
  for (const IDataPtr& record : records) {
    if (m_tasks.isClosing()) return false;
    writeRow(record);
  }
  const bool isShown = batch.commit();
  if (!isShown) logStale(madeFor.account);
  return isShown;
}

void CCompactsChangeTable::logStale(const std::string& account) const {
  const std::string current = currentAccount();
  if (account != current)
    utils::logInfo(SITE, "[change compact] acc changed : data acc = {0}, current acc = {1}", account, current);
}

void CCompactsChangeTable::writeRow(const IDataPtr& record) {
  const auto change = boost::dynamic_pointer_cast<rdservice::CStkCompactChange>(record);
  if (!change) return;  // nothing that the columns could show
  updateData(record, false);
  const rdservice::CInstrumentInfoPtr instrument =
      rdservice::TraderCenter::instance()->getDataCenter()->getInstrument(change->exchangeId.str(), change->code.str());
  if (instrument)
    m_names->setItemText(QString::fromStdString(change->getKey()), QString::fromStdString(instrument->name), 0);
}

void CCompactsChangeTable::slotQueryData() { updateTable(); }

}  // namespace VN
