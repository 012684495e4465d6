#pragma once

#include <cctype>
#include <string>
#include <string_view>

namespace radiashafts {

// A parameter's name as users type it: "RayLength" becomes "ray-length".
inline std::string hyphenatedName(std::string_view name) {
  std::string result;
  for (const unsigned char c : name) {
    if (std::isupper(c) != 0 && !result.empty()) result += '-';
    result += static_cast<char>(std::tolower(c));
  }
  return result;
}

}  // namespace radiashafts
