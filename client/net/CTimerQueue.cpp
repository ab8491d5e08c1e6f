#include "net/CTimerQueue.h"

#include "utils/CLogCenter.h"
#include "utils/CMutex.h"

#include <condition_variable>
#include <exception>
#include <map>
#include <thread>
#include <utility>

namespace net {

namespace {

using CClock = std::chrono::steady_clock;

void runGuarded(const std::function<void()>& function) {
  try {
    function();
  } catch (const std::exception& e) {
    utils::logError({"CTimerQueue.cpp", "net::CTimerQueue::run"}, "a timed function failed: {0}", e.what());
  } catch (...) {
    utils::logError({"CTimerQueue.cpp", "net::CTimerQueue::run"}, "a timed function failed");
  }
}

}  // namespace

/// Shared with the thread, which outlives the queue when a function destroys it.
struct CTimerQueue::CState {
  using CWaiting = std::map<std::pair<CClock::time_point, std::uint64_t>, std::function<void()>>;

  utils::CMutex mutex;
  std::condition_variable changed;
  CWaiting waiting TS_GUARDED_BY(mutex);
  std::uint64_t lastId TS_GUARDED_BY(mutex) = 0;
  bool stopping TS_GUARDED_BY(mutex) = false;
  bool finished TS_GUARDED_BY(mutex) = false;
  std::thread thread;

  bool takeDue(std::function<void()>& function);
  void run();
};

/// Waits until a function is due and takes it; false when the queue stops.
bool CTimerQueue::CState::takeDue(std::function<void()>& function) {
  utils::CMutexLock lock(mutex);
  while (!stopping) {
    if (waiting.empty()) {
      lock.wait(changed);
    } else if (const auto due = waiting.begin()->first.first; due > CClock::now()) {
      lock.waitUntil(changed, due);
    } else {
      function = std::move(waiting.begin()->second);
      waiting.erase(waiting.begin());
      return true;
    }
  }
  return false;
}

void CTimerQueue::CState::run() {
  for (std::function<void()> function; takeDue(function); function = nullptr) runGuarded(function);
  utils::CMutexLock lock(mutex);
  finished = true;
  changed.notify_all();
}

CTimerQueue::CTimerQueue() : m_state(std::make_shared<CState>()) {
  m_state->thread = std::thread([state = m_state] { state->run(); });
}

CTimerQueue::~CTimerQueue() {
  stop();
  if (m_state->thread.get_id() == std::this_thread::get_id()) {
    m_state->thread.detach();
  } else {
    m_state->thread.join();
  }
}

std::uint64_t CTimerQueue::after(std::chrono::milliseconds delay, std::function<void()> function) {
  utils::CMutexLock lock(m_state->mutex);
  if (m_state->stopping) return 0;
  const std::uint64_t id = ++m_state->lastId;
  m_state->waiting.emplace(std::make_pair(CClock::now() + delay, id), std::move(function));
  m_state->changed.notify_all();
  return id;
}

bool CTimerQueue::cancel(std::uint64_t id) {
  std::function<void()> function;  // freed after the lock
  utils::CMutexLock lock(m_state->mutex);
  for (auto it = m_state->waiting.begin(); it != m_state->waiting.end(); ++it) {
    if (it->first.second != id) continue;
    function = std::move(it->second);
    m_state->waiting.erase(it);
    return true;
  }
  return false;
}

void CTimerQueue::stop() {
  CState::CWaiting waiting;
  {
    utils::CMutexLock lock(m_state->mutex);
    m_state->stopping = true;
    waiting.swap(m_state->waiting);
    m_state->changed.notify_all();
  }
  waiting.clear();  // without the lock: what the functions hold may call back
  if (m_state->thread.get_id() == std::this_thread::get_id()) return;
  utils::CMutexLock lock(m_state->mutex);
  while (!m_state->finished) lock.wait(m_state->changed);
}

}  // namespace net
