#pragma once

#include <cstdint>
#include <string>

namespace counter {

struct CBookGeneratorOptions {
  std::int64_t compacts = 5000;   ///< of the first account; the others have their fixed numbers
  std::int64_t closed = 240;      ///< closed compacts of the first account; the others have their fixed numbers
  std::uint32_t seed = 1;         ///< the same seed gives the same files, byte for byte
  std::int64_t changed = 50'000;  ///< unclosed compacts of each account with change details, at most: the last ones
};

/// Writes a sample book: credit accounts of several counter types, securities of two exchanges and their quotes,
/// unclosed and closed compacts whose dates are words relative to the day of loading, change details, appointments for
/// renewal and positions that go with them. Memory does not grow with the number of compacts.
class CBookGenerator {
 public:
  static constexpr std::int64_t MAX_COMPACTS = 10'000'000;

  explicit CBookGenerator(const CBookGeneratorOptions& options) : m_options(options) {}

  /// Creates the folder (UTF-8) when needed and replaces the book's files in it. Returns what went wrong, empty for
  /// nothing; a file that could not be written whole keeps its former content.
  std::string write(const std::string& folder) const;

 private:
  CBookGeneratorOptions m_options;
};

}  // namespace counter
