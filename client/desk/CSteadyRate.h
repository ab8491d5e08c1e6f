#pragma once

#include <algorithm>

/// Parts a rate into whole changes for turns of any length: what is left over of one turn counts in the next.
class CSteadyRate {
 public:
  /// How many of `perSecond` changes a second are due after `seconds` more. A turn that took longer than a second, as
  /// after a standstill, counts as one second.
  int due(double seconds, int perSecond) {
    m_owed += std::min(seconds, 1.0) * perSecond;
    const int whole = static_cast<int>(m_owed);
    m_owed -= whole;
    return whole;
  }

 private:
  double m_owed = 0;
};
