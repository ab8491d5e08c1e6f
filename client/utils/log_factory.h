#pragma once

#include "utils/CLogCenter.h"

#include <memory>
#include <string>

namespace utils {

struct CLogOptions {
  std::string filePath;     ///< UTF-8; empty: no file. The folder must exist; lines are appended.
  bool console = false;     ///< also to standard error
  int level = LogInfo;      ///< lines below it are dropped
};

/// The running client's logging centre; `CLogCenter::instance()` gives it until it is destroyed. One at a time.
std::unique_ptr<CLogCenter> makeLogCenter(const CLogOptions& options);

}  // namespace utils
