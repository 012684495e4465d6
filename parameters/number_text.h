// Numbers as users write and read them, independent of the locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace radiashafts {

// Rounded to so many significant digits, without trailing zeros.
std::string numberText(double value, int digits = 6);

// Parses the whole text, with leading white space allowed. None when it is not a number or is out
// of range.
std::optional<double> parseNumber(std::string_view text);

}  // namespace radiashafts
