#include "counter/CSqlCounter.h"

#include "counter/CBrokerAccounts.h"
#include "counter/CCompactWriter.h"
#include "counter/COrderDesk.h"
#include "counter/CPriorityDesk.h"
#include "counter/CQuoteFeed.h"
#include "counter/CRenewalDesk.h"
#include "counter/CSqlRequests.h"
#include "counter/CSqlWorkers.h"
#include "counter/counter_errors.h"
#include "net/CTimerQueue.h"
#include "rdservice/CCreditCompactRenewalApply.h"
#include "rdservice/COrderRequests.h"
#include "rdservice/CSetCreditRepayPriorityReq.h"
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

/// Quotes that move at intervals.
struct CQuoteWalk {
  unsigned number;
  int quotes;
  std::chrono::milliseconds interval;
};

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
        fillDelay(options.fillDelay.count()),
        quotes(options.quoteSeed),
        orders(accounts),
        priorities(accounts),
        renewals(accounts, std::move(options.renewalRules)),
        compactWriter(accounts),
        readers(options.databasePath, std::max(options.readers, 1)),
        writer(options.databasePath, 1),
        requests(accounts, quotes, {std::move(options.maxCompacts), std::move(options.repeatingTypes)},
                 [this] { return readers.isStopping(); }) {}

  /// At once, or when the latency is over.
  void deliver(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply, CSqlAnswer answer);
  void tell(const IDataPtr& request, const CCounterReply& reply, const CSqlAnswer& answer);
  void push(const std::vector<IDataPtr>& records);
  void placeOrder(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply, bool isFailing);
  /// What a request that changes compacts does on the writer thread; null for any other request.
  using CWriting = std::function<CWriteAnswer(const CSqlConnection& connection)>;
  CWriting writingOf(const IDataPtr& request);
  void write(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply, bool isFailing,
             CWriting writing);
  /// When its delay is over.
  void fillLater(const rdservice::CStkOrderPtr& order);
  void fill(const rdservice::CStkOrderPtr& order);
  /// Moves quotes once, and again after each interval as long as the walk is the one that was set last.
  void walkQuotes(CQuoteWalk walk);

  std::atomic<ICounterSink*> sink{nullptr};
  std::atomic<std::chrono::milliseconds::rep> latency;
  CEvery failing;
  CEvery silent;
  std::atomic<std::chrono::milliseconds::rep> fillDelay;
  std::atomic<unsigned> quoteWalk{0};  ///< number of the walk that was set last
  CBrokerAccounts accounts;
  CQuoteFeed quotes;
  COrderDesk orders;
  CPriorityDesk priorities;
  CRenewalDesk renewals;
  CCompactWriter compactWriter;
  CSqlWorkers readers;
  CSqlWorkers writer;
  CSqlRequests requests;
  net::CTimerQueue timers;
};

CSqlCounter::CSqlCounter(CSqlCounterOptions options) : m_d(std::make_unique<Private>(options)) {
  setQuoteWalk(options.quotesPerMove, options.quoteInterval);
}

CSqlCounter::~CSqlCounter() { stop(); }

void CSqlCounter::start(ICounterSink& sink) {
  m_d->sink.store(&sink);
  m_d->readers.start();
  m_d->writer.start();
  m_d->writer.post([d = m_d.get()](const auto& connection) {
    for (const auto& order : d->orders.entrusted(connection)) d->fillLater(order);
  });
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
  if (request->getBaseId() == rdservice::RequestPlaceOrder) return m_d->placeOrder(due, request, reply, isFailing);
  if (auto writing = m_d->writingOf(request)) return m_d->write(due, request, reply, isFailing, std::move(writing));
  m_d->readers.post([d = m_d.get(), request, reply = std::move(reply), isFailing, due](const auto& connection) {
    auto answer = isFailing ? CSqlAnswer{RDError(CounterSimulated, SIMULATED_FAILURE), {}}
                            : d->requests.answer(connection, *request);
    if (!d->readers.isStopping()) d->deliver(due, request, reply, std::move(answer));
  });
}

void CSqlCounter::setLatency(std::chrono::milliseconds latency) { m_d->latency.store(latency.count()); }
void CSqlCounter::setFailEvery(int requests) { m_d->failing.set(requests); }
void CSqlCounter::setSilentEvery(int requests) { m_d->silent.set(requests); }

void CSqlCounter::setFillDelay(std::chrono::milliseconds delay) { m_d->fillDelay.store(delay.count()); }

void CSqlCounter::setQuoteWalk(int quotesPerMove, std::chrono::milliseconds interval) {
  m_d->walkQuotes({++m_d->quoteWalk, quotesPerMove, std::max(interval, std::chrono::milliseconds(1))});
}

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
  reply(answer.error, answer.records, answer.extra);
  if (request->getBaseId() != rdservice::RequestLogin || !answer.error.isSuccess()) return;
  const auto& login = static_cast<const rdservice::CLoginReq&>(*request);
  sink.load()->onLoginStatus(login.accountKey,
                             login.login != 0 ? rdservice::LoginStatusReady : rdservice::LoginStatusLoggedOut, {});
}

void CSqlCounter::Private::placeOrder(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply,
                                      bool isFailing) {
  writer.post([this, request, reply, isFailing, due](const auto& connection) {
    COrderDesk::CPlaced placed{RDError(CounterSimulated, SIMULATED_FAILURE), nullptr};
    if (!isFailing) placed = orders.place(connection, static_cast<const rdservice::CPlaceOrderReq&>(*request));
    if (writer.isStopping()) return;
    // What is pushed is the client's from then on: the reply has a record of its own.
    CSqlAnswer answer{placed.error, {}};
    if (placed.order != nullptr) answer.records.push_back(placed.order->copy());
    push(placed.changed);
    if (placed.isEntrusted()) fillLater(placed.order);  // before the reply, so that what the client does then is later
    deliver(due, request, reply, std::move(answer));
  });
}

CSqlCounter::Private::CWriting CSqlCounter::Private::writingOf(const IDataPtr& request) {
  switch (request->getBaseId()) {
    case rdservice::RequestSetCreditRepayPriority:
      return [this, request](const auto& connection) {
        return priorities.set(connection, static_cast<const rdservice::CSetCreditRepayPriorityReq&>(*request));
      };
    case rdservice::RequestCompactRenewal:
      return [this, request](const auto& connection) {
        return renewals.apply(connection, static_cast<const rdservice::CCreditCompactRenewalApply&>(*request));
      };
    default: return nullptr;
  }
}

void CSqlCounter::Private::write(CClock::time_point due, const IDataPtr& request, const CCounterReply& reply,
                                 bool isFailing, CWriting writing) {
  writer.post([this, request, reply, isFailing, due, writing = std::move(writing)](const auto& connection) {
    CWriteAnswer written{{RDError(CounterSimulated, SIMULATED_FAILURE), {}}};
    if (!isFailing) written = writing(connection);
    if (writer.isStopping()) return;
    push(written.changed);
    deliver(due, request, reply, std::move(written.answer));
  });
}

void CSqlCounter::Private::fillLater(const rdservice::CStkOrderPtr& order) {
  const std::chrono::milliseconds delay(fillDelay.load());
  if (delay.count() <= 0)
    fill(order);
  else
    timers.after(delay, [this, order] { fill(order); });
}

void CSqlCounter::Private::fill(const rdservice::CStkOrderPtr& order) {
  writer.post([this, order](const auto& connection) { push(orders.fill(connection, *order)); });
}

void CSqlCounter::Private::walkQuotes(CQuoteWalk walk) {
  if (walk.quotes <= 0) return;
  writer.post([this, walk](const auto& connection) {
    if (quoteWalk.load() != walk.number) return;
    push(quotes.move(connection, walk.quotes));
    timers.after(walk.interval, [this, walk] { walkQuotes(walk); });
  });
}

void CSqlCounter::Private::push(const std::vector<IDataPtr>& records) {
  if (!records.empty() && !writer.isStopping()) sink.load()->onPush(records);
}

}  // namespace counter
