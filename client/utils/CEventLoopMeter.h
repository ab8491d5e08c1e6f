#pragma once

#include "host_api.h"

#include <QElapsedTimer>
#include <QObject>

namespace utils {

/// Measures how long the event loop of its thread did not turn: a timer that fires every few milliseconds notices how
/// late it is. GUI thread.
class HOST_API CEventLoopMeter : public QObject {
 public:
  /// `periodMs`: the shorter, the shorter the gaps that are noticed, and the more the loop is woken.
  CEventLoopMeter(int periodMs, QObject* parent);
  ~CEventLoopMeter() override;

  /// Milliseconds beyond the period, since construction or the last `reset`.
  double longestGap() const { return m_longestMs; }
  void reset();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  const int m_periodMs;
  QElapsedTimer m_sinceTurn;
  double m_longestMs = 0;
};

}  // namespace utils
