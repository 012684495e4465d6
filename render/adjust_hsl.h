// Hue, saturation and lightness of the rays.
#pragma once

#include <algorithm>
#include <cmath>

#include "image/color.h"
#include "image/power.h"

namespace radiashafts {

// An adjustment by three amounts from -1 to 1: hue up to half a turn either way, saturation,
// lightness. It changes colours at neutral amounts too, in their last bits.
class HslAdjustment {
 public:
  HslAdjustment(double hue, double saturation, double lightness)
      : hue_(hue),
        saturation_(saturation),
        lightness_(lightness),
        fullBoost_(saturation > 0.0 ? power(saturation, 1e8) : 0.0) {}

  // A colour in the scale 0 to 1.
  Rgb operator()(Rgb color) const {
    Hsl hsl = rgbToHsl(color);
    const double boost = saturationFor(color);
    // A hue of exactly 0, which every grey and every pure red has, keeps its saturation. The test
    // is part of the look and is not to be widened.
    if (hsl.h != 0.0) {
      hsl.s = boost > 0.0 ? hsl.s + (1.0 - hsl.s) * boost : hsl.s * (boost + 1.0);
    }
    hsl.h += hue_ * 3.0;
    if (hsl.h > 6.0) {
      hsl.h -= 6.0;
    } else if (hsl.h < 0.0) {
      hsl.h += 6.0;
    }
    const Rgb rgb = hslToRgb(hsl);
    return {lightened(rgb.r), lightened(rgb.g), lightened(rgb.b)};
  }

 private:
  // A boost is weighted with the chroma: weak colours stay weak and only clear ones take all of it.
  // At a full 1 every colour does.
  double saturationFor(Rgb c) const {
    const double s = saturation_;
    if (!(s > 0.0)) return s;
    const double chroma = std::max({std::abs(c.r - c.g), std::abs(c.r - c.b), std::abs(c.g - c.b)});
    const double weakness = power(1e-8, chroma);
    return (1.0 - weakness) * s * (1.0 - fullBoost_) + fullBoost_ * s;
  }

  double lightened(double channel) const {
    return lightness_ >= 0.0 ? channel + (1.0 - channel) * lightness_
                             : channel * (lightness_ + 1.0);
  }

  double hue_;
  double saturation_;
  double lightness_;
  double fullBoost_;
};

}  // namespace radiashafts
