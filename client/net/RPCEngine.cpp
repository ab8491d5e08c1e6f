#include "net/RPCEngine.h"

#include "net/CSerialQueue.h"
#include "net/engine_factory.h"

#include "utils/CInstance.h"
#include "utils/background.h"

#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>

#include <algorithm>
#include <cassert>
#include <map>
#include <optional>
#include <utility>

namespace net {

struct CStrand::Private {
  std::shared_ptr<CSerialQueue> queue;
};

CStrand::CStrand(std::unique_ptr<Private> d) : m_d(std::move(d)) {}
CStrand::~CStrand() = default;

void CStrand::post(std::function<void()> task) { m_d->queue->post(std::move(task)); }
bool CStrand::isCurrent() const { return m_d->queue->isCurrent(); }
void CStrand::assertCurrent() const { assert(isCurrent() && "only a task of this strand may call this"); }

namespace {

struct CNamedStrand {
  std::shared_ptr<CSerialQueue> queue;  ///< queued tasks refer to it, so it is kept for as long as the pool
  CStrandPtr handle;

  explicit CNamedStrand(std::function<void(CSerialQueue::CTask)> submit)
      : queue(std::make_shared<CSerialQueue>(std::move(submit))) {
    auto d = std::make_unique<CStrand::Private>();
    d->queue = queue;
    handle = std::make_shared<CStrand>(std::move(d));
  }
};

}  // namespace

struct RPCEngine::Private {
  explicit Private(unsigned threads)
      : pool(std::make_unique<boost::asio::thread_pool>(std::max(threads, 1U))), data(this) {}
  ~Private() { stop(); }
  Private(const Private&) = delete;
  Private& operator=(const Private&) = delete;

  CStrandPtr getStrand(const std::string& name);
  void stop();

  utils::CMutex stopMutex;                         ///< held while stopping, so that a second caller waits too
  std::unique_ptr<boost::asio::thread_pool> pool;  ///< freed by `stop`; `isOpen` says whether it may be used
  utils::CMutex mutex;
  bool isOpen TS_GUARDED_BY(mutex) = true;
  std::map<std::string, CNamedStrand> strands TS_GUARDED_BY(mutex);
  utils::CInstance<Private> data;  ///< how `stopEngine` gets here: the contract has no way in
  std::optional<utils::CInstance<RPCEngine>> registration;
};

CStrandPtr RPCEngine::Private::getStrand(const std::string& name) {
  utils::CMutexLock lock(mutex);
  const auto known = strands.find(name);
  if (known != strands.end()) return known->second.handle;
  std::function<void(CSerialQueue::CTask)> submit;
  if (isOpen) {
    submit = [strand = boost::asio::make_strand(*pool)](CSerialQueue::CTask task) {
      boost::asio::post(strand, [task = std::move(task)]() mutable {
        utils::workInBackground();
        task();
      });
    };
  }
  return strands.emplace(name, std::move(submit)).first->second.handle;
}

void RPCEngine::Private::stop() {
  utils::CMutexLock stopLock(stopMutex);
  if (pool == nullptr) return;
  assert(!pool->get_executor().running_in_this_thread() && "a task cannot wait for its own end");
  {
    utils::CMutexLock lock(mutex);
    isOpen = false;
    for (auto& [name, strand] : strands) strand.queue->close();
  }
  pool->stop();
  pool->join();
  pool.reset();  // frees what was queued
}

RPCEngine* RPCEngine::instance() { return utils::CInstance<RPCEngine>::get(); }

RPCEngine::RPCEngine(std::unique_ptr<Private> d) : m_d(std::move(d)) { m_d->registration.emplace(this); }

RPCEngine::~RPCEngine() {
  m_d->stop();
  m_d->registration.reset();
}

CStrandPtr RPCEngine::getStrand(const std::string& name) { return m_d->getStrand(name); }

std::unique_ptr<RPCEngine> makeRPCEngine(unsigned threads) {
  return std::make_unique<RPCEngine>(std::make_unique<RPCEngine::Private>(threads));
}

void stopEngine([[maybe_unused]] RPCEngine& engine) {
  assert(&engine == RPCEngine::instance());
  utils::CInstance<RPCEngine::Private>::get()->stop();
}

}  // namespace net
