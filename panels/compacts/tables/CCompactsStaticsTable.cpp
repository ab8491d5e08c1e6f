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
  }
  if (isSame) {
    if (notifyIfSame) Q_EMIT sigQueryData();
  } else if (query) {
    refresh(std::string(), query);
  } else {
    startOver();  // so that no basket is made of another account's liabilities
  }
}

void CCompactsStaticsTable::stopQuery() {
  setScope({currentAccount(), 0, scope().query + 1});
  if (const auto model = m_query.lock()) model->stop();
}

void CCompactsStaticsTable::startOver() {
  stopQuery();
  m_statics.clear();
  clear();
}

void CCompactsStaticsTable::clearData() {
  utils::assertGui();
  startOver();
  Q_EMIT sigQueryData();
}

void CCompactsStaticsTable::refresh(const std::string& account, bool force) {
  utils::assertGui();
  if (!account.empty() && account != currentAccount()) return;
  startOver();
  moveColumnBehind(m_nameColumn, getColumnIdByFileId(FileIdStatisticsCode));
  updateTable();
  getExtraDataModel()->setColumnStatEnable(m_holdingColumn, true, SUM, -1, QString());
  queryData(force);
}

void CCompactsStaticsTable::queryData(bool force) {
  const std::string account = currentAccount();
  if (force && !account.empty()) {
    const CAccountPtr info = getUserConfig()->getAccountData(QString::fromStdString(account));
    if (!info) {
      Q_EMIT sigQueryData();
      return;
    }
    const auto model = std::make_shared<CCompactQueryModel>(
        info, rdservice::RecordStkUnClosedCompacts,
        m_tasks.guarded(
            [this, madeFor = scope()](bool success, const std::vector<IDataPtr>& records, const std::string& error) {
              takeReply(madeFor, success, records, error);
            }));
    m_query = model;
    model->start();
    return;
  }
  if (const rdservice::CAccountDataPtr store = accountDataOf(account))
    doUpdateUnfinishCompactStatics(account, store->getData(rdservice::RecordStkUnClosedCompacts));
  Q_EMIT sigQueryData();
}

void CCompactsStaticsTable::endStale(const GW::CTableScope& madeFor) {
  const std::string current = currentAccount();
  if (madeFor.account != current)
    utils::logInfo(REPLY_SITE, "[static compact] acc changed : data acc = {0}, current acc = {1}.", madeFor.account,
                   current);
  Q_EMIT sigQueryData();
}

void CCompactsStaticsTable::onQueryUnfinishCompact(const std::string& account, bool success,
                                                   const std::vector<IDataPtr>& records,
                                                   const std::string& errorMessage) {
  takeReply({account, 0, scope().query}, success, records, errorMessage);
}

void CCompactsStaticsTable::takeReply(const GW::CTableScope& madeFor, bool success,
                                      const std::vector<IDataPtr>& records, const std::string& errorMessage) {
  if (madeFor != scope()) {
    endStale(madeFor);
  } else if (!success) {
    utils::logInfo(REPLY_SITE, "[static compact] query fail : acc = {0}, errmsg = {1}.", madeFor.account, errorMessage);
    m_tasks.post([this, madeFor] { showCachedStatics(madeFor); });
  } else {
    utils::logInfo(REPLY_SITE, "[static compact] query success : data acc = {0}, data size = {1}.", madeFor.account,
                   records.size());
    m_tasks.post([this, madeFor, records] { showFold(madeFor, records); });
  }
}

void CCompactsStaticsTable::showCachedStatics(const GW::CTableScope& madeFor) {
  std::vector<CStkUnClosedCompactsStaticsPtr> statics;
  if (const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account)) {
    const std::vector<IDataPtr> cached = store->getData(rdservice::RecordStkUnClosedCompactsStatics);
    for (const IDataPtr& record : cached)
      if (auto statistic = boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompactsStatics>(record))
        statics.push_back(std::move(statistic));
  }
  if (showRows(madeFor, statics))
    Q_EMIT sigQueryData();
  else
    endStale(madeFor);
}

void CCompactsStaticsTable::doUpdateUnfinishCompactStatics(const std::string& account,
                                                           const std::vector<IDataPtr>& compacts) {
  showFold({account, 0, scope().query}, compacts);
}

void CCompactsStaticsTable::showFold(const GW::CTableScope& madeFor, const std::vector<IDataPtr>& compacts) {
  const std::vector<CStkUnClosedCompactsStaticsPtr> statics = foldCompacts(compacts);
  if (!showRows(madeFor, statics)) {
    endStale(madeFor);
    return;
  }
  utils::logInfo(FOLD_SITE, "[static compact] mapStatics size = {0}", statics.size());
  Q_EMIT sigQueryData();
}

bool CCompactsStaticsTable::showRows(const GW::CTableScope& madeFor,
                                     const std::vector<CStkUnClosedCompactsStaticsPtr>& statics) {
  const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account);
  GW::CTableBatch batch(*this, madeFor);
  for (const CStkUnClosedCompactsStaticsPtr& statistic : statics) {
    if (m_tasks.isClosing()) return false;
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
