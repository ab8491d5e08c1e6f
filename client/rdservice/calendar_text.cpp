#include "rdservice/calendar_text.h"

#include <QDate>

#include <fmt/format.h>

#include <charconv>

namespace rdservice {

namespace {

// The years that every date library in use agrees on.
constexpr int MIN_YEAR = 1400;
constexpr int MAX_YEAR = 9999;
constexpr std::string_view TODAY = "today";
constexpr std::size_t MAX_OFFSET_DIGITS = 5;

/// Digits only: no sign, no blank.
std::optional<int> parseDigits(std::string_view text) {
  int value = 0;
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
  return fault == std::errc() ? std::optional<int>(value) : std::nullopt;
}

std::optional<std::int32_t> toJulianDay(const QDate& date) {
  if (!date.isValid() || date.year() < MIN_YEAR || date.year() > MAX_YEAR) return std::nullopt;
  return static_cast<std::int32_t>(date.toJulianDay());
}

std::optional<std::int32_t> parseRelative(std::string_view text, std::int32_t today) {
  if (today == 0) return std::nullopt;
  if (text.empty()) return today;
  const auto days = parseDigits(text.substr(1));
  if (!days || text.size() - 1 > MAX_OFFSET_DIGITS || (text[0] != '+' && text[0] != '-')) return std::nullopt;
  return toJulianDay(QDate::fromJulianDay(text[0] == '+' ? today + *days : today - *days));
}

}  // namespace

std::string dateText(std::int32_t julianDay) {
  if (julianDay == 0) return {};
  int year = 0;
  int month = 0;
  int day = 0;
  QDate::fromJulianDay(julianDay).getDate(&year, &month, &day);
  return fmt::format("{:04}-{:02}-{:02}", year, month, day);
}

std::optional<std::int32_t> parseDate(std::string_view text, std::int32_t today) {
  if (text.empty()) return 0;
  if (text.substr(0, TODAY.size()) == TODAY) return parseRelative(text.substr(TODAY.size()), today);
  const bool dashed = text.size() == 10 && text[4] == '-' && text[7] == '-';
  if (!dashed && text.size() != 8) return std::nullopt;
  const auto year = parseDigits(text.substr(0, 4));
  const auto month = parseDigits(text.substr(dashed ? 5 : 4, 2));
  const auto day = parseDigits(text.substr(dashed ? 8 : 6, 2));
  if (!year || !month || !day) return std::nullopt;
  return toJulianDay(QDate(*year, *month, *day));
}

}  // namespace rdservice
