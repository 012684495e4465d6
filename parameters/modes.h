// The entries of the effect's lists, with the numbers that scripts store.
#pragma once

#include <array>
#include <cstdint>

namespace radiashafts {

enum class RayMode : std::int32_t { straight = 1, smooth = 2 };
inline constexpr std::array<const char*, 2> rayModeNames{"straight", "smooth"};

enum class SelectionShowMode : std::int32_t { normal = 1, selectedImage = 2, selectionOnly = 3 };
inline constexpr std::array<const char*, 3> selectionShowNames{"normal", "selected image",
                                                               "selection only"};

// The blend modes, one row each: MODE(number, identifier, name). The enumeration, the array of
// names and the dispatch to the formulas are generated from this list. The formula of a mode is the
// function of PixelBlend (render/blend_pixel.h) that has the identifier as its name.
// clang-format off
#define RADIASHAFTS_BLEND_MODES(MODE) \
  MODE(1, normal, "normal")               \
  MODE(2, maxWeight, "max weight")        \
  MODE(3, screen, "screen")               \
  MODE(4, overlay, "overlay")             \
  MODE(5, addition, "addition")           \
  MODE(6, subtraction, "subtraction")     \
  MODE(7, multiply, "multiply")           \
  MODE(8, divide, "divide")               \
  MODE(9, difference, "difference")       \
  MODE(10, exclusion, "exclusion")        \
  MODE(11, lighten, "lighten")            \
  MODE(12, darken, "darken")              \
  MODE(13, maximum, "maximum")            \
  MODE(14, minimum, "minimum")            \
  MODE(15, hue, "hue")                    \
  MODE(16, saturation, "saturation")      \
  MODE(17, color, "color")                \
  MODE(18, luminosity, "luminosity")      \
  MODE(19, alphaAdd, "alpha add")         \
  MODE(20, alphaSub, "alpha sub")         \
  MODE(21, alphaMult, "alpha mult")       \
  MODE(22, alphaReplace, "alpha replace") \
  MODE(23, replace, "(none) replace")
// clang-format on

enum class BlendMode : std::int32_t {
#define RADIASHAFTS_ENUMERATOR(number, identifier, name) identifier = (number),
  RADIASHAFTS_BLEND_MODES(RADIASHAFTS_ENUMERATOR)
#undef RADIASHAFTS_ENUMERATOR
};

// Ordered by number; the first number is 1.
inline constexpr auto blendModeNames = std::to_array<const char*>({
#define RADIASHAFTS_NAME(number, identifier, name) name,
    RADIASHAFTS_BLEND_MODES(RADIASHAFTS_NAME)
#undef RADIASHAFTS_NAME
});

static_assert([] {
  int previous = 0;
#define RADIASHAFTS_FOLLOWS(number, identifier, name) \
  if ((number) != ++previous) return false;
  RADIASHAFTS_BLEND_MODES(RADIASHAFTS_FOLLOWS)
#undef RADIASHAFTS_FOLLOWS
  return true;
}());

}  // namespace radiashafts
