#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

namespace GW {

/// Long work on the GUI thread, done a slice in each turn of the event loop, so that the program goes on answering.
/// GUI thread.
class CSlicedTask : public QObject {
 public:
  static constexpr int SLICE_MS = 8;

  explicit CSlicedTask(QObject* parent);
  ~CSlicedTask() override;

  /// Instead of what it was doing. `step` does a small piece and returns whether anything is left to do; it may start
  /// or stop the task, or destroy it. The first slice comes in the next turn. `paused` (may be null) is called after
  /// every slice that has left something.
  void start(std::function<bool()> step, std::function<void()> paused);
  void stop();
  bool isRunning() const { return m_timer.isActive(); }
  /// Slices begun since the start.
  int slices() const { return m_slices; }

 private:
  void work();

  QTimer m_timer;
  std::function<bool()> m_step;
  std::function<void()> m_paused;
  unsigned m_generation = 0;
  int m_slices = 0;
};

}  // namespace GW
