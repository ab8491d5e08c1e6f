// The service-thread and strand side of CCompactsTable: replies, rebuilds and pushes.

#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "compacts/tables/compact_records.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"

#include <algorithm>
#include <unordered_set>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr const char* FILE_NAME = "CCompactsTable.cpp";
constexpr const char* MODIFIED_HERE = "KV";  ///< modify tag of a compact that the client itself has changed

/// The table that is storing a reply's records on this thread: what the store then tells it as pushes is its own echo.
thread_local const CCompactsTable* storingTable = nullptr;

class CStoring {
 public:
  explicit CStoring(const CCompactsTable* table) { storingTable = table; }
  ~CStoring() { storingTable = nullptr; }
  CStoring(const CStoring&) = delete;
  CStoring& operator=(const CStoring&) = delete;
};

}  // namespace

void CCompactsTable::onQueryUnfinishCompact(const std::string& account, const utils::RDError& error,
                                            const std::vector<IDataPtr>& compacts, int, const bson::BSONObj&,
                                            rdservice::EKVCompactType type) {
  static constexpr CReplyText TEXT = unclosedReplyText(
      {FILE_NAME,
       "void VN::CCompactsTable::onQueryUnfinishCompact(const std::string&, const utils::RDError&, "
       "const std::vector<rdservice::IDataPtr>&, int, const bson::BSONObj&, rdservice::EKVCompactType)"});
  onReply(TEXT, account, error, compacts, type);
}

void CCompactsTable::onQueryCompleteCompact(const std::string& account, const utils::RDError& error,
                                            const std::vector<IDataPtr>& compacts, int, const bson::BSONObj&,
                                            rdservice::EKVCompactType type) {
  static constexpr CReplyText TEXT = closedReplyText(
      {FILE_NAME,
       "void VN::CCompactsTable::onQueryCompleteCompact(const std::string&, const utils::RDError&, "
       "const std::vector<rdservice::IDataPtr>&, int, const bson::BSONObj&, rdservice::EKVCompactType)"});
  onReply(TEXT, account, error, compacts, type);
}

const CReplyText& CCompactsTable::rebuildText() const {
  static constexpr utils::CLogSite SITE{FILE_NAME, "void VN::CCompactsTable::rebuildRows(const std::string&, bool)"};
  static constexpr CReplyText UNCLOSED = unclosedReplyText(SITE);
  static constexpr CReplyText CLOSED = closedReplyText(SITE);
  return getID() == TableUnclosedCompacts ? UNCLOSED : CLOSED;
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
  postToStrand([this, &text, madeFor, compacts] { applyReply(text, madeFor, compacts); });
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
    if (const GW::CTableScope present = shownScope(); present != madeFor) {
      logStale(text, madeFor, present);
      emitQueryData();
    } else {
      rebuildRows(madeFor.account, false);
    }
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

std::vector<IDataPtr> CCompactsTable::recordsOf(const GW::CTableScope& scope) const {
  std::vector<IDataPtr> records;
  if (const rdservice::CAccountDataPtr store = accountDataOf(scope.account))
    records = store->getData(recordTypeOfTable(getID()));
  records.erase(std::remove_if(records.begin(), records.end(),
                               [&](const IDataPtr& record) { return !isOfType(*record, scope.type); }),
                records.end());
  return records;
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
  const rdservice::CAccountDataPtr store = accountDataOf(account);
  std::vector<IDataPtr> records = recordsOf(madeFor);
  const std::size_t total = records.size();
  if (m_splitPage) records = pageOf(records, getPageNum(), PAGE_SIZE);

  GW::CTableBatch batch(*this, madeFor);
  if (replaced || m_splitPage)
    batch.dropAbsent(
        [account](const rdservice::IData& row) {
          const rdservice::CAccountInfoPtr info = accountInfoOf(row);
          return info && info->getKey() == account;
        },
        [this, store](const rdservice::IData& row) {  // it stands on another page
          return m_splitPage && store && store->getData(row.getBaseId(), row.getKey()) != nullptr;
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
  postRebuild(account, replaced);
}

void CCompactsTable::postRebuild(const std::string& account, bool replaced) {
  postToStrand([this, account, replaced] { rebuildRows(account, replaced); });
}

void CCompactsTable::onPushData(IDataPtr data) {
  if (!isOwnRecord(data) || storingTable == this) return;
  {
    const utils::CMutexLock lock(m_pushMutex);
    m_pushes.push_back(std::move(data));
    if (m_pushes.size() > 1) return;  // the task posted for the first one takes this one along
  }
  postToStrand([this] { applyPushes(); });
}

void CCompactsTable::applyPushes() {
  std::vector<IDataPtr> pushes;
  {
    const utils::CMutexLock lock(m_pushMutex);
    pushes.swap(m_pushes);
  }
  showPushed(pushes);
}

void CCompactsTable::showPushed(std::vector<IDataPtr> pushes) {
  if (m_splitPage) removeOtherPages(pushes);
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

void CCompactsTable::removeOtherPages(std::vector<IDataPtr>& pushes) const {
  const GW::CTableScope shown = shownScope();
  const rdservice::CAccountDataPtr store = accountDataOf(shown.account);
  const auto isElsewhere = [&](const IDataPtr& record) {
    return !getDataByKey(record->getKey()) && store && store->getData(record->getBaseId(), record->getKey()) != nullptr;
  };
  if (std::none_of(pushes.begin(), pushes.end(), isElsewhere)) return;
  std::unordered_set<std::string> page;
  for (const IDataPtr& record : pageOf(recordsOf(shown), getPageNum(), PAGE_SIZE)) page.insert(record->getKey());
  const auto isOther = [&](const IDataPtr& record) { return isElsewhere(record) && page.count(record->getKey()) == 0; };
  pushes.erase(std::remove_if(pushes.begin(), pushes.end(), isOther), pushes.end());
}

void CCompactsTable::applyPriorityResults(const std::string& account, const std::vector<IDataPtr>& responses,
                                          const std::map<std::string, std::string>& labels) {
  showPushed(storePriorities(account, responses, labels, MODIFIED_HERE));
}

void CCompactsTable::writeRow(const IDataPtr& record, EItems items) {
  updateData(record, false);
  if (record->getBaseId() != rdservice::RecordStkUnClosedCompacts) return;
  const auto& compact = static_cast<const rdservice::CStkUnClosedCompacts&>(*record);
  if (items == EItems::Reset) m_columns.resetSelectItem(QString::fromStdString(compact.getKey()));
  m_columns.writePriority(compact);
}

}  // namespace VN
