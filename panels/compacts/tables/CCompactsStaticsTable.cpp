#include "compacts/tables/CCompactsStaticsTable.h"

#include "compacts/tables/compact_fields.h"
#include "compacts/tables/compact_fold.h"
#include "compacts/tables/compact_records.h"
#include "gw/IBaseHpfTableModel.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CCompactQueryModel.h"
#include "vn/CUserConfig.h"

#include <QString>

namespace VN {

using rdservice::CStkUnClosedCompactsStaticsPtr;
using rdservice::IDataPtr;

namespace {

constexpr int MENU_FLAGS = 255;
constexpr int CENTRED = 132;
constexpr int INTEGER_KIND = 4;
constexpr int TEXT_KIND = 10;
constexpr int SUM = 0;
constexpr const char* HOLDING_TITLE = "当前拥股";
constexpr const char* NAME_TITLE = "证券名称";

constexpr const char* FILE_NAME = "CCompactsStaticsTable.cpp";
constexpr utils::CLogSite REPLY_SITE{FILE_NAME,
                                     "void VN::CCompactsStaticsTable::onQueryUnfinishCompact(const std::string&, bool, "
                                     "const std::vector<rdservice::IDataPtr>&, const std::string&)"};
constexpr utils::CLogSite FOLD_SITE{FILE_NAME,
                                    "void VN::CCompactsStaticsTable::doUpdateUnfinishCompactStatics("
                                    "const std::string&, const std::vector<rdservice::IDataPtr>&)"};

}  // namespace

CCompactsStaticsTable::CCompactsStaticsTable(QWidget* parent)
    : CHpfDataTable(TableStatistics, rdservice::RecordStkUnClosedCompactsStatics, parent, MENU_FLAGS),
      m_tasks([this](const std::string& what) {
        utils::logError(FOLD_SITE, "[static compact] task failed : acc = {0}, what = {1}", currentAccount(), what);
        Q_EMIT sigQueryData();
      }) {
  setObjectName(QStringLiteral("compactsStaticsTable"));
  setTradeType(rdservice::TraderTypeStockCredit);
  connect(this, &CCompactsStaticsTable::sigQueryData, this, &CCompactsStaticsTable::slotQueryData);
  addMenu();
  addHoldingColumn();
  addNameColumn();
}

CCompactsStaticsTable::~CCompactsStaticsTable() {
  m_tasks.close();
  stopQuery();
  disconnect(this, &CCompactsStaticsTable::sigQueryData, this, &CCompactsStaticsTable::slotQueryData);
}

void CCompactsStaticsTable::addHoldingColumn() {
  CHpfDataColumnProperty holding;
  holding.title = QString::fromUtf8(HOLDING_TITLE);
  holding.number = HoldingColumn;
  holding.kind = INTEGER_KIND;
  holding.alignment = CENTRED;
  holding.setting1 = 1;
  holding.setting2 = 0;
  m_holdingColumn = addColumn(holding, false, true, QString());
  getExtraDataModel()->addColumn(m_holdingColumn, CExtraColumnInfo());
  getModel()->setColumnStatEnable(m_holdingColumn, true, SUM, -1, QString());
  getExtraDataModel()->setColumnStatEnable(m_holdingColumn, true, SUM, -1, QString());
}

void CCompactsStaticsTable::addNameColumn() {
  CHpfDataColumnProperty name;
  name.title = QString::fromUtf8(NAME_TITLE);
  name.number = NameColumn;
  name.kind = TEXT_KIND;
  name.alignment = CENTRED;
  name.setting2 = 1;
  m_nameColumn = addColumn(name, false, true, QString());
  getExtraDataModel()->addColumn(m_nameColumn, CExtraColumnInfo());
  moveColumnBehind(m_nameColumn, getColumnIdByFileId(FileIdStatisticsCode));
}

std::string CCompactsStaticsTable::currentAccount() const {
  const utils::CMutexLock lock(m_accountLock);
  return m_account;
}

void CCompactsStaticsTable::setAccount(const std::string& account, bool query, bool notifyIfSame) {
  utils::assertGui();
  bool isSame = false;
  {
    const utils::CMutexLock lock(m_accountLock);
    isSame = account == m_account;
    m_account = account;
    setScope({account, 0, 0});
  }
  if (isSame) {
    if (notifyIfSame) Q_EMIT sigQueryData();
  } else if (query) {
    refresh(std::string(), query);
  } else {
    clear();  // so that no basket is made of another account's liabilities
  }
}

void CCompactsStaticsTable::refresh(const std::string& account, bool force) {
  utils::assertGui();
  if (!account.empty() && account != currentAccount()) return;
  m_statics.clear();
  clear();
  moveColumnBehind(m_nameColumn, getColumnIdByFileId(FileIdStatisticsCode));
  updateTable();
  getExtraDataModel()->setColumnStatEnable(m_holdingColumn, true, SUM, -1, QString());
  queryData(force);
}

void CCompactsStaticsTable::queryData(bool force) {
  const std::string account = currentAccount();
  stopQuery();
  if (force && !account.empty()) {
    const CAccountPtr info = getUserConfig()->getAccountData(QString::fromStdString(account));
    if (!info) {
      Q_EMIT sigQueryData();
      return;
    }
    const auto model = std::make_shared<CCompactQueryModel>(
        info, rdservice::RecordStkUnClosedCompacts,
        m_tasks.guarded([this, account, number = ++m_queryNumber](bool success, const std::vector<IDataPtr>& records,
                                                                  const std::string& error) {
          if (!success && number != m_queryNumber)
            Q_EMIT sigQueryData();  // stopped
          else
            onQueryUnfinishCompact(account, success, records, error);
        }));
    m_query = model;
    model->start();
    return;
  }
  if (const rdservice::CAccountDataPtr store = accountDataOf(account))
    doUpdateUnfinishCompactStatics(account, store->getData(rdservice::RecordStkUnClosedCompacts));
  Q_EMIT sigQueryData();
}

void CCompactsStaticsTable::stopQuery() {
  if (const auto model = m_query.lock()) model->stop();
}

void CCompactsStaticsTable::endStale(const std::string& account) {
  utils::logInfo(REPLY_SITE, "[static compact] acc changed : data acc = {0}, current acc = {1}.", account,
                 currentAccount());
  Q_EMIT sigQueryData();
}

void CCompactsStaticsTable::onQueryUnfinishCompact(const std::string& account, bool success,
                                                   const std::vector<IDataPtr>& records,
                                                   const std::string& errorMessage) {
  if (account != currentAccount()) {
    endStale(account);
  } else if (!success) {
    utils::logInfo(REPLY_SITE, "[static compact] query fail : acc = {0}, errmsg = {1}.", account, errorMessage);
    m_tasks.post([this, account] { showCachedStatics(account); });
  } else {
    utils::logInfo(REPLY_SITE, "[static compact] query success : data acc = {0}, data size = {1}.", account,
                   records.size());
    m_tasks.post([this, account, records] { doUpdateUnfinishCompactStatics(account, records); });
  }
}

void CCompactsStaticsTable::showCachedStatics(const std::string& account) {
  std::vector<CStkUnClosedCompactsStaticsPtr> statics;
  if (const rdservice::CAccountDataPtr store = accountDataOf(account)) {
    const std::vector<IDataPtr> cached = store->getData(rdservice::RecordStkUnClosedCompactsStatics);
    for (const IDataPtr& record : cached)
      if (auto statistic = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompactsStatics>(record))
        statics.push_back(std::move(statistic));
  }
  if (show(account, statics))
    Q_EMIT sigQueryData();
  else
    endStale(account);
}

void CCompactsStaticsTable::doUpdateUnfinishCompactStatics(const std::string& account,
                                                           const std::vector<IDataPtr>& compacts) {
  const std::vector<CStkUnClosedCompactsStaticsPtr> statics = foldCompacts(compacts);
  if (!show(account, statics)) {
    endStale(account);
    return;
  }
  utils::logInfo(FOLD_SITE, "[static compact] mapStatics size = {0}", statics.size());
  Q_EMIT sigQueryData();
}

bool CCompactsStaticsTable::show(const std::string& account,
                                 const std::vector<CStkUnClosedCompactsStaticsPtr>& statics) {
  const rdservice::CAccountDataPtr store = accountDataOf(account);
  GW::CTableBatch batch(*this, {account, 0, 0});
  for (const CStkUnClosedCompactsStaticsPtr& statistic : statics) {
    if (m_tasks.isClosing()) return true;
    writeRow(store, statistic);
  }
  return batch.commit();
}

void CCompactsStaticsTable::writeRow(const rdservice::CAccountDataPtr& store,
                                     const CStkUnClosedCompactsStaticsPtr& statistic) {
  const std::string& market = statistic->exchangeId.str();
  const std::string& code = statistic->code.str();
  const rdservice::CPositionStaticsPtr position = positionOf(store, market, code);
  const std::string key = statistic->getKey();
  CHpfExtraDataModel& extra = *getExtraDataModel();
  extra.addData(key, m_holdingColumn, qint64(position ? position->currentVolume : 0));
  if (const auto instrument = rdservice::TraderCenter::instance()->getDataCenter()->getInstrument(market, code))
    extra.addData(key, m_nameColumn, QString::fromStdString(instrument->name));
  updateData(statistic, false);
}

void CCompactsStaticsTable::slotQueryData() { updateTable(); }

}  // namespace VN
