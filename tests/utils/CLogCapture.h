#pragma once

#include "utils/CMutex.h"
#include "utils/log_factory.h"

#include <string>
#include <utility>
#include <vector>

/// A logging centre whose lines are kept as "level file message".
class CLogCapture {
 public:
  explicit CLogCapture(const utils::CLogOptions& options = {}) : m_center(utils::makeLogCenter(options)) {
    m_listener = m_center->addListener([this](const utils::CLogLine& line) {
      utils::CMutexLock lock(m_mutex);
      m_lines.push_back(std::to_string(line.level) + " " + line.file + " " + line.message);
    });
  }

  utils::CLogCenter& center() { return *m_center; }

  /// The lines since the last call.
  std::vector<std::string> take() {
    utils::CMutexLock lock(m_mutex);
    return std::exchange(m_lines, {});
  }

 private:
  utils::CMutex m_mutex;
  std::vector<std::string> m_lines TS_GUARDED_BY(m_mutex);
  std::unique_ptr<utils::CLogCenter> m_center;
  utils::CSubscriptionPtr m_listener;
};
