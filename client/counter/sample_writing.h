#pragma once

#include <QSaveFile>

#include <fmt/format.h>

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>

namespace counter {

// What the files of a sample book are written with.

/// Collects text and writes it to a file that replaces the former one only when it is complete.
class CSampleFile {
 public:
  explicit CSampleFile(const QString& path) : m_file(path) { m_file.open(QIODevice::WriteOnly); }

  template <class... Args>
  void add(fmt::format_string<Args...> format, const Args&... args) {
    fmt::format_to(std::back_inserter(m_text), format, args...);
    if (m_text.size() >= FLUSH_BYTES) flush();
  }

  /// What went wrong, empty for nothing.
  std::string finish() {
    flush();
    if (m_file.isOpen() && m_file.commit()) return {};
    return (m_file.fileName() + QStringLiteral(": ") + m_file.errorString()).toStdString();
  }

 private:
  static constexpr std::size_t FLUSH_BYTES = 256 * 1024;

  void flush() {
    if (m_file.isOpen()) m_file.write(m_text.data(), static_cast<qint64>(m_text.size()));
    m_text.clear();
  }

  QSaveFile m_file;
  fmt::memory_buffer m_text;
};

/// The standard's engine gives the same numbers everywhere, its distributions do not.
class CSampleRandom {
 public:
  explicit CSampleRandom(std::uint32_t seed) : m_engine(seed) {}
  std::int64_t between(std::int64_t low, std::int64_t high) {
    return low + static_cast<std::int64_t>(m_engine() % static_cast<std::uint64_t>(high - low + 1));
  }
  bool oneIn(unsigned n) { return m_engine() % n == 0; }

 private:
  std::mt19937_64 m_engine;
};

/// "today", "today-30", "today+5".
inline std::string dateWord(std::int64_t days) { return days == 0 ? "today" : fmt::format("today{:+}", days); }

/// Cents as yuan.
inline std::string yuan(std::int64_t cents) {
  return fmt::format("{}{}.{:02}", cents < 0 ? "-" : "", std::abs(cents) / 100, std::abs(cents) % 100);
}

}  // namespace counter
