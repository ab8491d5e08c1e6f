#pragma once

#include "counter/sample_writing.h"

namespace counter {

struct CSampleCompact;

/// Writes appointments for renewal: of a part of the compacts that expire soon.
class CSampleAppointments {
 public:
  CSampleAppointments(const QString& path, std::uint32_t seed);

  void add(const char* account, const CSampleCompact& compact);
  std::string finish() { return m_file.finish(); }

 private:
  CSampleFile m_file;
  CSampleRandom m_random;
};

}  // namespace counter
