#include "utils/CEventLoopMeter.h"

#include <QAbstractEventDispatcher>

#include <algorithm>

namespace utils {

CEventLoopMeter::CEventLoopMeter(QObject* parent) : QObject(parent) {
  QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
  connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { turn(false); });
  connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] { turn(true); });
}

CEventLoopMeter::~CEventLoopMeter() = default;

void CEventLoopMeter::turn(bool sleeping) {
  if (m_busy) m_longestMs = std::max(m_longestMs, double(m_clock.nsecsElapsed()) / 1e6);
  m_busy = !sleeping;
  if (m_busy) m_clock.start();
}

}  // namespace utils
