#pragma once

#include <string>

namespace counter {

/// One fault of a book: where it stands, what is wrong there, and what was expected.
struct CBookError {
  std::string file;     ///< name of the file inside the book's folder
  int line = 0;         ///< 1-based; 0 when the fault concerns the whole file
  int column = 0;       ///< 1-based, in characters
  std::string message;  ///< UTF-8

  /// "file:line:column: message", or "file: message" for a whole file.
  std::string text() const;
};

}  // namespace counter
