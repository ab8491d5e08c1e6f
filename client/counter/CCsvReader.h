#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class QIODevice;

namespace counter {

/// One cell of a row. The text lives until the next row is read.
struct CCsvCell {
  std::string_view text;  ///< UTF-8, unquoted
  int line;               ///< where the cell begins, 1-based
  int column;             ///< 1-based, in characters; of a quoted cell, where its quote stands
};

struct CCsvError {
  int line = 0;
  int column = 0;
  std::string message;
};

/// Reads CSV (RFC 4180) in UTF-8, with or without byte order mark, lines ended by LF or CRLF, row by row; only one row
/// is held in memory. Empty lines are skipped. One thread.
class CCsvReader {
 public:
  enum class ERow { Cells, Error, End };

  /// `device` is open for reading and outlives the reader. A row of more than `maxRowBytes` is an error.
  explicit CCsvReader(QIODevice& device, std::size_t maxRowBytes = 1 << 20);

  /// Reads one row: its `cells`, or what is wrong with it, in `error`. Reading goes on after an error with the next
  /// line, unless nothing sensible can follow (a quote without end, a failing device); then the next call says End.
  ERow next();

  const std::vector<CCsvCell>& cells() const { return m_cells; }
  const CCsvError& error() const { return m_error; }

 private:
  struct CSpan {
    std::size_t begin;
    std::size_t end;
    int line;
    int column;
  };

  int peek(std::size_t ahead = 0);
  void fill();
  bool atLineEnd();
  void takeLineEnd();
  bool takeCharacter();
  bool readPlainCell();
  bool readQuotedCell();
  void skipEmptyLines();
  void skipLine();
  bool fail(int line, int column, std::string message);
  bool failTooLong();

  QIODevice& m_device;
  const std::size_t m_maxRowBytes;
  std::vector<char> m_buffer;
  std::size_t m_at = 0;   ///< next byte in the buffer
  std::size_t m_end = 0;  ///< bytes held in the buffer
  int m_line = 1;
  int m_column = 1;
  bool m_deviceEnded = false;
  bool m_deviceFailed = false;
  bool m_finished = false;
  std::string m_row;  ///< texts of the row's cells, one after the other
  std::vector<CSpan> m_spans;
  std::vector<CCsvCell> m_cells;
  CCsvError m_error;
};

}  // namespace counter
