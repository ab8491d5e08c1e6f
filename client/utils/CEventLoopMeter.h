#pragma once

#include "host_api.h"

#include <QElapsedTimer>
#include <QObject>

#include <cstdint>

namespace utils {

/// Measures how long the event loop of its thread did not turn: a timer that fires every few milliseconds notices how
/// late it is. GUI thread.
class HOST_API CEventLoopMeter : public QObject {
 public:
  /// `periodMs`: the shorter, the shorter the gaps that are noticed, and the more the loop is woken.
  CEventLoopMeter(int periodMs, QObject* parent);
  ~CEventLoopMeter() override;

  /// What a picture is given on a screen that shows about 60 a second. Milliseconds.
  static constexpr int FRAME_MS = 16;

  /// Milliseconds beyond the period, since construction or the last `reset`.
  double longestGap() const { return m_longestMs; }
  /// Whole frames that went by while the loop did not turn, in all its gaps since then.
  std::int64_t missedFrames() const { return m_missedFrames; }
  void reset();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  const int m_periodMs;
  QElapsedTimer m_sinceTurn;
  double m_longestMs = 0;
  std::int64_t m_missedFrames = 0;
};

}  // namespace utils
