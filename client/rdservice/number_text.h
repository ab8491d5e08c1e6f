#pragma once

#include <string>

namespace rdservice {

/// Puts a comma before every third digit left of the point. `number` is decimal, with or without sign and fraction.
std::string groupedText(std::string number);

}  // namespace rdservice
