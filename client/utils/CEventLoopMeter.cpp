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
  m_sinceTurn.start();
}

void CEventLoopMeter::timerEvent(QTimerEvent*) {
  m_longestMs = std::max(m_longestMs, double(m_sinceTurn.nsecsElapsed()) / 1e6 - m_periodMs);
  m_sinceTurn.start();
}

}  // namespace utils
