#pragma once

#include "net/RPCEngine.h"
#include "utils/CLifeline.h"

#include <functional>
#include <string>
#include <utility>

namespace VN {

/// What a table does away from the GUI thread: strand tasks and reply handlers that end with the table. They may use
/// the table without more ado: its `close` waits for those that run, and none begins later.
class CTableTasks {
 public:
  /// `onFailure`: a task or reply handler threw; `what` tells what. Called on its thread.
  explicit CTableTasks(std::function<void(const std::string& what)> onFailure);
  ~CTableTasks();

  /// First line of the final class's destructor. GUI thread.
  void close() { m_lifeline.close(); }
  /// Long tasks look at it now and then. Any thread.
  bool isClosing() const { return m_lifeline.isClosing(); }

  /// Runs `task` on the strand "hpfmodel" while the table lives. Any thread.
  template <class F>
  void post(F task) {
    m_strand->post(guarded(std::move(task)));
  }

  /// A callable for a service that runs `function` while the table lives. Any thread.
  template <class F>
  auto guarded(F function) {
    return m_lifeline.guard([function = std::move(function)](CTableTasks& tasks, auto&&... arguments) mutable {
      tasks.run([&] { function(std::forward<decltype(arguments)>(arguments)...); });
    });
  }

 private:
  void run(const std::function<void()>& task) const;

  const std::function<void(const std::string&)> m_onFailure;
  net::CStrandPtr m_strand;
  utils::CLifeline<CTableTasks> m_lifeline;
};

}  // namespace VN
