#include "counter/CCsvReader.h"

#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <utility>

namespace counter {

namespace {

constexpr std::size_t BUFFER_BYTES = 256 * 1024;

/// Bytes of the UTF-8 character that begins with `c` and `second`, 0 when no character begins so.
int utf8Length(int c, int second) {
  const auto within = [second](int low, int high) { return second >= low && second <= high; };
  if (c >= 0xC2 && c <= 0xDF) return within(0x80, 0xBF) ? 2 : 0;
  if (c == 0xE0) return within(0xA0, 0xBF) ? 3 : 0;
  if (c == 0xED) return within(0x80, 0x9F) ? 3 : 0;  // the rest are surrogates
  if (c >= 0xE1 && c <= 0xEF) return within(0x80, 0xBF) ? 3 : 0;
  if (c == 0xF0) return within(0x90, 0xBF) ? 4 : 0;
  if (c >= 0xF1 && c <= 0xF3) return within(0x80, 0xBF) ? 4 : 0;
  if (c == 0xF4) return within(0x80, 0x8F) ? 4 : 0;
  return 0;
}

/// Whether `c` can be copied without a closer look, in a quoted or an unquoted cell.
bool isOrdinary(char c) { return c >= ' ' && c != ',' && c != '"' && c != 0x7F; }

}  // namespace

CCsvReader::CCsvReader(QIODevice& device, std::size_t maxRowBytes)
    : m_device(device), m_maxRowBytes(maxRowBytes), m_buffer(BUFFER_BYTES) {
  if (peek(0) == 0xEF && peek(1) == 0xBB && peek(2) == 0xBF) m_at += 3;
}

CCsvReader::ERow CCsvReader::next() {
  if (m_finished) return ERow::End;
  m_row.clear();
  m_spans.clear();
  m_cells.clear();
  skipEmptyLines();
  for (bool more = peek() >= 0; more;) {
    CSpan span{m_row.size(), 0, m_line, m_column};
    if (!(peek() == '"' ? readQuotedCell() : readPlainCell())) {
      skipLine();
      return ERow::Error;
    }
    span.end = m_row.size();
    m_spans.push_back(span);
    if (m_row.size() + m_spans.size() > m_maxRowBytes) {
      failTooLong();
      skipLine();
      return ERow::Error;
    }
    more = peek() == ',';
    if (more) {
      ++m_at;
      ++m_column;
    }
  }
  if (m_deviceFailed || m_spans.empty()) {
    m_finished = true;
    return m_deviceFailed ? ERow::Error : ERow::End;
  }
  takeLineEnd();
  const std::string_view row = m_row;
  for (const auto& span : m_spans)
    m_cells.push_back({row.substr(span.begin, span.end - span.begin), span.line, span.column});
  return ERow::Cells;
}

int CCsvReader::peek(std::size_t ahead) {
  if (m_at + ahead >= m_end) fill();
  return m_at + ahead < m_end ? static_cast<unsigned char>(m_buffer[m_at + ahead]) : -1;
}

void CCsvReader::fill() {
  if (m_deviceEnded) return;
  std::memmove(m_buffer.data(), m_buffer.data() + m_at, m_end - m_at);
  m_end -= m_at;
  m_at = 0;
  const auto got = m_device.read(m_buffer.data() + m_end, static_cast<qint64>(m_buffer.size() - m_end));
  m_deviceEnded = got <= 0;
  if (got > 0) m_end += static_cast<std::size_t>(got);
  if (got < 0) {
    fail(m_line, m_column, "cannot be read: " + m_device.errorString().toStdString());
    m_deviceFailed = true;
  }
}

bool CCsvReader::atLineEnd() { return peek() == '\n' || (peek() == '\r' && peek(1) == '\n'); }

void CCsvReader::takeLineEnd() {
  if (peek() < 0) return;
  m_at += peek() == '\r' ? 2 : 1;
  ++m_line;
  m_column = 1;
}

void CCsvReader::skipEmptyLines() {
  while (atLineEnd()) takeLineEnd();
}

void CCsvReader::skipLine() {
  while (peek() >= 0 && peek() != '\n') ++m_at;
  takeLineEnd();
}

bool CCsvReader::takeCharacter() {
  const int c = peek();
  int bytes = 1;
  if (c == 0) return fail(m_line, m_column, "a NUL byte; expected text in UTF-8");
  if (c >= 0x80) {
    bytes = utf8Length(c, peek(1));
    bool valid = bytes != 0;
    for (int i = 2; i < bytes; ++i) {
      const int next = peek(static_cast<std::size_t>(i));
      valid = valid && next >= 0x80 && next <= 0xBF;
    }
    if (!valid) return fail(m_line, m_column, "bytes that are not UTF-8; expected a file saved as UTF-8");
  }
  m_row.append(m_buffer.data() + m_at, static_cast<std::size_t>(bytes));
  m_at += static_cast<std::size_t>(bytes);
  ++m_column;
  // The run of ordinary characters that usually follows, in one step and no further than the row may grow.
  const std::size_t room = m_maxRowBytes > m_row.size() ? m_maxRowBytes - m_row.size() : 0;
  const auto begin = m_buffer.begin() + static_cast<std::ptrdiff_t>(m_at);
  const auto limit = begin + static_cast<std::ptrdiff_t>(std::min(room, m_end - m_at));
  const auto run = std::find_if_not(begin, limit, isOrdinary) - begin;
  m_row.append(m_buffer.data() + m_at, static_cast<std::size_t>(run));
  m_at += static_cast<std::size_t>(run);
  m_column += static_cast<int>(run);
  return true;
}

bool CCsvReader::readPlainCell() {
  while (peek() >= 0 && peek() != ',' && !atLineEnd()) {
    if (peek() == '"')
      return fail(m_line, m_column,
                  "a quote inside an unquoted cell; expected the whole cell in quotes, with \"\" for each quote");
    if (peek() == '\r')
      return fail(m_line, m_column, "a carriage return without line feed; expected lines ended by LF or CRLF");
    if (m_row.size() >= m_maxRowBytes) return failTooLong();
    if (!takeCharacter()) return false;
  }
  return true;
}

bool CCsvReader::readQuotedCell() {
  const int line = m_line;
  const int column = m_column;
  ++m_at;
  ++m_column;
  for (;;) {
    const int c = peek();
    if (c < 0 || m_row.size() >= m_maxRowBytes) {
      m_finished = true;
      return fail(line, column,
                  "a quote without end; expected a closing quote within " + std::to_string(m_maxRowBytes) + " bytes");
    }
    if (c == '\n') {
      m_row.push_back('\n');
      ++m_at;
      ++m_line;
      m_column = 1;
      continue;
    }
    if (c == '"') {
      ++m_at;
      ++m_column;
      if (peek() != '"') break;
    }
    if (!takeCharacter()) return false;
  }
  if (peek() < 0 || peek() == ',' || atLineEnd()) return true;
  return fail(m_line, m_column, "text after a closing quote; expected a comma or the end of the line");
}

bool CCsvReader::fail(int line, int column, std::string message) {
  if (!m_deviceFailed) m_error = {line, column, std::move(message)};
  return false;
}

bool CCsvReader::failTooLong() {
  return fail(m_line, m_column,
              "a line that is too long; expected at most " + std::to_string(m_maxRowBytes) + " bytes");
}

}  // namespace counter
