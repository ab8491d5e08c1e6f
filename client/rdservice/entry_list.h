#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace rdservice {

/// The entries of a request's list, each of which is followed by "|"; text behind the last one is an entry as well.
/// They live as long as `list`.
inline std::vector<std::string_view> splitEntries(std::string_view list) {
  std::vector<std::string_view> entries;
  while (!list.empty()) {
    const std::size_t end = list.find('|');
    entries.push_back(list.substr(0, end));
    list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
  }
  return entries;
}

}  // namespace rdservice
