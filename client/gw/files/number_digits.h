#pragma once

#include <string>

namespace GW {

/// A number of a spreadsheet as people type it: 15 significant digits and a point, no exponent from 1e-20 to 1e21.
/// Independent of the locale. (Standard library only: the reader of old spreadsheets is a program without Qt.)
std::string numberDigits(double value);

}  // namespace GW
