#include "parameters/number_text.h"

#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>

namespace radiashafts {

std::string numberText(double value, int digits) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.precision(digits);
  text << value;
  return text.str();
}

std::optional<double> parseNumber(std::string_view text) {
  const char* begin = text.data();
  const char* const end = begin + text.size();
  while (begin != end && (*begin == ' ' || (*begin >= '\t' && *begin <= '\r'))) ++begin;
  if (begin != end && *begin == '+' && begin + 1 != end && begin[1] != '-') ++begin;
  double value = 0.0;
  const auto [parsed, error] = std::from_chars(begin, end, value);
  if (error != std::errc() || parsed != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace radiashafts
