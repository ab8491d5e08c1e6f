#pragma once

#include "counter/ICounter.h"
#include "net/CTimerQueue.h"
#include "utils/CMutex.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <unordered_map>

namespace VN {

/// Sends requests to a counter and sees to it that each is answered exactly once: by the counter's first reply, by a
/// time-out, or when the book is closed. Later replies of the counter are dropped. Any thread.
class CRequestBook {
 public:
  CRequestBook(counter::ICounter& counter, std::chrono::milliseconds timeout);
  ~CRequestBook();
  CRequestBook(const CRequestBook&) = delete;
  CRequestBook& operator=(const CRequestBook&) = delete;

  void send(const rdservice::IDataPtr& request, counter::CCounterReply reply);

  /// Answers with the error as if a counter had given it: on a service thread, not from inside this call.
  void refuse(utils::RDError error, counter::CCounterReply reply);

  /// Answers everything still out with `RDError::Stopped`; later requests are answered so at once. The counter must
  /// have stopped.
  void close();

 private:
  struct COpen {
    counter::CCounterReply reply;
    std::uint64_t timer;
  };
  /// Shared with replies and timers that are still out there.
  struct CState {
    utils::CMutex mutex;
    bool closed TS_GUARDED_BY(mutex) = false;
    std::uint64_t lastId TS_GUARDED_BY(mutex) = 0;
    std::unordered_map<std::uint64_t, COpen> open TS_GUARDED_BY(mutex);

    /// Takes a request out of the book: whoever gets it answers it.
    bool take(std::uint64_t id, COpen& taken);
  };

  /// Takes an answer into the book that `late` is given to after the wait. Its number, or 0 when the book is closed
  /// and the answer has been given.
  std::uint64_t enter(counter::CCounterReply reply, std::chrono::milliseconds wait, utils::RDError late);

  counter::ICounter& m_counter;
  const std::chrono::milliseconds m_timeout;
  std::shared_ptr<CState> m_state = std::make_shared<CState>();
  std::shared_ptr<net::CTimerQueue> m_timers = std::make_shared<net::CTimerQueue>();
};

}  // namespace VN
