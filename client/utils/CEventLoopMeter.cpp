#include "utils/CEventLoopMeter.h"

#include <algorithm>

namespace utils {

CEventLoopMeter::CEventLoopMeter(int periodMs, QObject* parent) : QObject(parent), m_periodMs(periodMs) {
  m_sinceTurn.start();
  startTimer(m_periodMs, Qt::PreciseTimer);
}

CEventLoopMeter::~CEventLoopMeter() = default;

void CEventLoopMeter::reset() {
  m_longestMs = 0;
  m_missedFrames = 0;
  m_sinceTurn.start();
}

void CEventLoopMeter::timerEvent(QTimerEvent*) {
  const double gapMs = double(m_sinceTurn.nsecsElapsed()) / 1e6 - m_periodMs;
  m_longestMs = std::max(m_longestMs, gapMs);
  if (gapMs > 0) m_missedFrames += static_cast<std::int64_t>(gapMs / FRAME_MS);
  m_sinceTurn.start();
}

}  // namespace utils
