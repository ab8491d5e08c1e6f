// The service-thread and strand side of CCompactsTable: replies, rebuilds and pushes.

#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "rdservice/CCreditRepayPriorityResp.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/ConfigCollector.h"
#include "rdservice/TraderCenter.h"
#include "rdservice/stock_key.h"
#include "utils/CLogCenter.h"

#include <algorithm>
#include <cstdlib>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr const char* FILE_NAME = "CCompactsTable.cpp";
constexpr const char* MODIFIED_HERE = "KV";  ///< modify tag of a compact that the client itself has changed
constexpr const char* STALE_UNCLOSED =
    "[unclosed compact] acc changed, data acc = {0}, current acc = {1}, data compact = {2}, cur compact = {3}.";
constexpr const char* STALE_CLOSED =
    "[closed compatc] acc changed : data acc = {0}, current acc = {1}, data compact = {2}, cur compact = {3}.";

rdservice::CAccountDataPtr accountDataOf(const std::string& account) {
  return rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(account);
}

/// Compact type of an unclosed or closed compact; -1 for any other record.
int compactTypeOf(const rdservice::IData& record) {
  switch (record.getBaseId()) {
    case rdservice::RecordStkUnClosedCompacts:
      return static_cast<const rdservice::CStkUnClosedCompacts&>(record).compactType;
    case rdservice::RecordStkClosedCompacts:
      return static_cast<const rdservice::CStkClosedCompacts&>(record).compactType;
    default: return -1;
  }
}

rdservice::CAccountInfoPtr accountInfoOf(const rdservice::IData& record) {
  switch (record.getBaseId()) {
    case rdservice::RecordStkUnClosedCompacts:
      return static_cast<const rdservice::CStkUnClosedCompacts&>(record).accountInfo;
    case rdservice::RecordStkClosedCompacts:
      return static_cast<const rdservice::CStkClosedCompacts&>(record).accountInfo;
    default: return nullptr;
  }
}

/// The records of a page counted from 1; a page behind the last one is empty.
std::vector<IDataPtr> pageOf(const std::vector<IDataPtr>& records, int page) {
  constexpr std::size_t PAGE_SIZE = 500;
  const std::size_t begin = std::min(records.size(), static_cast<std::size_t>(page - 1) * PAGE_SIZE);
  const std::size_t end = std::min(records.size(), begin + PAGE_SIZE);
  const auto at = [&records](std::size_t index) { return records.begin() + static_cast<std::ptrdiff_t>(index); };
  return {at(begin), at(end)};
}

/// The table that is storing a reply's records on this thread: what the store then tells it as pushes is its own echo.
thread_local const CCompactsTable* storingTable = nullptr;

class CStoring {
 public:
  explicit CStoring(const CCompactsTable* table) { storingTable = table; }
  ~CStoring() { storingTable = nullptr; }
  CStoring(const CStoring&) = delete;
  CStoring& operator=(const CStoring&) = delete;
};

bool isOfType(const rdservice::IData& record, int compactType) {
  return compactType == rdservice::CompactTypeAll || compactTypeOf(record) == compactType;
}

}  // namespace

/// Texts and location of the lines that one reply handler writes.
struct CCompactsTable::CReplyText {
  utils::CLogSite site;
  const char* stale;
  const char* success;
  const char* failure;
};

void CCompactsTable::onQueryUnfinishCompact(const std::string& account, const utils::RDError& error,
                                            const std::vector<IDataPtr>& compacts, int, const bson::BSONObj&,
                                            rdservice::EKVCompactType type) {
  static constexpr CReplyText TEXT{
      {FILE_NAME,
       "void VN::CCompactsTable::onQueryUnfinishCompact(const std::string&, const utils::RDError&, "
       "const std::vector<rdservice::IDataPtr>&, int, const bson::BSONObj&, rdservice::EKVCompactType)"},
      STALE_UNCLOSED,
      "[unclosed compact] query success, acc {0} datas {1}",
      "[unclosed compact] query fail : acc = {0}, errmsg = {1}"};
  onReply(TEXT, account, error, compacts, type);
}

void CCompactsTable::onQueryCompleteCompact(const std::string& account, const utils::RDError& error,
                                            const std::vector<IDataPtr>& compacts, int, const bson::BSONObj&,
                                            rdservice::EKVCompactType type) {
  static constexpr CReplyText TEXT{
      {FILE_NAME,
       "void VN::CCompactsTable::onQueryCompleteCompact(const std::string&, const utils::RDError&, "
       "const std::vector<rdservice::IDataPtr>&, int, const bson::BSONObj&, rdservice::EKVCompactType)"},
      STALE_CLOSED,
      "[closed compact] query success : data acc = {0}, data size = {1}.",
      "[closed compact] fail : acc = {0}, errmsg = {1}."};
  onReply(TEXT, account, error, compacts, type);
}

const CCompactsTable::CReplyText& CCompactsTable::rebuildText() const {
  static constexpr utils::CLogSite SITE{FILE_NAME, "void VN::CCompactsTable::rebuildRows(const std::string&, bool)"};
  static constexpr CReplyText UNCLOSED{SITE, STALE_UNCLOSED, nullptr, nullptr};
  static constexpr CReplyText CLOSED{SITE, STALE_CLOSED, nullptr, nullptr};
  return getID() == TableUnclosedCompacts ? UNCLOSED : CLOSED;
}

bool CCompactsTable::isOwnRecord(const IDataPtr& record) const {
  return record != nullptr && record->getBaseId() == recordTypeOfTable(getID());
}

void CCompactsTable::onReply(const CReplyText& text, const std::string& account, const utils::RDError& error,
                             const std::vector<IDataPtr>& compacts, rdservice::EKVCompactType type) {
  const GW::CTableScope madeFor{account, type, 0};
  const GW::CTableScope present = shownScope();
  if (m_calcCompactType && madeFor != present) {
    logStale(text, madeFor, present);
    emitQueryData();
    return;
  }
  if (!error.isSuccess()) {
    utils::logInfo(text.site, text.failure, account, error.errorMsg());
    emitQueryData();
    return;
  }
  utils::logInfo(text.site, text.success, account, compacts.size());
  postToStrand<CCompactsTable>(
      [&text, madeFor, compacts](CCompactsTable& table) { table.applyReply(text, madeFor, compacts); });
}

void CCompactsTable::logStale(const CReplyText& text, const GW::CTableScope& madeFor,
                              const GW::CTableScope& present) const {
  utils::logInfo(text.site, text.stale, madeFor.account, present.account, madeFor.type, present.type);
}

void CCompactsTable::applyReply(const CReplyText& text, const GW::CTableScope& madeFor,
                                const std::vector<IDataPtr>& compacts) {
  const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account);
  const bool repeats =
      store && rdservice::ConfigCollector::instance()->isGTJAQueryCompactsMode(store->getAccountInfo()->counterType);
  std::vector<IDataPtr> kept;
  kept.reserve(compacts.size());
  for (const IDataPtr& record : compacts) {
    if (isClosing()) return;
    if (!isOwnRecord(record) || !isOfType(*record, madeFor.type)) continue;
    if (repeats && getDataByKey(record->getKey())) continue;
    kept.push_back(record);
  }
  if (store) {
    const CStoring storing(this);
    kept = store->updateDatas(kept);
  }

  if (m_splitPage) {  // what the page shows follows from the whole set
    rebuildRows(madeFor.account, false);
    return;
  }
  GW::CTableBatch batch(*this, madeFor);
  for (const IDataPtr& record : kept) {
    if (isClosing()) return;
    writeRow(record, EItems::Keep);
  }
  GW::CTableScope present;
  if (!batch.commit(&present)) logStale(text, madeFor, present);
  emitQueryData();
}

void CCompactsTable::rebuildRows(const std::string& account, bool replaced) {
  const CReplyText& text = rebuildText();
  const GW::CTableScope shown = shownScope();
  const GW::CTableScope madeFor{account, shown.type, 0};
  if (account != shown.account) {
    logStale(text, madeFor, shown);
    emitQueryData();
    return;
  }
  std::vector<IDataPtr> records;
  if (const rdservice::CAccountDataPtr store = accountDataOf(account))
    records = store->getData(recordTypeOfTable(getID()));
  records.erase(std::remove_if(records.begin(), records.end(),
                               [&](const IDataPtr& record) { return !isOfType(*record, madeFor.type); }),
                records.end());
  const std::size_t total = records.size();
  if (m_splitPage) records = pageOf(records, getPageNum());

  GW::CTableBatch batch(*this, madeFor);
  if (replaced || m_splitPage)
    batch.dropAbsent([account](const rdservice::IData& row) {
      const rdservice::CAccountInfoPtr info = accountInfoOf(row);
      return info && info->getKey() == account;
    });
  for (const IDataPtr& record : records) {
    if (isClosing()) return;
    writeRow(record, EItems::Reset);
  }
  GW::CTableScope present;
  if (batch.commit(&present))
    m_total = static_cast<int>(total);
  else
    logStale(text, madeFor, present);
  emitQueryData();
}

void CCompactsTable::onCompactChange(bool replaced, const std::string& account, int dataType) {
  if (dataType != recordTypeOfTable(getID()) || account != currentAccount()) return;
  emitQueryData();
  postToStrand<CCompactsTable>([account, replaced](CCompactsTable& table) { table.rebuildRows(account, replaced); });
}

void CCompactsTable::onPushData(IDataPtr data) {
  if (!isOwnRecord(data) || storingTable == this) return;
  {
    const utils::CMutexLock lock(m_pushMutex);
    m_pushes.push_back(std::move(data));
    if (m_pushes.size() > 1) return;  // the task posted for the first one takes this one along
  }
  postToStrand<CCompactsTable>([](CCompactsTable& table) { table.applyPushes(); });
}

void CCompactsTable::applyPushes() {
  std::vector<IDataPtr> pushes;
  {
    const utils::CMutexLock lock(m_pushMutex);
    pushes.swap(m_pushes);
  }
  showPushed(pushes);
}

void CCompactsTable::showPushed(const std::vector<IDataPtr>& pushes) {
  const bool filtered = getID() == TableUnclosedCompacts;
  // What a query of another panel brought is for the account shown alone, as any reply; a push is not.
  const auto write = [&](bool ofReply, const GW::CTableScope& shown) {
    for (const IDataPtr& record : pushes) {
      if (isClosing() || record->isOfReply() != ofReply) continue;
      const rdservice::CAccountInfoPtr account = accountInfoOf(*record);
      if (ofReply && (!account || account->getKey() != shown.account)) continue;
      if (!filtered || isOfType(*record, shown.type)) writeRow(record, EItems::Reset);
    }
  };
  for (bool pushed = false; !pushed;) {  // again when the compact type changes meanwhile
    const GW::CTableScope shown = shownScope();
    GW::CTableBatch batch(*this, shown.type);
    write(false, shown);
    pushed = batch.commit();
  }
  const GW::CTableScope shown = shownScope();
  GW::CTableBatch batch(*this, shown);
  write(true, shown);
  [[maybe_unused]] const bool isShown = batch.commit();  // refused: another account is shown by now
}

void CCompactsTable::applyPriorityResults(const std::string& account, const std::vector<IDataPtr>& responses,
                                          const std::map<std::string, std::string>& labels) {
  const rdservice::CAccountDataPtr store = accountDataOf(account);
  if (!store) return;
  std::vector<IDataPtr> changed;
  for (const IDataPtr& record : responses) {
    const auto response = boost::dynamic_pointer_cast<rdservice::CCreditRepayPriorityResp>(record);
    const auto label = response ? labels.find(response->fieldA) : labels.end();
    if (label == labels.end()) continue;
    const rdservice::CStockKeyParts stock = rdservice::splitStockKey(label->second);
    const std::string key = rdservice::CStkUnClosedCompacts::genKey(
        store->getAccountInfo(), stock.exchangeId, stock.code, std::atoi(response->fieldB.c_str()), response->fieldA);
    const IDataPtr held =
        store->modifyData(rdservice::RecordStkUnClosedCompacts, key, [&response](rdservice::IData& stored) {
          auto& compact = static_cast<rdservice::CStkUnClosedCompacts&>(stored);
          compact.repayPriority = response->repayPriority;
          compact.modifyTag = MODIFIED_HERE;
        });
    if (held) changed.push_back(held);
  }
  showPushed(changed);
}

void CCompactsTable::writeRow(const IDataPtr& record, EItems items) {
  updateData(record, false);
  if (record->getBaseId() != rdservice::RecordStkUnClosedCompacts) return;
  const auto& compact = static_cast<const rdservice::CStkUnClosedCompacts&>(*record);
  if (items == EItems::Reset) m_columns.resetSelectItem(QString::fromStdString(compact.getKey()));
  m_columns.writePriority(compact);
}

}  // namespace VN
