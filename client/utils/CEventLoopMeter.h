#pragma once

#include "host_api.h"

#include <QElapsedTimer>
#include <QObject>

namespace utils {

/// Measures how long the event loop of its thread did not turn: the longest time between waking up and being ready for
/// the next event. GUI thread.
class HOST_API CEventLoopMeter : public QObject {
 public:
  explicit CEventLoopMeter(QObject* parent);
  ~CEventLoopMeter() override;

  /// Milliseconds, since construction or the last `reset`.
  double longestGap() const { return m_longestMs; }
  void reset() { m_longestMs = 0; }

 private:
  void turn(bool sleeping);

  QElapsedTimer m_clock;
  bool m_busy = false;
  double m_longestMs = 0;
};

}  // namespace utils
