#pragma once

#include "utils/CMutex.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace counter {

class CSqlConnection;

/// Threads that run jobs from one queue, each with its own connection to a database, which it opens first and closes
/// last. A job gets the connection also when the database is unusable, and looks. Any thread may call.
class CSqlWorkers {
 public:
  using CJob = std::function<void(const CSqlConnection& connection)>;

  /// `path` is the database's (UTF-8). Jobs wait until `start`.
  CSqlWorkers(std::string path, int threads);
  /// Stops.
  ~CSqlWorkers();
  CSqlWorkers(const CSqlWorkers&) = delete;
  CSqlWorkers& operator=(const CSqlWorkers&) = delete;

  void start();
  /// Dropped after `stop`. An exception out of a job is logged.
  void post(CJob job);
  /// True from the beginning of `stop` on: long jobs look at it now and then and give up.
  bool isStopping() const { return m_stopping.load(std::memory_order_acquire); }
  /// Drops the jobs that wait and returns when those that run have ended. Not from inside a job. Idempotent.
  void stop();

 private:
  void work();
  /// False when it is time to end.
  bool takeJob(CJob& job);

  const std::string m_path;
  const int m_count;
  std::atomic<bool> m_stopping{false};
  utils::CMutex m_threadsMutex;
  std::vector<std::thread> m_threads TS_GUARDED_BY(m_threadsMutex);
  utils::CMutex m_mutex;
  std::condition_variable m_posted;
  std::deque<CJob> m_jobs TS_GUARDED_BY(m_mutex);
};

}  // namespace counter
