#include "rdservice/number_text.h"

#include <algorithm>

namespace rdservice {

std::string groupedText(std::string number) {
  const std::size_t firstDigit = number[0] == '-' ? 1 : 0;
  std::size_t position = std::min(number.find('.'), number.size());
  while (position > firstDigit + 3) {
    position -= 3;
    number.insert(position, 1, ',');
  }
  return number;
}

}  // namespace rdservice
