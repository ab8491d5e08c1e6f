#include "utils/CCallGate.h"

#include <algorithm>

namespace utils {

bool CCallGate::enter() {
  CMutexLock lock(m_mutex);
  if (m_open) m_inside.push_back(std::this_thread::get_id());
  return m_open;
}

void CCallGate::leave() {
  CMutexLock lock(m_mutex);
  m_inside.erase(std::find(m_inside.begin(), m_inside.end(), std::this_thread::get_id()));
  if (!m_open) m_left.notify_all();
}

bool CCallGate::close() {
  CMutexLock lock(m_mutex);
  m_open = false;
  while (isOtherInside()) lock.wait(m_left);
  return m_inside.empty();
}

bool CCallGate::isOtherInside() const {
  const auto self = std::this_thread::get_id();
  return std::any_of(m_inside.begin(), m_inside.end(), [self](std::thread::id id) { return id != self; });
}

}  // namespace utils
