#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rdservice {

/// yyyy-MM-dd of a Julian day number; 0 is no date and gives an empty text.
std::string dateText(std::int32_t julianDay);

/// Reads yyyy-MM-dd or yyyyMMdd of the years 1400 to 9999, and, when `today` is not 0, "today", "today-30", "today+5"
/// (at most five digits). An empty text is no date, 0.
std::optional<std::int32_t> parseDate(std::string_view text, std::int32_t today);

}  // namespace rdservice
