#include "net/CSerialQueue.h"

#include "utils/CLogCenter.h"

#include <exception>
#include <utility>

namespace net {

namespace {

thread_local const CSerialQueue* t_current = nullptr;

}  // namespace

CSerialQueue::CSerialQueue(std::function<void(CTask)> submit)
    : m_isOpen(submit != nullptr), m_submit(std::move(submit)) {}

// A task that is not queued is freed with the argument, after the lock: what it holds may post again.
void CSerialQueue::post(CTask task) {
  utils::CMutexLock lock(m_mutex);
  if (m_submit) m_submit([this, task = std::move(task)]() mutable { run(std::move(task)); });
}

void CSerialQueue::close() {
  std::function<void(CTask)> submit;
  utils::CMutexLock lock(m_mutex);
  m_isOpen = false;
  submit.swap(m_submit);
}

bool CSerialQueue::isCurrent() const { return t_current == this; }

void CSerialQueue::run(CTask task) const {
  t_current = this;
  try {
    if (m_isOpen) task();
  } catch (const std::exception& e) {
    utils::logError({"CSerialQueue.cpp", "net::CSerialQueue::run"}, "a task failed: {0}", e.what());
  } catch (...) {
    utils::logError({"CSerialQueue.cpp", "net::CSerialQueue::run"}, "a task failed");
  }
  task = nullptr;  // what it holds goes while the strand is still current
  t_current = nullptr;
}

}  // namespace net
