#include "utils/RDError.h"

#include <utility>

namespace utils {

RDError::RDError() = default;
RDError::RDError(int code, std::string message) : m_code(code), m_message(std::move(message)) {
  if (isSuccess()) m_message.clear();
}
RDError::~RDError() = default;
RDError::RDError(const RDError&) = default;
RDError& RDError::operator=(const RDError&) = default;
RDError::RDError(RDError&&) noexcept = default;
RDError& RDError::operator=(RDError&&) noexcept = default;

bool RDError::isSuccess() const { return m_code == Success; }
int RDError::errorCode() const { return m_code; }
const std::string& RDError::errorMsg() const { return m_message; }

}  // namespace utils
