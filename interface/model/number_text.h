// Formats and parses the numbers in the dialog's edits, independent of the locale.
#pragma once

#include <optional>
#include <string>

namespace radiashafts {

// Six significant digits, without trailing zeros.
std::string numberText(double value);

// Parses the whole text, with leading white space allowed. None when it is not a number or is out
// of range.
std::optional<double> parseNumber(const std::string& text);

}  // namespace radiashafts
