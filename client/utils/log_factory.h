#pragma once

#include "utils/CLogCenter.h"

#include <memory>
#include <string>

namespace utils {

struct CLogOptions {
  /// UTF-8; empty: no file. Lines are appended; a file above 16 MiB is first set aside with ".1" behind its name.
  std::string filePath;
  bool console = false;  ///< also to standard error
  int level = LogInfo;   ///< lines below it are dropped
};

/// The running client's logging centre; `CLogCenter::instance()` gives it until it is destroyed. One at a time.
std::unique_ptr<CLogCenter> makeLogCenter(const CLogOptions& options);

}  // namespace utils
