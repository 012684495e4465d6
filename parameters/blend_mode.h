// The blend modes: one list of name and number. Their formulas are those of blendPixel.
#pragma once

#include <array>
#include <cstdint>

namespace radiashafts {

// The numbers are the list values that scripts hold.
enum class BlendMode : std::int32_t {
  normal = 1,
  maxWeight,
  screen,
  overlay,
  addition,
  subtraction,
  multiply,
  divide,
  difference,
  exclusion,
  lighten,
  darken,
  maximum,
  minimum,
  hue,
  saturation,
  color,
  luminosity,
  alphaAdd,
  alphaSub,
  alphaMult,
  alphaReplace,
  replace,  // and any other number
};

inline constexpr std::array<const char*, 23> blendModeNames{
    "normal",    "max weight", "screen",     "overlay",       "addition",      "subtraction",
    "multiply",  "divide",     "difference", "exclusion",     "lighten",       "darken",
    "maximum",   "minimum",    "hue",        "saturation",    "color",         "luminosity",
    "alpha add", "alpha sub",  "alpha mult", "alpha replace", "(none) replace"};

static_assert(static_cast<std::size_t>(BlendMode::replace) == blendModeNames.size());

}  // namespace radiashafts
