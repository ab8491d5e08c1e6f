#include "gw/view/CSlicedTask.h"

#include <QElapsedTimer>
#include <QPointer>

#include <utility>

namespace GW {

CSlicedTask::CSlicedTask(QObject* parent) : QObject(parent) {
  connect(&m_timer, &QTimer::timeout, this, [this] { work(); });
}

CSlicedTask::~CSlicedTask() = default;

void CSlicedTask::start(std::function<bool()> step, std::function<void()> paused) {
  ++m_generation;
  m_step = std::move(step);
  m_paused = std::move(paused);
  m_slices = 0;
  m_timer.start(0);
}

void CSlicedTask::stop() {
  ++m_generation;
  m_timer.stop();
}

void CSlicedTask::work() {
  QElapsedTimer elapsed;
  elapsed.start();
  const QPointer<CSlicedTask> self(this);
  const auto step = m_step;  // either call may put others in their place
  const auto paused = m_paused;
  const unsigned generation = m_generation;
  ++m_slices;
  do {
    const bool isMore = step();
    if (!self || generation != m_generation) return;
    if (!isMore) {
      stop();
      return;
    }
  } while (!elapsed.hasExpired(SLICE_MS));
  if (paused) paused();
}

}  // namespace GW
