#pragma once

#include "utils/CMutex.h"

#include <condition_variable>
#include <thread>
#include <vector>

namespace utils {

/// Lets calls of one callback through until it is closed, and knows which threads are inside. Any thread.
class CCallGate {
 public:
  /// False when the gate is closed: do not call. Every true is followed by one `leave()` on the same thread.
  bool enter();

  void leave();

  /// Closes the gate and waits until no other thread is inside. A thread that is inside itself does not wait for its
  /// own calls. True when nobody is inside any more, so that what the callback holds can be freed.
  bool close();

 private:
  bool isOtherInside() const TS_REQUIRES(m_mutex);

  CMutex m_mutex;
  std::condition_variable m_left;
  bool m_open TS_GUARDED_BY(m_mutex) = true;
  std::vector<std::thread::id> m_inside TS_GUARDED_BY(m_mutex);  ///< one entry a call, so nested calls count twice
};

}  // namespace utils
