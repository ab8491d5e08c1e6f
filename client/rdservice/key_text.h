#pragma once

#include "rdservice/CAccountInfo.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace rdservice {

/// Divides the parts of a record key.
constexpr std::string_view KEY_SEPARATOR = "____";

namespace detail {

constexpr std::size_t MAX_DIGITS = 20;
/// Keys up to this length are put together on the stack.
constexpr std::size_t USUAL_KEY_LENGTH = 128;

inline std::size_t keyPartBound(std::string_view part) { return part.size(); }
inline std::size_t keyPartBound(std::int32_t) { return MAX_DIGITS; }
inline std::size_t keyPartBound(char) { return 1; }
inline std::size_t keyPartBound(const CAccountInfo& part) { return MAX_DIGITS + 1 + part.accountId.size(); }
inline std::size_t keyPartBound(const CAccountInfoPtr& part) { return part == nullptr ? 0 : keyPartBound(*part); }

/// Parts are short: up to 16 bytes are copied by two moves that may overlap, without a call.
template <std::size_t WIDTH>
void copyEnds(char* to, const char* from, std::size_t size) {
  std::memcpy(to, from, WIDTH);
  std::memcpy(to + size - WIDTH, from + size - WIDTH, WIDTH);
}

// Each returns the place behind what it has written.
inline char* writeKeyPart(char* to, std::string_view part) {
  const std::size_t size = part.size();
  if (size > 16)
    std::memcpy(to, part.data(), size);
  else if (size >= 8)
    copyEnds<8>(to, part.data(), size);
  else if (size >= 4)
    copyEnds<4>(to, part.data(), size);
  else if (size >= 2)
    copyEnds<2>(to, part.data(), size);
  else if (size == 1)
    *to = part.front();
  return to + size;
}
inline char* writeKeyPart(char* to, char part) {
  *to = part;
  return to + 1;
}
inline char* writeKeyPart(char* to, std::int32_t part) { return std::to_chars(to, to + MAX_DIGITS, part).ptr; }
inline char* writeKeyPart(char* to, const CAccountInfo& part) {
  return writeKeyPart(writeKeyPart(writeKeyPart(to, part.brokerType), '.'), std::string_view(part.accountId));
}
inline char* writeKeyPart(char* to, const CAccountInfoPtr& part) {
  return part == nullptr ? to : writeKeyPart(to, *part);
}

template <class First, class... Parts>
char* writeKey(char* to, const First& first, const Parts&... parts) {
  to = writeKeyPart(to, first);
  [[maybe_unused]] const auto append = [&to](const auto& part) {
    to = writeKeyPart(writeKeyPart(to, KEY_SEPARATOR), part);
  };
  (append(parts), ...);
  return to;
}

}  // namespace detail

/// The parts (texts, numbers, codes; an account gives its key, a null one nothing) joined by KEY_SEPARATOR. Allocates
/// once: millions of these are made when an account is loaded.
template <class... Parts>
std::string joinKey(const Parts&... parts) {
  const std::size_t bound = (... + (detail::keyPartBound(parts) + KEY_SEPARATOR.size()));
  if (bound <= detail::USUAL_KEY_LENGTH) {
    char key[detail::USUAL_KEY_LENGTH];
    return std::string(key, detail::writeKey(key, parts...));
  }
  std::string key(bound, '\0');
  key.resize(static_cast<std::size_t>(detail::writeKey(key.data(), parts...) - key.data()));
  return key;
}

}  // namespace rdservice
