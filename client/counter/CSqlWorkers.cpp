#include "counter/CSqlWorkers.h"

#include "counter/CSqlConnection.h"
#include "utils/CLogCenter.h"
#include "utils/background.h"

#include <cassert>
#include <exception>
#include <memory>
#include <utility>

namespace counter {

namespace {

/// Two connections that switch a new file to write-ahead logging at once would find it locked.
utils::CMutex s_opening;

constexpr utils::CLogSite SITE{"CSqlWorkers.cpp", "void counter::CSqlWorkers::work()"};

}  // namespace

CSqlWorkers::CSqlWorkers(std::string path, int threads) : m_path(std::move(path)), m_count(threads) {
  assert(threads > 0);
}

CSqlWorkers::~CSqlWorkers() { stop(); }

void CSqlWorkers::start() {
  utils::CMutexLock lock(m_threadsMutex);
  if (isStopping() || !m_threads.empty()) return;
  for (int i = 0; i < m_count; ++i) m_threads.emplace_back([this] { work(); });
}

void CSqlWorkers::post(CJob job) {
  {
    utils::CMutexLock lock(m_mutex);
    if (isStopping()) return;
    m_jobs.push_back(std::move(job));
  }
  m_posted.notify_one();
}

void CSqlWorkers::stop() {
  std::deque<CJob> dropped;
  {
    utils::CMutexLock lock(m_mutex);
    m_stopping.store(true, std::memory_order_release);
    m_jobs.swap(dropped);
  }
  m_posted.notify_all();
  utils::CMutexLock lock(m_threadsMutex);
  for (auto& thread : m_threads) thread.join();
  m_threads.clear();
}

void CSqlWorkers::work() {
  utils::workInBackground();
  const auto connection = [this] {
    utils::CMutexLock lock(s_opening);
    return std::make_unique<CSqlConnection>(m_path);
  }();
  if (!connection->isOpen()) utils::logError(SITE, "counter database {0}: {1}", m_path, connection->error());
  for (CJob job; takeJob(job); job = nullptr) {
    try {
      job(*connection);
    } catch (const std::exception& exception) {
      utils::logError(SITE, "counter job: {0}", exception.what());
    } catch (...) {
      utils::logError(SITE, "counter job: an exception of unknown type");
    }
  }
}

bool CSqlWorkers::takeJob(CJob& job) {
  utils::CMutexLock lock(m_mutex);
  while (m_jobs.empty() && !isStopping()) lock.wait(m_posted);
  if (isStopping()) return false;
  job = std::move(m_jobs.front());
  m_jobs.pop_front();
  return true;
}

}  // namespace counter
