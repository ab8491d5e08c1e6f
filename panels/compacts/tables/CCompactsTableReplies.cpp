// The service-thread and strand side of CCompactsTable: replies, rebuilds and pushes.

#include "compacts/tables/CCompactsTable.h"
#include "compacts/tables/compact_fields.h"
#include "compacts/tables/compact_records.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr const char* FILE_NAME = "CCompactsTable.cpp";
constexpr const char* MODIFIED_HERE = "KV";  ///< modify tag of a compact that the client itself has changed

/// Pushes that become rows in one go: the GUI thread may look at the rows in between.
constexpr std::ptrdiff_t MOST_AT_ONCE = 1024;

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

// A rebuild looks at table and data centre when it runs: one that waits will see what the next one was to show.
void CCompactsTable::postRebuild(const std::string& account, bool replaced) {
  {
    const utils::CMutexLock lock(m_rebuildMutex);
    const auto [waiting, isNew] = m_rebuilds.emplace(account, replaced);
    waiting->second = waiting->second || replaced;
    if (!isNew) return;
  }
  postToStrand([this, account] { runRebuild(account); });
}

void CCompactsTable::runRebuild(const std::string& account) {
  bool replaced = false;
  {
    const utils::CMutexLock lock(m_rebuildMutex);
    const auto waiting = m_rebuilds.find(account);
    replaced = waiting->second;
    m_rebuilds.erase(waiting);
  }
  rebuildRows(account, replaced);
}

void CCompactsTable::onPushData(IDataPtr data) {
  if (!isOwnRecord(data) || storingTable == this) return;
  if (m_pushes.add(std::move(data))) postToStrand([this] { showPushed(m_pushes.take()); });
}

void CCompactsTable::showPushed(std::vector<IDataPtr> pushes) {
  if (m_splitPage) removeOtherPages(pushes);
  for (CRecord begin = pushes.begin(); begin != pushes.end();) {
    const bool ofReply = (*begin)->isOfReply();
    const CRecord limit = begin + std::min<std::ptrdiff_t>(MOST_AT_ONCE, pushes.end() - begin);
    const CRecord end =
        std::find_if(begin, limit, [ofReply](const IDataPtr& record) { return record->isOfReply() != ofReply; });
    ofReply ? showOthersReplies(begin, end) : showPushes(begin, end);
    if (isClosing()) return;
    begin = end;
  }
}

void CCompactsTable::showPushes(CRecord begin, CRecord end) {
  for (bool isShown = false; !isShown;) {  // again when the compact type changes meanwhile
    const GW::CTableScope shown = shownScope();
    GW::CTableBatch batch(*this, shown.type);
    for (CRecord record = begin; record != end; ++record)
      if (!writePushed(*record, shown.type)) return;
    isShown = batch.commit();
  }
}

void CCompactsTable::showOthersReplies(CRecord begin, CRecord end) {
  const GW::CTableScope shown = shownScope();
  GW::CTableBatch batch(*this, shown);
  for (CRecord record = begin; record != end; ++record) {
    const rdservice::CAccountInfoPtr account = accountInfoOf(**record);
    if (account && account->getKey() == shown.account && !writePushed(*record, shown.type)) return;
  }
  [[maybe_unused]] const bool isShown = batch.commit();  // refused: another account is shown by now
}

bool CCompactsTable::writePushed(const IDataPtr& record, int compactType) {
  if (isClosing()) return false;
  if (getID() != TableUnclosedCompacts || isOfType(*record, compactType)) writeRow(record, EItems::Reset);
  return true;
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
