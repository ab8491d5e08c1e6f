#include "compacts/tables/CCompactsBaseTable.h"

#include "compacts/tables/compact_fields.h"
#include "gw/column_delegates.h"
#include "rdservice/TypeManager.h"
#include "rdservice/rdservice_enums.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CUserConfig.h"

namespace VN {

namespace {

constexpr int MENU_FLAGS = 255;
constexpr utils::CLogSite TASK_SITE{"CCompactsTable.cpp",
                                    "void VN::CCompactsBaseTable::endFailed(const std::string&) const"};

}  // namespace

CCompactsBaseTable::CCompactsBaseTable(int tableId, int secondId, QWidget* parent)
    : CHpfDataTable(tableId, secondId, parent, MENU_FLAGS),
      m_compactType(rdservice::CompactTypeAll),
      m_tasks([this](const std::string& what) { endFailed(what); }) {
  setScope({std::string(), rdservice::CompactTypeAll, 0});
}

CCompactsBaseTable::~CCompactsBaseTable() = default;

std::string CCompactsBaseTable::currentAccount() const {
  const utils::CReadLock lock(m_accountLock);
  return m_account;
}

GW::CTableScope CCompactsBaseTable::shownScope() const {
  const utils::CReadLock lock(m_accountLock);
  return {m_account, m_compactType, m_query};
}

bool CCompactsBaseTable::storeAccount(const std::string& account) {
  const utils::CWriteLock lock(m_accountLock);
  if (account == m_account) return false;
  m_account = account;
  setScope({m_account, m_compactType, m_query});
  return true;
}

bool CCompactsBaseTable::storeCompactType(int compactType) {
  const utils::CWriteLock lock(m_accountLock);
  if (compactType == m_compactType) return false;
  m_compactType = compactType;
  setScope({m_account, m_compactType, m_query});
  return true;
}

void CCompactsBaseTable::setShownQuery(std::uint64_t query) {
  const utils::CWriteLock lock(m_accountLock);
  m_query = query;
  setScope({m_account, m_compactType, m_query});
}

void CCompactsBaseTable::applyPriorityResults(const std::string&, const std::vector<rdservice::IDataPtr>&,
                                              const std::map<std::string, std::string>&) {}

void CCompactsBaseTable::postPriorityResults(const std::string& account,
                                             const std::vector<rdservice::IDataPtr>& responses,
                                             const std::map<std::string, std::string>& labels) {
  postToStrand([this, account, responses, labels] { applyPriorityResults(account, responses, labels); });
}

bool CCompactsBaseTable::isOwnRecord(const rdservice::IDataPtr& record) const {
  return record != nullptr && record->getBaseId() == recordTypeOfTable(getID());
}

void CCompactsBaseTable::logStale(const CReplyText& text, const GW::CTableScope& madeFor,
                                  const GW::CTableScope& present) {
  utils::logInfo(text.site, text.stale, madeFor.account, present.account, madeFor.type, present.type);
}

template <class CDelegate>
CDelegate* CCompactsBaseTable::findDelegate() const {
  for (int column = 0; column < columnCount(); ++column)
    if (auto* found = dynamic_cast<CDelegate*>(columnDelegate(column))) return found;
  return nullptr;
}

void CCompactsBaseTable::selectCompact(const std::string& key) {
  utils::assertGui();
  const QString item = QString::fromStdString(key);
  auto* const radio = findDelegate<GW::CBaseTableColumnRadioButtonDelegate>();
  if (radio == nullptr || !getDataByKey(key)) return;
  radio->setItemChecked(item, true);
  updateTable();
  selectRow(rowOfKey(key));
}

int CCompactsBaseTable::renewalDays(const std::string& key) const {
  utils::assertGui();
  const auto* const days = findDelegate<GW::CBaseTableColumnIntSpinBoxDelegate>();
  return days != nullptr ? days->itemInt(QString::fromStdString(key)) : 0;
}

rdservice::CStkUnClosedCompactsPtr CCompactsBaseTable::doubleClickedCompact(const QString& key) const {
  if (getID() != TableUnclosedCompacts || isRenewalCounter(CUserManager::getUserConfig()->counterType()))
    return nullptr;
  return boost::dynamic_pointer_cast<rdservice::CStkUnClosedCompacts>(getDataByKey(key.toStdString()));
}

void CCompactsBaseTable::filterBrushSource(int brushSource) {
  utils::assertGui();
  if (getID() != TableUnclosedCompacts) return;
  const std::string name = rdservice::TypeManager::getEnumItemName("rdservice::EKVCompactBrushSource", brushSource,
                                                                   rdservice::TraderTypeStockCredit);
  onFilterTrigger(getColumnIdByFileId(FileIdUnclosedSource), GW::FilterValues, {QString::fromStdString(name)});
  updateFilter();
}

void CCompactsBaseTable::endFailed(const std::string& what) const {
  utils::logError(TASK_SITE, "{0} task failed : acc = {1}, what = {2}",
                  getID() == TableUnclosedCompacts ? "[unclosed compact]" : "[closed compact]", currentAccount(), what);
  if (m_signals.taskFailed) m_signals.taskFailed();
  emitQueryData();
}

}  // namespace VN
