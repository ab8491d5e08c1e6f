#pragma once

#include "counter/CBookError.h"

#include <QDate>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace counter {

/// How many records of one kind a book holds.
struct CBookCount {
  std::string kind;  ///< "unclosed_compacts"
  std::int64_t records = 0;
};

/// What became of loading a book.
struct CBookResult {
  std::vector<CBookError> errors;  ///< the first 1,000
  std::int64_t moreErrors = 0;     ///< those beyond
  std::vector<CBookCount> counts;  ///< of every kind, when the book was loaded

  bool isLoaded() const { return errors.empty(); }
  /// One line for each error, and "and N more" when there are more than listed.
  std::string errorText() const;
};

/// Loads a book, which is a folder with one CSV file for each kind of record (accounts.csv, instruments.csv,
/// unclosed_compacts.csv, and the optional ones of `recordKinds`, which may be left out). The header names the fields,
/// in any order; optional ones that are absent or empty take their defaults. `account` holds the account id, which must
/// stand in accounts.csv; exchange and code must stand in instruments.csv, which supplies the security name when the
/// book gives none; absent position strings are numbered in the order of the file. Dates may be words such as
/// "today-30".
///
/// Any thread, one at a time. Needs a QCoreApplication.
class CBookLoader {
 public:
  /// `folder` is UTF-8. `today` is the day that date words count from.
  CBookLoader(std::string folder, QDate today);

  /// Replaces what the database at the path (UTF-8) holds by the book, in one transaction; a counter may be reading
  /// meanwhile. A book with errors is refused whole, with all its errors, and leaves the database untouched.
  /// When `giveUp` becomes true the loading ends soon, as with an error.
  CBookResult load(const std::string& databasePath, const std::atomic<bool>& giveUp) const;
  CBookResult load(const std::string& databasePath) const;

 private:
  const std::string m_folder;
  const QDate m_today;
};

}  // namespace counter
