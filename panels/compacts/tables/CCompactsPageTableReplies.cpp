// The service-thread and strand side of the paged compact table: replies become pages.

#include "compacts/tables/CCompactsPageTable.h"
#include "compacts/tables/compact_fields.h"
#include "rdservice/ConfigCollector.h"
#include "utils/CLogCenter.h"
#include "utils/threads.h"
#include "vn/CUserConfig.h"

#include <memory>
#include <utility>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr const char* FILE_NAME = "CCompactsPageTable.cpp";

}  // namespace

int CCompactsPageTable::pageSizeOf(const std::string& account) {
  const CAccountPtr info = getUserConfig()->getAccountData(QString::fromStdString(account));
  const int limit = info ? rdservice::ConfigCollector::instance()->getCounterMaxCompactsRespNum(info->counterType) : 0;
  return limit > 0 ? limit : PAGE_SIZE;
}

CPageRules CCompactsPageTable::rulesFor(const GW::CTableScope& scope) const {
  const CAccountPtr info = getUserConfig()->getAccountData(QString::fromStdString(scope.account));
  CPageRules rules;
  rules.recordType = recordTypeOfTable(getID());
  rules.compactType = scope.type;
  rules.repeats = info && rdservice::ConfigCollector::instance()->isGTJAQueryCompactsMode(info->counterType);
  return rules;
}

CPageStep CCompactsPageTable::turnBook(const std::function<CPageStep(CPageBook&)>& turn) {
  const utils::CMutexLock lock(m_bookMutex);
  CPageStep step = turn(m_book);
  setShownQuery(m_book.number());
  return step;
}

void CCompactsPageTable::queryPage(const std::string& account, std::uint64_t number) {
  GW::CTableScope scope;
  CPageStep step = turnBook([&](CPageBook& book) {
    scope = shownScope();
    return scope.account == account && book.isCurrent(number) ? book.beginQuery() : CPageStep();
  });
  if (step.what != CPageStep::Query) {  // the query for what is shown now is on its way
    emitQueryData();
    return;
  }
  scope.query = step.number;
  postRefreshOfButtons();
  sendQuery(scope, step.position);
  postStep(scope, std::move(step));
}

void CCompactsPageTable::abandonQuery() {
  m_received = 0;
  const int pageSize = pageSizeOf(currentAccount());
  const utils::CMutexLock lock(m_bookMutex);
  m_book.fail(m_book.number(), pageSize);
}

void CCompactsPageTable::postRefreshOfButtons() {
  if (utils::isGuiThread())
    refreshPagingButtons();
  else
    QMetaObject::invokeMethod(
        this, [this] { refreshPagingButtons(); }, Qt::QueuedConnection);
}

void CCompactsPageTable::postStep(const GW::CTableScope& scope, CPageStep step) {
  const bool isShown = step.what == CPageStep::Show || step.what == CPageStep::Reload;
  if (!isShown && step.dropped.empty()) return;
  postToStrand([this, scope, step = std::make_shared<CPageStep>(std::move(step)), isShown] {
    if (isShown) doStep(pageText(), scope, *step);
    step->dropped.clear();
  });
}

void CCompactsPageTable::onQueryUnfinishCompact(const std::string& account, const utils::RDError& error,
                                                const std::vector<IDataPtr>& compacts, int, const bson::BSONObj&,
                                                rdservice::EKVCompactType type, std::uint64_t query) {
  static constexpr CReplyText TEXT = unclosedReplyText(
      {FILE_NAME,
       "void VN::CCompactsPageTable::onQueryUnfinishCompact(const std::string&, const utils::RDError&, "
       "const std::vector<rdservice::IDataPtr>&, int, const bson::BSONObj&, rdservice::EKVCompactType)"});
  onReply(TEXT, {account, type, query}, error, compacts);
}

void CCompactsPageTable::onQueryCompleteCompact(const std::string& account, const utils::RDError& error,
                                                const std::vector<IDataPtr>& compacts, int, const bson::BSONObj&,
                                                rdservice::EKVCompactType type, std::uint64_t query) {
  static constexpr CReplyText TEXT = closedReplyText(
      {FILE_NAME,
       "void VN::CCompactsPageTable::onQueryCompleteCompact(const std::string&, const utils::RDError&, "
       "const std::vector<rdservice::IDataPtr>&, int, const bson::BSONObj&, rdservice::EKVCompactType)"});
  onReply(TEXT, {account, type, query}, error, compacts);
}

void CCompactsPageTable::onFullQueryUnfinishCompact(const std::string& account, int type, bool success,
                                                    std::vector<IDataPtr> records, const std::string& errorText,
                                                    std::uint64_t query) {
  static constexpr CReplyText TEXT =
      unclosedReplyText({FILE_NAME,
                         "void VN::CCompactsPageTable::onFullQueryUnfinishCompact(const std::string&, int, bool, "
                         "std::vector<rdservice::IDataPtr>, const std::string&)"});
  onFullReply(TEXT, {account, type, query}, success, std::move(records), errorText);
}

void CCompactsPageTable::onFullQueryfinishCompact(const std::string& account, int type, bool success,
                                                  std::vector<IDataPtr> records, const std::string& errorText,
                                                  std::uint64_t query) {
  static constexpr CReplyText TEXT =
      closedReplyText({FILE_NAME,
                       "void VN::CCompactsPageTable::onFullQueryfinishCompact(const std::string&, int, bool, "
                       "std::vector<rdservice::IDataPtr>, const std::string&)"});
  onFullReply(TEXT, {account, type, query}, success, std::move(records), errorText);
}

const CReplyText& CCompactsPageTable::pageText() const {
  static constexpr utils::CLogSite SITE{
      FILE_NAME,
      "void VN::CCompactsPageTable::showPage(const VN::CReplyText&, const GW::CTableScope&, const VN::CPageStep&)"};
  static constexpr CReplyText UNCLOSED = unclosedReplyText(SITE);
  static constexpr CReplyText CLOSED = closedReplyText(SITE);
  return getID() == TableUnclosedCompacts ? UNCLOSED : CLOSED;
}

void CCompactsPageTable::endStale(const CReplyText& text, const GW::CTableScope& madeFor) const {
  logStale(text, madeFor, shownScope());
  emitQueryData();
}

void CCompactsPageTable::onReply(const CReplyText& text, const GW::CTableScope& madeFor, const utils::RDError& error,
                                 const std::vector<IDataPtr>& compacts) {
  if (madeFor != shownScope()) {
    endStale(text, madeFor);
  } else if (error.isSuccess()) {
    utils::logInfo(text.site, text.success, madeFor.account, compacts.size());
    postToStrand([this, &text, madeFor, compacts] { appendBatch(text, madeFor, compacts); });
  } else {
    utils::logInfo(text.site, text.failure, madeFor.account, error.errorMsg());
    postToStrand([this, &text, madeFor] { finish(text, madeFor); });
  }
}

void CCompactsPageTable::onFullReply(const CReplyText& text, const GW::CTableScope& madeFor, bool success,
                                     std::vector<IDataPtr> records, const std::string& errorText) {
  if (madeFor != shownScope()) {
    endStale(text, madeFor);
  } else if (success) {
    postToStrand([this, &text, madeFor, records = std::move(records)] { replaceAll(text, madeFor, records); });
  } else {
    utils::logInfo(text.site, text.failure, madeFor.account, errorText);
    postToStrand([this, &text, madeFor] { finish(text, madeFor); });
  }
}

void CCompactsPageTable::appendBatch(const CReplyText& text, const GW::CTableScope& madeFor,
                                     const std::vector<IDataPtr>& compacts) {
  const CPageRules rules = rulesFor(madeFor);
  std::optional<CPageBatch> batch;
  {
    const utils::CMutexLock lock(m_bookMutex);
    batch = m_book.sift(madeFor.query, compacts, rules);
  }
  if (!batch) {
    endStale(text, madeFor);
    return;
  }
  if (const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account))
    batch->setHeld(store->updateDatas(batch->records()));
  const int pageSize = pageSizeOf(madeFor.account);
  CPageStep step;
  {
    const utils::CMutexLock lock(m_bookMutex);
    step = m_book.accept(madeFor.query, std::move(*batch), pageSize);
  }
  doStep(text, madeFor, step);
}

void CCompactsPageTable::finish(const CReplyText& text, const GW::CTableScope& madeFor) {
  m_received = 0;
  const int pageSize = pageSizeOf(madeFor.account);
  CPageStep step;
  {
    const utils::CMutexLock lock(m_bookMutex);
    step = m_book.fail(madeFor.query, pageSize);
  }
  doStep(text, madeFor, step);
}

void CCompactsPageTable::replaceAll(const CReplyText& text, const GW::CTableScope& madeFor,
                                    const std::vector<IDataPtr>& records) {
  if (madeFor != shownScope()) {
    endStale(text, madeFor);
    return;
  }
  m_received = 0;
  if (const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account))
    store->updateCompacts(recordTypeOfTable(getID()), records);
  std::optional<std::string> position;
  if (!records.empty() && records.back()) position.emplace(positionOf(*records.back()));
  rebuildBook(text, madeFor, std::move(position));
}

void CCompactsPageTable::rebuildBook(const CReplyText& text, const GW::CTableScope& madeFor,
                                     std::optional<std::string> position) {
  {
    const utils::CMutexLock lock(m_bookMutex);
    if (!m_book.isCurrent(madeFor.query)) {  // another page has been asked for since
      emitQueryData();
      return;
    }
  }
  std::vector<IDataPtr> stored;
  if (const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account))
    stored = store->getData(recordTypeOfTable(getID()));
  CPageCache cache(stored, rulesFor(madeFor));
  const int pageSize = pageSizeOf(madeFor.account);
  CPageStep step;
  {
    const utils::CMutexLock lock(m_bookMutex);
    step = m_book.rebuild(madeFor.query, cache, pageSize, std::move(position));
  }
  doStep(text, madeFor, step);
}

void CCompactsPageTable::doStep(const CReplyText& text, const GW::CTableScope& madeFor, const CPageStep& step) {
  switch (step.what) {
    case CPageStep::Show: showPage(text, madeFor, step); break;
    case CPageStep::Reload: rebuildBook(text, madeFor, std::nullopt); break;
    case CPageStep::Stale: endStale(text, madeFor); break;
    case CPageStep::Query:
    case CPageStep::Nothing: emitQueryData(); break;
  }
}

void CCompactsPageTable::showPage(const CReplyText& text, const GW::CTableScope& madeFor, const CPageStep& step) {
  std::vector<IDataPtr> page;
  {
    const utils::CMutexLock lock(m_bookMutex);
    if (m_book.isCurrent(step.number)) page = m_book.records(step);
  }
  if (page.empty()) {
    emitQueryData();
    return;
  }
  const rdservice::CAccountDataPtr store = accountDataOf(madeFor.account);
  const auto isAny = [](const rdservice::IData&) { return true; };
  GW::CTableBatch batch(*this, {madeFor.account, madeFor.type, step.number});
  batch.dropAbsent(isAny, isAny);  // rows of another page; what the user has typed there waits for them
  for (const IDataPtr& record : page) {
    if (isClosing()) return;
    writeRow(store, record);
  }
  GW::CTableScope present;
  if (!batch.commit(&present)) logStale(text, madeFor, present);
  emitQueryData();
}

void CCompactsPageTable::writeRow(const rdservice::CAccountDataPtr& store, const IDataPtr& record) {
  updateData(record, false);
  if (record->getBaseId() != rdservice::RecordStkUnClosedCompacts) return;
  const std::string key = record->getKey();
  m_columns.resetSelectItem(QString::fromStdString(key));
  const IDataPtr stored = store ? store->getData(rdservice::RecordStkUnClosedCompacts, key) : nullptr;
  m_columns.writePriority(static_cast<const rdservice::CStkUnClosedCompacts&>(stored ? *stored : *record));
}

void CCompactsPageTable::applyPriorityResults(const std::string& account, const std::vector<IDataPtr>& responses,
                                              const std::map<std::string, std::string>& labels) {
  std::vector<IDataPtr> changed = storePriorities(account, responses, labels, nullptr);
  const GW::CTableScope shown = shownScope();
  const rdservice::CAccountDataPtr store = accountDataOf(account);
  // A priority that was cleared has no response; its row follows what the counter has pushed into the store.
  for (const IDataPtr& row : getAllDatas()) {
    const auto* compact = dynamic_cast<const rdservice::CStkUnClosedCompacts*>(row.get());
    if (compact == nullptr || !store || labels.count(compact->fieldA) == 0) continue;
    const IDataPtr held = store->getData(rdservice::RecordStkUnClosedCompacts, row->getKey());
    if (held && held->version() > row->version()) changed.push_back(held);
  }
  {
    const utils::CMutexLock lock(m_bookMutex);
    for (const IDataPtr& record : changed) m_book.renew(record);
  }
  GW::CTableBatch batch(*this, shown);
  for (const IDataPtr& record : changed)
    if (getDataByKey(record->getKey())) writeRow(store, record);  // only rows of this page
  [[maybe_unused]] const bool isShown = batch.commit();           // refused: the page shown since has been made of them
}

}  // namespace VN
