// Numbers as the dialog's edits show and take them, in every locale alike.
#pragma once

#include <optional>
#include <string>

namespace radiashafts {

// Six significant digits, without trailing zeros.
std::string numberText(double value);

// The number that the whole text is, with blanks before it allowed; none for a part of a number and
// for one that no double holds.
std::optional<double> parseNumber(const std::string& text);

}  // namespace radiashafts
