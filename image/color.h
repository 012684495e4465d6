// Colour arithmetic in hue, saturation and lightness. Everything is in the scale 0 to 1 and in
// double precision; hue is a sextant number from 0 to 6.
#pragma once

#include <algorithm>
#include <array>

namespace radiashafts {

// How much each channel counts for a pixel's brightness. Two channels use the first two, so that
// their weights add up to less than 1; grey uses its value alone.
inline constexpr std::array<double, 3> luminanceWeights{0.292687786, 0.552149646, 0.155162568};

template <int Channels>
double luminance(const double* color) {
  if constexpr (Channels == 1) return color[0];
  double sum = luminanceWeights[0] * color[0] + luminanceWeights[1] * color[1];
  if constexpr (Channels == 3) sum += luminanceWeights[2] * color[2];
  return sum;
}

struct Rgb {
  double r, g, b;
};

struct Hsl {
  double h, s, l;
};

// Colours of fewer than three channels enter as (c0, c1, 0) and (v, 0, 0), so that grey behaves as
// a pure red.
template <int Channels>
Rgb asRgb(const double* color, double factor) {
  Rgb rgb{color[0] * factor, 0.0, 0.0};
  if constexpr (Channels > 1) rgb.g = color[1] * factor;
  if constexpr (Channels > 2) rgb.b = color[2] * factor;
  return rgb;
}

// Equal channels give hue and saturation 0. Red wins a tie for the largest, then green.
inline Hsl rgbToHsl(Rgb c) {
  const double largest = std::max(std::max(c.r, c.g), c.b);
  const double smallest = std::min(std::min(c.r, c.g), c.b);
  Hsl hsl{0.0, 0.0, (smallest + largest) * 0.5};
  if (smallest == largest) return hsl;

  const double span = largest - smallest;
  hsl.s = span / (hsl.l <= 0.5 ? smallest + largest : (2.0 - largest) - smallest);
  if (c.r == largest) {
    hsl.h = (c.g - c.b) / span;
  } else if (c.g == largest) {
    hsl.h = (c.b - c.r) / span + 2.0;
  } else {
    hsl.h = (c.r - c.g) / span + 4.0;
  }
  if (hsl.h < 0.0) hsl.h += 6.0;
  return hsl;
}

inline double hueToChannel(double p, double q, double h) {
  if (h < 0.0) {
    h += 6.0;
  } else if (h > 6.0) {
    h -= 6.0;
  }
  if (h < 1.0) return (q - p) * h + p;
  if (h < 3.0) return q;
  if (h < 4.0) return (q - p) * (4.0 - h) + p;
  return p;
}

// Each channel is rounded to single precision; results depend on it.
inline Rgb hslToRgb(Hsl c) {
  const auto narrow = [](double v) { return static_cast<double>(static_cast<float>(v)); };
  if (c.s == 0.0) return {narrow(c.l), narrow(c.l), narrow(c.l)};
  const double q = c.l > 0.5 ? (c.l + c.s) - c.l * c.s : (c.s + 1.0) * c.l;
  const double p = 2.0 * c.l - q;
  return {narrow(hueToChannel(p, q, c.h + 2.0)), narrow(hueToChannel(p, q, c.h)),
          narrow(hueToChannel(p, q, c.h - 2.0))};
}

}  // namespace radiashafts
