#include "utils/CLogCenter.h"

#include "utils/CCallbackList.h"
#include "utils/CInstance.h"
#include "utils/log_factory.h"

#include <log4cxx/consoleappender.h>
#include <log4cxx/fileappender.h>
#include <log4cxx/hierarchy.h>
#include <log4cxx/logger.h>
#include <log4cxx/patternlayout.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace utils {

namespace {

// A client that starts with a larger file keeps it with ".1" behind its name, in the place of the one before, and
// begins a new one. The back end's own rolling appender is no choice: it frees its policies by a base without a
// virtual destructor.
constexpr std::uintmax_t MAX_FILE_SIZE = 16 * 1024 * 1024;

void setLargeFileAside(const std::string& path) {
  std::error_code failed;
  const auto file = std::filesystem::u8path(path);
  const auto size = std::filesystem::file_size(file, failed);
  if (!failed && size > MAX_FILE_SIZE) std::filesystem::rename(file, std::filesystem::u8path(path + ".1"), failed);
}

/// Time, level, thread, file and line, then the message.
log4cxx::LayoutPtr makeLayout() {
  return std::make_shared<log4cxx::PatternLayout>("%d{yyyy-MM-dd HH:mm:ss.SSS} %-5p [%t] %F:%L %m%n");
}

/// A logger of our own hierarchy: what another library sets up in the process-wide one does not reach it, and the
/// back end does not go looking for a configuration file.
log4cxx::HierarchyPtr makeHierarchy(const CLogOptions& options) {
  auto hierarchy = log4cxx::Hierarchy::create();
  hierarchy->setConfigured(true);
  const auto logger = hierarchy->getRootLogger();
  logger->setLevel(log4cxx::Level::getAll());
  log4cxx::helpers::Pool pool;
  if (options.console) {
    auto appender = std::make_shared<log4cxx::ConsoleAppender>();
    appender->setLayout(makeLayout());
    appender->setTarget(log4cxx::ConsoleAppender::getSystemErr());
    appender->setOption("Encoding", "UTF-8");
    appender->activateOptions(pool);
    logger->addAppender(appender);
  }
  if (!options.filePath.empty()) {
    setLargeFileAside(options.filePath);
    auto appender = std::make_shared<log4cxx::FileAppender>();
    appender->setLayout(makeLayout());
    appender->setFile(options.filePath);
    appender->setAppend(true);
    appender->setOption("Encoding", "UTF-8");
    appender->activateOptions(pool);
    logger->addAppender(appender);
  }
  return hierarchy;
}

}  // namespace

struct CLogCenter::Private {
  explicit Private(const CLogOptions& options)
      : level(options.level),
        hasAppender(options.console || !options.filePath.empty()),
        hierarchy(makeHierarchy(options)),
        logger(hierarchy->getRootLogger()) {}
  ~Private() { hierarchy->shutdown(); }
  Private(const Private&) = delete;
  Private& operator=(const Private&) = delete;

  const int level;
  const bool hasAppender;  ///< without one the back end would complain
  const log4cxx::HierarchyPtr hierarchy;
  const log4cxx::LoggerPtr logger;
  CCallbackList<const CLogLine&> listeners;
  std::optional<CInstance<CLogCenter>> registration;
};

CLogCenter* CLogCenter::instance() { return CInstance<CLogCenter>::get(); }

CLogCenter::CLogCenter(std::unique_ptr<Private> d) : m_d(std::move(d)) { m_d->registration.emplace(this); }

CLogCenter::~CLogCenter() { m_d->registration.reset(); }

bool CLogCenter::isEnabledFor(int level) const { return level >= m_d->level; }

void CLogCenter::write(int level, std::string_view message, const CLogSite& site) {
  if (!isEnabledFor(level)) return;
  const CLogLine line{level, std::string(message), site.file, site.signature, site.line};
  if (m_d->hasAppender) {
    const log4cxx::spi::LocationInfo location(site.file, site.file, site.signature, site.line);
    m_d->logger->forcedLogLS(log4cxx::Level::toLevel(level), line.message, location);
  }
  m_d->listeners.call(line);
}

CSubscriptionPtr CLogCenter::addListener(std::function<void(const CLogLine&)> listener) {
  return m_d->listeners.add([f = std::move(listener)](const CLogLine& line) {
    try {
      f(line);
    } catch (...) {
      // The list would log what a callback throws, and so call the listener again.
    }
  });
}

std::unique_ptr<CLogCenter> makeLogCenter(const CLogOptions& options) {
  return std::make_unique<CLogCenter>(std::make_unique<CLogCenter::Private>(options));
}

namespace detail {

void logFormatted(int level, const CLogSite& site, fmt::string_view format, fmt::format_args arguments) {
  CLogCenter* center = CLogCenter::instance();
  if (center == nullptr) return;
  std::string message;
  try {
    message = fmt::vformat(format, arguments);
  } catch (const std::exception& e) {
    message.assign(format.data(), format.size());
    message.append(" [cannot be formatted: ").append(e.what()).append("]");
  }
  center->write(level, message, site);
}

bool isLogEnabled(int level) {
  const CLogCenter* center = CLogCenter::instance();
  return center != nullptr && center->isEnabledFor(level);
}

}  // namespace detail

}  // namespace utils
