#pragma once

#include "utils/thread_annotations.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <shared_mutex>

namespace utils {

/// std::mutex that clang's thread-safety analysis can see.
class TS_CAPABILITY("mutex") CMutex {
 public:
  void lock() TS_ACQUIRE() { m_mutex.lock(); }
  void unlock() TS_RELEASE() { m_mutex.unlock(); }
  bool tryLock() TS_TRY_ACQUIRE(true) { return m_mutex.try_lock(); }

 private:
  friend class CMutexLock;
  std::mutex m_mutex;
};

/// Holds a CMutex for a scope; the waits give it up until the condition is notified.
class TS_SCOPED_CAPABILITY CMutexLock {
 public:
  explicit CMutexLock(CMutex& mutex) TS_ACQUIRE(mutex) : m_lock(mutex.m_mutex) {}
  ~CMutexLock() TS_RELEASE() = default;
  CMutexLock(const CMutexLock&) = delete;
  CMutexLock& operator=(const CMutexLock&) = delete;

  void wait(std::condition_variable& condition) { condition.wait(m_lock); }
  void waitUntil(std::condition_variable& condition, std::chrono::steady_clock::time_point time) {
    condition.wait_until(m_lock, time);
  }

 private:
  std::unique_lock<std::mutex> m_lock;
};

/// Reader/writer lock that clang's thread-safety analysis can see.
class TS_CAPABILITY("mutex") CSharedMutex {
 public:
  void lock() TS_ACQUIRE() { m_mutex.lock(); }
  void unlock() TS_RELEASE() { m_mutex.unlock(); }
  void lockShared() TS_ACQUIRE_SHARED() { m_mutex.lock_shared(); }
  void unlockShared() TS_RELEASE_GENERIC() { m_mutex.unlock_shared(); }

 private:
  std::shared_mutex m_mutex;
};

class TS_SCOPED_CAPABILITY CReadLock {
 public:
  explicit CReadLock(CSharedMutex& mutex) TS_ACQUIRE_SHARED(mutex) : m_mutex(mutex) { m_mutex.lockShared(); }
  ~CReadLock() TS_RELEASE_GENERIC() { m_mutex.unlockShared(); }
  CReadLock(const CReadLock&) = delete;
  CReadLock& operator=(const CReadLock&) = delete;

 private:
  CSharedMutex& m_mutex;
};

class TS_SCOPED_CAPABILITY CWriteLock {
 public:
  explicit CWriteLock(CSharedMutex& mutex) TS_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
  ~CWriteLock() TS_RELEASE() { m_mutex.unlock(); }
  CWriteLock(const CWriteLock&) = delete;
  CWriteLock& operator=(const CWriteLock&) = delete;

 private:
  CSharedMutex& m_mutex;
};

}  // namespace utils
