#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace net {

/// One thread that runs functions later, in the order in which they fall due. The functions must be quick: post longer
/// work to a strand. An exception that leaves one is logged. Any thread may call, also from inside a function.
class CTimerQueue {
 public:
  CTimerQueue();
  /// Stops.
  ~CTimerQueue();
  CTimerQueue(const CTimerQueue&) = delete;
  CTimerQueue& operator=(const CTimerQueue&) = delete;

  /// Runs `function` once, not before `delay` has passed. The number is for `cancel`, never 0; 0 when stopped.
  std::uint64_t after(std::chrono::milliseconds delay, std::function<void()> function);

  /// True when the function was still waiting: it will not run. False when it runs, has run or was never there.
  bool cancel(std::uint64_t id);

  /// Frees what waits, and waits for the function that runs unless called from inside it. Nothing runs after it has
  /// returned, but for that function's own rest.
  void stop();

 private:
  struct CState;
  std::shared_ptr<CState> m_state;
};

}  // namespace net
