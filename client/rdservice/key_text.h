#pragma once

#include "rdservice/CAccountInfo.h"

#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>

namespace rdservice {

/// Divides the parts of a record key.
constexpr std::string_view KEY_SEPARATOR = "____";

namespace detail {

constexpr std::size_t MAX_DIGITS = 20;

inline std::size_t keyPartBound(std::string_view part) { return part.size(); }
inline std::size_t keyPartBound(std::int32_t) { return MAX_DIGITS; }
inline std::size_t keyPartBound(char) { return 1; }
inline std::size_t keyPartBound(const CAccountInfoPtr& part) {
  return part == nullptr ? 0 : MAX_DIGITS + 1 + part->accountId.size();
}

inline void appendKeyPart(std::string& key, std::string_view part) { key.append(part); }
inline void appendKeyPart(std::string& key, char part) { key.push_back(part); }
inline void appendKeyPart(std::string& key, std::int32_t part) {
  char digits[MAX_DIGITS];
  key.append(digits, std::to_chars(digits, digits + MAX_DIGITS, part).ptr);
}
inline void appendAccountKey(std::string& key, std::int32_t brokerType, std::string_view accountId) {
  appendKeyPart(key, brokerType);
  key.push_back('.');
  key.append(accountId);
}
inline void appendKeyPart(std::string& key, const CAccountInfoPtr& part) {
  if (part != nullptr) appendAccountKey(key, part->brokerType, part->accountId);
}

}  // namespace detail

/// The parts (texts, numbers, codes; an account gives its key, a null one nothing) joined by KEY_SEPARATOR. Allocates
/// once: a million of these are made when an account is loaded.
template <class... Parts>
std::string joinKey(const Parts&... parts) {
  std::string key;
  key.reserve((... + (detail::keyPartBound(parts) + KEY_SEPARATOR.size())));
  bool first = true;
  const auto append = [&key, &first](const auto& part) {
    if (!first) key.append(KEY_SEPARATOR);
    first = false;
    detail::appendKeyPart(key, part);
  };
  (append(parts), ...);
  return key;
}

}  // namespace rdservice
