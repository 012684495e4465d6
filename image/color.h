// Conversions between RGB and hue, saturation, lightness, for several pixels at once, in double
// precision. All values are in 0 to 1 except hue, which is in 0 to 6, one unit for each sextant.
#pragma once

#include <array>

#include "image/instruction_set.h"
#include "image/lanes.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Weights of the channels in the luminance. Two-channel pixels use the first two weights, whose sum
// is less than 1; grey pixels use the value itself.
inline constexpr std::array<double, 3> luminanceWeights{0.292687786, 0.552149646, 0.155162568};

template <int Channels, class Number>
Number luminance(const Number* color) {
  if constexpr (Channels == 1) return color[0];
  Number sum = luminanceWeights[0] * color[0] + luminanceWeights[1] * color[1];
  if constexpr (Channels == 3) sum += luminanceWeights[2] * color[2];
  return sum;
}

struct Rgb {
  Lanes r, g, b;
};

struct Hsl {
  Lanes h, s, l;
};

// Two-channel pixels become (c0, c1, 0) and grey ones (v, 0, 0), so grey behaves as a pure red.
template <int Channels>
Rgb asRgb(const Lanes* color, double factor) {
  Rgb rgb{color[0] * factor, Lanes{}, Lanes{}};
  if constexpr (Channels > 1) rgb.g = color[1] * factor;
  if constexpr (Channels > 2) rgb.b = color[2] * factor;
  return rgb;
}

// Equal channels give hue and saturation 0. Red wins a tie for the largest, then green.
inline Hsl rgbToHsl(Rgb c) {
  const Lanes largest = max(max(c.r, c.g), c.b);
  const Lanes smallest = min(min(c.r, c.g), c.b);
  const Lanes sum = smallest + largest;
  const Lanes lightness = sum * 0.5;
  const Lanes span = largest - smallest;
  const LaneMask grey = smallest == largest;
  const LaneMask red = c.r == largest;
  const LaneMask green = c.g == largest;

  const Lanes difference = choose(red, c.g - c.b, choose(green, c.b - c.r, c.r - c.g));
  const Lanes sextant = choose(red, Lanes{}, choose(green, allLanes(2.0), allLanes(4.0)));
  const Lanes hue = difference / span + sextant;
  const Lanes saturation = span / choose(lightness <= 0.5, sum, (2.0 - largest) - smallest);
  return {choose(grey, Lanes{}, choose(hue < 0.0, hue + 6.0, hue)),
          choose(grey, Lanes{}, saturation), lightness};
}

// The value of a channel whose hue, shifted to that channel, is in 0 to 6: rises from p to q over
// 0 to 1, is q to 3, falls back to p at 4, and is p beyond.
inline Lanes hueToChannel(Lanes p, Lanes q, Lanes hue) {
  const Lanes part = max(Lanes{}, min(hue, 4.0 - hue));
  return choose((hue >= 1.0) & (hue < 3.0), q, (q - p) * part + p);
}

// Hue is from 0 to 6. Each channel is rounded to single precision. This is intended: results depend
// on it.
inline Rgb hslToRgb(Hsl c) {
  const Lanes q = choose(c.l > 0.5, (c.l + c.s) - c.l * c.s, (c.s + 1.0) * c.l);
  const Lanes p = 2.0 * c.l - q;
  const LaneMask grey = c.s == 0.0;
  const auto channel = [&](Lanes hue) {
    return narrowed(choose(grey, c.l, hueToChannel(p, q, hue)));
  };
  const Lanes redHue = c.h + 2.0;
  const Lanes blueHue = c.h - 2.0;
  return {channel(choose(redHue > 6.0, redHue - 6.0, redHue)), channel(c.h),
          channel(choose(blueHue < 0.0, blueHue + 6.0, blueHue))};
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
