#pragma once

#include "host_api.h"

#include <string>
#include <vector>

namespace utils {

/// Outcome of an asynchronous request: an error code and a message for people (UTF-8). Code 0 is success.
class HOST_API RDError {
 public:
  /// Codes that the client itself gives; every other non-zero code comes from the counter.
  enum ECode : int { Success = 0, TimedOut = -1, Stopped = -2, NoAccount = -3, Unsupported = -4 };

  RDError();
  RDError(int code, std::string message);
  ~RDError();
  RDError(const RDError&);
  RDError& operator=(const RDError&);
  RDError(RDError&&) noexcept;
  RDError& operator=(RDError&&) noexcept;

  bool isSuccess() const;
  int errorCode() const;
  /// Empty on success.
  const std::string& errorMsg() const;

 private:
  int m_code = Success;
  std::string m_message;
};

}  // namespace utils
