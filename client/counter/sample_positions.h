#pragma once

#include "counter/sample_writing.h"

#include <map>

namespace counter {

struct CSampleSecurity;

/// Shares that an account owes, by security.
using CSampleLiabilities = std::map<const CSampleSecurity*, std::int64_t>;

/// Writes positions: of a part of the securities, of those that an account owes some more and some less than it owes.
class CSamplePositions {
 public:
  CSamplePositions(const QString& path, std::uint32_t seed);

  void add(const char* account, const CSampleLiabilities& owed);
  std::string finish() { return m_file.finish(); }

 private:
  /// Lots that are held of a security of which so many lots are owed.
  std::int64_t pickLots(std::int64_t owedLots);

  CSampleFile m_file;
  CSampleRandom m_random;
};

/// Writes a quote for each security, near its price. Returns what went wrong, empty for nothing.
std::string writeSampleQuotes(const QString& path, std::uint32_t seed);

}  // namespace counter
