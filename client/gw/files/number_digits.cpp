#include "gw/files/number_digits.h"

#include <charconv>
#include <cmath>

namespace GW {

namespace {

constexpr int DIGITS = 15;  ///< what spreadsheet programs keep of a number
constexpr int MAX_PLAIN = 20;

}  // namespace

std::string numberDigits(double value) {
  if (!std::isfinite(value)) return {};
  char text[40];
  const auto end = std::to_chars(text, text + sizeof text, std::abs(value), std::chars_format::scientific, DIGITS - 1);
  const std::string number(text, end.ptr);  // d.dddddddddddddde±xx
  const auto at = number.find('e');
  const int exponent = std::stoi(number.substr(at + 1));
  std::string digits = number[0] + number.substr(2, at - 2);
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.empty()) return "0";
  const std::string sign = value < 0 ? "-" : "";
  const int size = static_cast<int>(digits.size());
  if (exponent < -MAX_PLAIN || exponent > MAX_PLAIN) {
    const std::string rest = size > 1 ? "." + digits.substr(1) : "";
    return sign + digits[0] + rest + "E" + std::to_string(exponent);
  }
  if (exponent < 0) return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  if (size <= exponent + 1) return sign + digits + std::string(static_cast<std::size_t>(exponent + 1 - size), '0');
  return sign + digits.insert(static_cast<std::size_t>(exponent) + 1, ".");
}

}  // namespace GW
