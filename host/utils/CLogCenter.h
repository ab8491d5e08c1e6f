#pragma once

#include "host_api.h"
#include "utils/CSubscription.h"

#include <fmt/format.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace utils {

/// Levels as the logging back end counts them.
enum ELogLevel : int { LogDebug = 10000, LogInfo = 20000, LogWarn = 30000, LogError = 40000 };

/// Where a log line says that it comes from. `file` and `signature` are literals, given explicitly, so that they stay
/// the same whichever source file the code stands in. The line number is taken where the site is made.
struct CLogSite {
  const char* file;
  const char* signature;
  int line;

  constexpr CLogSite(const char* fileName, const char* fullSignature, int lineNumber = __builtin_LINE())
      : file(fileName), signature(fullSignature), line(lineNumber) {}
};

/// One written line, as listeners see it.
struct CLogLine {
  int level;
  std::string message;  ///< UTF-8
  std::string file;
  std::string signature;
  int line;
};

/// The client's logging centre. Every member may be called from any thread.
class HOST_API CLogCenter {
 public:
  struct Private;

  /// The running client's centre; null when no client runs.
  static CLogCenter* instance();

  explicit CLogCenter(std::unique_ptr<Private> d);
  ~CLogCenter();

  bool isEnabledFor(int level) const;

  /// Writes one line. Does nothing when the level is off.
  void write(int level, std::string_view message, const CLogSite& site);

  /// Calls `listener` for every line written from now on, on the thread that writes it. The listener must be quick and
  /// must not log.
  [[nodiscard]] CSubscriptionPtr addListener(std::function<void(const CLogLine&)> listener);

 private:
  std::unique_ptr<Private> m_d;
};

namespace detail {
HOST_API void logFormatted(int level, const CLogSite& site, fmt::string_view format, fmt::format_args arguments);
HOST_API bool isLogEnabled(int level);
}  // namespace detail

/// Formats with positional placeholders ("{0}") and writes the line. A pattern that does not fit its arguments is
/// written as it stands, with the formatter's complaint, instead of being thrown. Any thread; without a running client
/// the line is dropped.
template <class... Args>
void log(int level, const CLogSite& site, std::string_view format, const Args&... arguments) {
  if (detail::isLogEnabled(level))
    detail::logFormatted(level, site, fmt::string_view(format.data(), format.size()),
                         fmt::make_format_args(arguments...));
}

template <class... Args>
void logInfo(const CLogSite& site, std::string_view format, const Args&... arguments) {
  log(LogInfo, site, format, arguments...);
}

template <class... Args>
void logError(const CLogSite& site, std::string_view format, const Args&... arguments) {
  log(LogError, site, format, arguments...);
}

}  // namespace utils
