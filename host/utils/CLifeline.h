#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>

namespace utils {

/// Keeps service callbacks and strand tasks away from an object that is being destroyed.
///
/// The object owns one lifeline and wraps with `guard` whatever it hands to other threads. A guarded call holds the
/// lifeline while it runs; after `close()` it does nothing. `close()` waits for guarded calls running on other
/// threads, and must be the first line of the final class's destructor: in a base destructor the derived members are
/// gone already. Never call `close()` from inside a guarded call.
template <class T>
class CLifeline {
  struct CState {
    std::shared_mutex mutex;
    T* object;
    std::atomic<bool> closing{false};
    explicit CState(T* o) : object(o) {}
  };

 public:
  explicit CLifeline(T* object) : m_state(std::make_shared<CState>(object)) {}
  ~CLifeline() { close(); }
  CLifeline(const CLifeline&) = delete;
  CLifeline& operator=(const CLifeline&) = delete;

  /// Object's own thread. Idempotent.
  void close() {
    m_state->closing.store(true, std::memory_order_release);
    std::unique_lock<std::shared_mutex> lock(m_state->mutex);
    m_state->object = nullptr;
  }

  /// Any thread. Long tasks look at it now and then and give up when it is true.
  bool isClosing() const { return m_state->closing.load(std::memory_order_acquire); }

  /// A callable of the same arguments that runs `function(object, arguments...)` while the object lives.
  template <class F>
  auto guard(F function) const {
    return [state = m_state, f = std::move(function)](auto&&... arguments) mutable {
      if (state->closing.load(std::memory_order_acquire)) return;  // do not hold up the one who waits to close
      std::shared_lock<std::shared_mutex> lock(state->mutex);
      if (state->object != nullptr) f(*state->object, std::forward<decltype(arguments)>(arguments)...);
    };
  }

 private:
  std::shared_ptr<CState> m_state;
};

}  // namespace utils
