#include "vn/CCompactQueryModel.h"

#include "gw/table/CKeyIndex.h"
#include "rdservice/CStkClosedCompacts.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/ConfigCollector.h"
#include "rdservice/rdservice_enums.h"
#include "vn/CTradeClient.h"

#include <boost/make_shared.hpp>

#include <atomic>
#include <cassert>
#include <string_view>
#include <utility>

namespace VN {

using rdservice::IDataPtr;

namespace {

constexpr const char* STOPPED = "查询已取消";
constexpr const char* NO_CLIENT = "客户端已停止";
constexpr const char* ONLY_KNOWN = "柜台重复返回已有的合约,查询中止";
constexpr const char* SAME_POSITION = "柜台返回的合约位置没有前进,查询中止";

/// Records asked for at a time where the counter sets no limit: few round trips, and each answered well in time.
constexpr int BATCH_SIZE = 10000;

std::string_view positionOf(const rdservice::IData& record) {
  if (record.getBaseId() == rdservice::RecordStkUnClosedCompacts)
    return static_cast<const rdservice::CStkUnClosedCompacts&>(record).positionString;
  return static_cast<const rdservice::CStkClosedCompacts&>(record).positionString;
}

}  // namespace

/// Replies come one after the other, each before the next request is sent: nothing here needs a lock.
struct CCompactQueryModel::Private {
  /// What came of a batch.
  struct CGain {
    std::size_t fresh = 0;        ///< records of new keys
    std::string_view position{};  ///< where the next request goes on
  };

  void ask(const std::shared_ptr<CCompactQueryModel>& self);
  void take(const std::shared_ptr<CCompactQueryModel>& self, const utils::RDError& error,
            const std::vector<IDataPtr>& batch);
  CGain add(const std::vector<IDataPtr>& batch);
  void finish(bool success, const std::string& errorText);

  rdservice::CAccountInfoPtr account;
  int dataType = 0;
  CCompletion completion;
  CProgress progress;
  bool repeats = false;
  int batchSize = BATCH_SIZE;

  std::atomic<bool> isStarted{false};
  std::atomic<bool> isStopped{false};
  std::vector<IDataPtr> records;
  GW::CKeyIndex keys;  ///< slots are places in `records`
  std::string position;
};

CCompactQueryModel::CCompactQueryModel(rdservice::CAccountInfoPtr account, int dataType, CCompletion completion,
                                       CProgress progress)
    : m_d(std::make_unique<Private>()) {
  assert(account && completion);
  assert(dataType == rdservice::RecordStkUnClosedCompacts || dataType == rdservice::RecordStkClosedCompacts);
  if (const auto* config = rdservice::ConfigCollector::instance()) {
    m_d->repeats = config->isGTJAQueryCompactsMode(account->counterType);
    const int most = config->getCounterMaxCompactsRespNum(account->counterType);
    if (most > 0) m_d->batchSize = most;
  }
  m_d->account = std::move(account);
  m_d->dataType = dataType;
  m_d->completion = std::move(completion);
  m_d->progress = std::move(progress);
}

CCompactQueryModel::~CCompactQueryModel() = default;

void CCompactQueryModel::start() {
  const auto self = weak_from_this().lock();
  assert(self && "made by std::make_shared");
  [[maybe_unused]] const bool isStarted = m_d->isStarted.exchange(true);
  assert(!isStarted);
  m_d->ask(self);
}

void CCompactQueryModel::stop() { m_d->isStopped = true; }

void CCompactQueryModel::Private::ask(const std::shared_ptr<CCompactQueryModel>& self) {
  CTradeClient* client = CTradeClient::instance();
  if (client == nullptr) return finish(false, NO_CLIENT);
  const auto request = boost::make_shared<rdservice::CQueryCompactReqV2>();
  request->compactType = rdservice::CompactTypeAll;
  request->positionString = position;
  request->requestCount = batchSize;
  request->accountKey = account->getKey();
  // The reply may run before the call below returns: nothing follows it. It never runs inside the call, except for the
  // last one, so that the stack does not grow with the batches.
  const auto reply = [self](const utils::RDError& error, const std::vector<IDataPtr>& batch, int,
                            const bson::BSONObj&) { self->m_d->take(self, error, batch); };
  if (dataType == rdservice::RecordStkUnClosedCompacts)
    client->queryUnclosedCompacts(request, reply);
  else
    client->queryClosedCompacts(request, reply);
}

void CCompactQueryModel::Private::take(const std::shared_ptr<CCompactQueryModel>& self, const utils::RDError& error,
                                       const std::vector<IDataPtr>& batch) {
  if (!error.isSuccess()) return finish(false, error.errorMsg());
  if (isStopped) return finish(false, STOPPED);
  const CGain gain = add(batch);
  if (batch.empty() || (repeats && gain.fresh == 0)) return finish(true, std::string());
  if (gain.fresh == 0) return finish(false, ONLY_KNOWN);
  if (!repeats && gain.position == position) return finish(false, SAME_POSITION);
  position = gain.position;
  if (progress) progress(records.size());
  ask(self);
}

CCompactQueryModel::Private::CGain CCompactQueryModel::Private::add(const std::vector<IDataPtr>& batch) {
  CGain gain;
  for (const IDataPtr& record : batch) {
    if (!record || record->getBaseId() != dataType) continue;
    const std::string key = record->getKey();
    const auto known = static_cast<std::size_t>(keys.size());
    const auto place = static_cast<std::size_t>(keys.findOrAdd(rdservice::CHashedPlaces::hash(key), key));
    if (place == known) {
      records.push_back(record);
      ++gain.fresh;
    } else if (!repeats) {
      records[place] = record;  // asked for later, so the newer one
    }
    if (place == known || !repeats) gain.position = positionOf(*record);
  }
  return gain;
}

void CCompactQueryModel::Private::finish(bool success, const std::string& errorText) {
  const CCompletion complete = std::exchange(completion, nullptr);
  assert(complete);
  complete(success, success ? std::move(records) : std::vector<IDataPtr>(), errorText);
}

}  // namespace VN
