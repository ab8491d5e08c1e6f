#include "rdservice/field_text.h"

#include "rdservice/CAccountInfo.h"
#include "rdservice/CInternedText.h"
#include "rdservice/TypeManager.h"
#include "rdservice/calendar_text.h"
#include "rdservice/rdservice_enums.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace rdservice {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// What a text column allows. All of these become parts of record keys, of request lists divided by "|" or of book
/// files, and so refuse the characters that divide those.
struct CTextRule {
  std::string_view column;
  bool (*accepts)(std::string_view text);
  const char* expected;
};

constexpr std::string_view DIVIDERS[] = {"|", "____", ",", "\t", "\r", "\n"};
constexpr const char* WITHOUT_DIVIDERS = R"( without "|", "____", comma, tab or line break)";

bool isNotEmpty(std::string_view text) { return !text.empty(); }
bool beginsWithDigit(std::string_view text) { return !text.empty() && isDigit(text[0]); }
bool isLetters(std::string_view text) { return !text.empty() && std::all_of(text.begin(), text.end(), isLetter); }

constexpr CTextRule TEXT_RULES[] = {
    {"account_id", beginsWithDigit, "an account id, which begins with a digit,"},
    {"exchange", isLetters, "an exchange, which has letters only,"},
    {"code", beginsWithDigit, "a code, which begins with a digit,"},
    {"compact_no", isNotEmpty, "a compact number"},
    {"serial_no", isNotEmpty, "a serial number"},
};

constexpr const char* ABSOLUTE_DATES = "a date as yyyy-MM-dd or yyyyMMdd, or nothing";
constexpr const char* RELATIVE_DATES = "a date as yyyy-MM-dd, yyyyMMdd, today, today-30 or today+5, or nothing";

/// Integer columns that hold less than their type.
struct CRangeRule {
  std::string_view column;
  std::int32_t min;
  std::int32_t max;
};

constexpr std::int32_t MAX_INT32 = std::numeric_limits<std::int32_t>::max();

constexpr CRangeRule RANGE_RULES[] = {
    {"repay_priority", 0, 999999},  {"renewal_times", 0, MAX_INT32},
    {"renewed_days", 0, MAX_INT32}, {"max_renewal_days", 0, MAX_INT32},
    {"auto_login", 0, 1},           {"login", 0, 1},
};

/// Number columns that hold nothing below 0.
constexpr std::string_view NOT_NEGATIVE[] = {"current_volume", "available_volume", "cost_price", "last_price",
                                             "close_price"};

template <class Number>
bool isAllowed(const CFieldDes& field, Number number) {
  return number >= 0 ||
         std::find(std::begin(NOT_NEGATIVE), std::end(NOT_NEGATIVE), field.name) == std::end(NOT_NEGATIVE);
}

constexpr const char* WHOLE_NUMBER = "a whole number";
constexpr const char* WHOLE_FROM_ZERO = "a whole number, 0 or above";
constexpr const char* NUMBER = "a number such as 1234.56";
constexpr const char* NUMBER_FROM_ZERO = "a number such as 1234.56, 0 or above";

template <class Rule, std::size_t COUNT>
const Rule* findRule(const Rule (&rules)[COUNT], std::string_view column) {
  const auto* const found =
      std::find_if(std::begin(rules), std::end(rules), [column](const Rule& rule) { return rule.column == column; });
  return found == std::end(rules) ? nullptr : found;
}

/// A value, or what should have stood there.
template <class T>
struct CParsed {
  std::optional<T> value;
  std::string expected;
};

template <class T>
std::optional<T> parseWhole(std::string_view text) {
  T value{};
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

CParsed<std::string> parseText(const CFieldDes& field, std::string_view text) {
  const auto* const rule = findRule(TEXT_RULES, field.name);
  if (rule == nullptr) return {std::string(text), {}};
  const bool divided = std::any_of(std::begin(DIVIDERS), std::end(DIVIDERS), [text](std::string_view divider) {
    return text.find(divider) != std::string_view::npos;
  });
  if (divided || !rule->accepts(text)) return {std::nullopt, std::string(rule->expected) + WITHOUT_DIVIDERS};
  return {std::string(text), {}};
}

/// The codes that a record may hold; the blank that stands for no restriction is only for requests, as a number.
CParsed<char> parseCode(const CFieldDes& field, std::string_view text) {
  std::string expected;
  for (const CEnumItem& item : TypeManager::enumItems(field.enumType)) {
    if (item.value == ' ') continue;
    const auto code = static_cast<char>(item.value);
    if (text.size() == 1 && text[0] == code) return {code, {}};
    expected += fmt::format("{}{} ({})", expected.empty() ? "" : ", ", code, item.name);
  }
  return {std::nullopt, "one of " + expected};
}

CParsed<std::int32_t> parseEnumNumber(const CFieldDes& field, std::string_view text) {
  const auto number = parseWhole<std::int32_t>(text);
  std::string expected;
  for (const CEnumItem& item : TypeManager::enumItems(field.enumType)) {
    if (number == item.value) return {number, {}};
    expected += fmt::format("{}{} ({})", expected.empty() ? "" : ", ", item.value, item.name);
  }
  return {std::nullopt, "one of " + expected};
}

CParsed<std::int32_t> parseInt32(const CFieldDes& field, std::string_view text, const CParseContext& context) {
  if (field.format == EFieldFormat::Enum) return parseEnumNumber(field, text);
  if (field.format == EFieldFormat::Date)
    return {parseDate(text, context.today), context.today == 0 ? ABSOLUTE_DATES : RELATIVE_DATES};
  const auto number = parseWhole<std::int32_t>(text);
  const auto* const rule = findRule(RANGE_RULES, field.name);
  const std::int32_t min = rule == nullptr ? std::numeric_limits<std::int32_t>::min() : rule->min;
  const std::int32_t max = rule == nullptr ? std::numeric_limits<std::int32_t>::max() : rule->max;
  if (number && *number >= min && *number <= max) return {number, {}};
  return {std::nullopt, fmt::format("a whole number from {} to {}", min, max)};
}

CParsed<std::int64_t> parseInt64(const CFieldDes& field, std::string_view text) {
  const auto number = parseWhole<std::int64_t>(text);
  if (number && isAllowed(field, *number)) return {number, {}};
  return {std::nullopt, isAllowed(field, -1) ? WHOLE_NUMBER : WHOLE_FROM_ZERO};
}

CParsed<double> parseDouble(const CFieldDes& field, std::string_view text) {
  double value = 0;
  const char* const last = text.data() + text.size();
  const auto [end, fault] = std::from_chars(text.data(), last, value, std::chars_format::fixed);
  if (fault == std::errc() && end == last && std::isfinite(value) && isAllowed(field, value)) return {value, {}};
  return {std::nullopt, isAllowed(field, -1) ? NUMBER : NUMBER_FROM_ZERO};
}

std::string doubleText(double value) {
  char digits[512];  // the longest finite number has 309 digits before the point, or some 340 behind it
  const auto [end, fault] = std::to_chars(std::begin(digits), std::end(digits), value, std::chars_format::fixed);
  assert(fault == std::errc());
  return {digits, end};
}

}  // namespace

bool parseField(const CFieldDes& field, std::string_view text, IData& record, std::string& error,
                const CParseContext& context) {
  assert(record.version() == 0 && "a published record is never written");
  const auto fail = [&](std::string_view expected) {
    error = fmt::format("{}: expected {}, got \"{}\"", field.name, expected, text);
    return false;
  };
  const auto store = [&](auto& member, auto parsed) {
    if (!parsed.value) return fail(parsed.expected);
    member = std::move(*parsed.value);
    return true;
  };
  switch (field.type) {
    case EFieldType::Account: return fail("nothing: an account is not read from its text here");
    case EFieldType::Text: return store(field.edit<std::string>(record), parseText(field, text));
    case EFieldType::Interned: return store(field.edit<CInternedText>(record), parseText(field, text));
    case EFieldType::Char: return store(field.edit<char>(record), parseCode(field, text));
    case EFieldType::Int32: return store(field.edit<std::int32_t>(record), parseInt32(field, text, context));
    case EFieldType::Int64: return store(field.edit<std::int64_t>(record), parseInt64(field, text));
    case EFieldType::Double: return store(field.edit<double>(record), parseDouble(field, text));
  }
  assert(false);
  return false;
}

std::string machineText(const CFieldDes& field, const IData& record) {
  switch (field.type) {
    case EFieldType::Account: {
      const auto& account = field.get<CAccountInfoPtr>(record);
      return account == nullptr ? std::string() : account->getKey();
    }
    case EFieldType::Text: return field.get<std::string>(record);
    case EFieldType::Interned: return field.get<CInternedText>(record).str();
    case EFieldType::Char: return std::string(1, field.get<char>(record));
    case EFieldType::Int32: {
      const auto value = field.get<std::int32_t>(record);
      return field.format == EFieldFormat::Date ? dateText(value) : std::to_string(value);
    }
    case EFieldType::Int64: return std::to_string(field.get<std::int64_t>(record));
    case EFieldType::Double: return doubleText(field.get<double>(record));
  }
  assert(false);
  return {};
}

}  // namespace rdservice
