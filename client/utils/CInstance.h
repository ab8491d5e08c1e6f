#pragma once

#include <atomic>
#include <cassert>

namespace utils {

/// Registers the one running object of a service class, for as long as the registration lives. `T::instance()` answers
/// from `get()`. Registration happens while the client starts and stops, on one thread; `get()` from any.
template <class T>
class CInstance {
 public:
  explicit CInstance(T* object) {
    [[maybe_unused]] T* previous = s_current.exchange(object);
    assert(previous == nullptr && "two clients in one process");
  }
  ~CInstance() { s_current.store(nullptr); }
  CInstance(const CInstance&) = delete;
  CInstance& operator=(const CInstance&) = delete;

  static T* get() { return s_current.load(std::memory_order_acquire); }

 private:
  inline static std::atomic<T*> s_current{nullptr};
};

}  // namespace utils
