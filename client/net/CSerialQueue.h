#pragma once

#include "utils/CMutex.h"

#include <atomic>
#include <functional>

namespace net {

/// What the handles of one strand share: the way into the pool until the engine stops, nothing afterwards. Any thread.
class CSerialQueue {
 public:
  using CTask = std::function<void()>;

  /// `submit` queues a task behind those submitted before; it is called under this queue's lock.
  explicit CSerialQueue(std::function<void(CTask)> submit);

  /// Queues the task behind an exception barrier, or frees it when the queue is closed.
  void post(CTask task);

  /// Afterwards no task begins, those queued are freed when their turn comes, and the pool is not referred to.
  void close();

  bool isCurrent() const;

 private:
  void run(CTask task) const;

  std::atomic<bool> m_isOpen;
  utils::CMutex m_mutex;
  std::function<void(CTask)> m_submit TS_GUARDED_BY(m_mutex);
};

}  // namespace net
