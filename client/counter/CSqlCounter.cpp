#include "counter/CSqlCounter.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CCompactWriter.h"
#include "counter/CSqlRequests.h"
#include "counter/CSqlWorkers.h"
#include "counter/counter_errors.h"
#include "net/CTimerQueue.h"
#include "rdservice/service_requests.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <utility>

namespace counter {

namespace {

using CClock = std::chrono::steady_clock;
using rdservice::IDataPtr;
using utils::RDError;

constexpr const char* SIMULATED_FAILURE = "柜台返回失败（模拟）";

/// Picks every n-th request.
class CEvery {
 public:
  explicit CEvery(int n) { set(n); }
  void set(int n) {
    utils::CMutexLock lock(m_mutex);
    m_every = n;
    m_count = 0;
  }
  bool isNext() {
    utils::CMutexLock lock(m_mutex);
    if (m_every <= 0 || ++m_count < m_every) return false;
    m_count = 0;
    return true;
  }

 private:
  utils::CMutex m_mutex;
  int m_every TS_GUARDED_BY(m_mutex) = 0;
  int m_count TS_GUARDED_BY(m_mutex) = 0;
};

}  // namespace

struct CSqlCounter::Private {
  explicit Private(CSqlCounterOptions options)
      : latency(options.latency.count()),
        failing(options.failEvery),
        silent(options.silentEvery),
        compactWriter(accounts),
        readers(options.databasePath, std::max(options.readers, 1)),
        writer(options.databasePath, 1),
        requests(accounts, {std::move(options.maxCompacts), std::move(options.repeatingTypes)},
                 [this] { return readers.isStopping(); }) {}

  /// At once, or when the latency is over.
  void deliver(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply, CSqlAnswer answer);
  void tell(const IDataPtr& request, const CCounterReply& reply, const CSqlAnswer& answer);
  void push(const std::vector<IDataPtr>& records);

  std::atomic<ICounterSink*> sink{nullptr};
  std::atomic<std::chrono::milliseconds::rep> latency;
  CEvery failing;
  CEvery silent;
  CBrokerAccounts accounts;
  CCompactWriter compactWriter;
  CSqlWorkers readers;
  CSqlWorkers writer;
  CSqlRequests requests;
  net::CTimerQueue timers;
};

CSqlCounter::CSqlCounter(CSqlCounterOptions options) : m_d(std::make_unique<Private>(std::move(options))) {}

CSqlCounter::~CSqlCounter() { stop(); }

void CSqlCounter::start(ICounterSink& sink) {
  m_d->sink.store(&sink);
  m_d->readers.start();
  m_d->writer.start();
}

void CSqlCounter::stop() {
  // Workers first: they are the ones that give work to the timers.
  m_d->readers.stop();
  m_d->writer.stop();
  m_d->timers.stop();
}

void CSqlCounter::request(const IDataPtr& request, CCounterReply reply) {
  assert(request != nullptr && reply != nullptr);
  const bool isFailing = m_d->failing.isNext();
  if (m_d->silent.isNext()) return;
  const auto due = CClock::now() + std::chrono::milliseconds(m_d->latency.load());
  m_d->readers.post([d = m_d.get(), request, reply = std::move(reply), isFailing, due](const auto& connection) {
    auto answer = isFailing ? CSqlAnswer{RDError(CounterSimulated, SIMULATED_FAILURE), {}}
                            : d->requests.answer(connection, *request);
    if (!d->readers.isStopping()) d->deliver(due, request, reply, std::move(answer));
  });
}

void CSqlCounter::setLatency(std::chrono::milliseconds latency) { m_d->latency.store(latency.count()); }
void CSqlCounter::setFailEvery(int requests) { m_d->failing.set(requests); }
void CSqlCounter::setSilentEvery(int requests) { m_d->silent.set(requests); }

void CSqlCounter::changeCompacts(std::vector<IDataPtr> records) {
  m_d->writer.post([d = m_d.get(), records = std::move(records)](const auto& connection) {
    d->push(d->compactWriter.write(connection, records));
  });
}

void CSqlCounter::closeCompact(const std::string& accountKey, const std::string& compactKey, std::int32_t closeDate) {
  m_d->writer.post([d = m_d.get(), accountKey, compactKey, closeDate](const auto& connection) {
    d->push(d->compactWriter.close(connection, accountKey, compactKey, closeDate));
  });
}

void CSqlCounter::closeFirstCompacts(const std::string& accountKey, int count, std::int32_t closeDate) {
  m_d->writer.post([d = m_d.get(), accountKey, count, closeDate](const auto& connection) {
    d->push(d->compactWriter.closeFirst(connection, accountKey, count, closeDate));
  });
}

void CSqlCounter::changeRandomCompacts(const std::string& accountKey, int count, unsigned seed) {
  m_d->writer.post([d = m_d.get(), accountKey, count, seed](const auto& connection) {
    d->push(d->compactWriter.changeRandom(connection, accountKey, count, seed));
  });
}

void CSqlCounter::Private::deliver(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply,
                                   CSqlAnswer answer) {
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(due - CClock::now());
  if (wait.count() <= 0)
    tell(request, reply, answer);
  else
    timers.after(wait, [this, request, reply, answer = std::move(answer)] { tell(request, reply, answer); });
}

void CSqlCounter::Private::tell(const IDataPtr& request, const CCounterReply& reply, const CSqlAnswer& answer) {
  reply(answer.error, answer.records, bson::BSONObj());
  if (request->getBaseId() != rdservice::RequestLogin || !answer.error.isSuccess()) return;
  const auto& login = static_cast<const rdservice::CLoginReq&>(*request);
  sink.load()->onLoginStatus(login.accountKey,
                             login.login != 0 ? rdservice::LoginStatusReady : rdservice::LoginStatusLoggedOut, {});
}

void CSqlCounter::Private::push(const std::vector<IDataPtr>& records) {
  if (!records.empty() && !writer.isStopping()) sink.load()->onPush(records);
}

}  // namespace counter
