#pragma once

#include "host_api.h"

#include <functional>
#include <memory>
#include <string>

namespace net {

/// A serial work queue: its tasks run one at a time, in the order in which they were posted, on threads of the
/// engine's pool. Any thread may post.
class HOST_API CStrand {
 public:
  struct Private;

  explicit CStrand(std::unique_ptr<Private> d);
  ~CStrand();

  /// Queues `task`. An exception that leaves the task is logged and goes no further. After the engine has stopped the
  /// task is dropped.
  void post(std::function<void()> task);

  /// True inside a task of this strand.
  bool isCurrent() const;

  /// Debug builds stop the program when called outside a task of this strand.
  void assertCurrent() const;

 private:
  std::unique_ptr<Private> m_d;
};

using CStrandPtr = std::shared_ptr<CStrand>;

/// The process-wide pool of worker threads with its named strands. Any thread.
class HOST_API RPCEngine {
 public:
  struct Private;

  /// The running client's engine; null when no client runs.
  static RPCEngine* instance();

  explicit RPCEngine(std::unique_ptr<Private> d);
  ~RPCEngine();

  /// The strand of that name, the same one for every caller. The handle may outlive the engine.
  CStrandPtr getStrand(const std::string& name);

 private:
  std::unique_ptr<Private> m_d;
};

}  // namespace net
