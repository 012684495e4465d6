// Hue, saturation and lightness of the rays.
#pragma once

#include "image/color.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/power_lanes.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// An adjustment by three amounts from -1 to 1: hue by up to half a turn in either direction,
// saturation, lightness. Amounts of 0 change colours too, in their last bits.
class HslAdjustment {
 public:
  HslAdjustment(double hue, double saturation, double lightness)
      : hue_(hue),
        saturation_(saturation),
        lightness_(lightness),
        fullBoost_(saturation > 0.0 ? power(saturation, 1e8) : 0.0) {}

  bool isNeutral() const { return hue_ == 0.0 && saturation_ == 0.0 && lightness_ == 0.0; }

  // What three amounts of 0 do to finite colours from 0 to 1 of so many channels: they go to HSL
  // and back, with an error of about 50 rounding errors of 1, and are rounded to single precision.
  // Where the error cannot decide that rounding, as nearly everywhere, the colour itself is
  // rounded. A zero loses its sign.
  template <int channels>
  static Rgb neutral(Rgb color) {
    constexpr double error = 2e-14;
    const auto isSure = [](Lanes c) { return toSingle(c - error) == toSingle(c + error); };
    auto sure = isSure(color.r);
    if constexpr (channels > 1) sure &= isSure(color.g);
    if constexpr (channels > 2) sure &= isSure(color.b);
    const LaneMask grey = (color.r == color.g) & (color.g == color.b);  // has no error
    if (!all(grey | __builtin_convertvector(sure, LaneMask))) color = hslToRgb(rgbToHsl(color));
    return {narrowed(color.r) + 0.0, narrowed(color.g) + 0.0, narrowed(color.b) + 0.0};
  }

  // Colours in the scale 0 to 1.
  Rgb operator()(Rgb color) const {
    Hsl hsl = rgbToHsl(color);
    // A hue of exactly 0, which every grey and every pure red has, keeps its saturation. This is
    // intended; the look depends on it.
    hsl.s = choose(hsl.h != 0.0, saturated(hsl.s, color), hsl.s);
    hsl.h += hue_ * 3.0;
    hsl.h = choose(hsl.h > 6.0, hsl.h - 6.0, choose(hsl.h < 0.0, hsl.h + 6.0, hsl.h));
    const Rgb rgb = hslToRgb(hsl);
    return {lightened(rgb.r), lightened(rgb.g), lightened(rgb.b)};
  }

 private:
  // A boost is weighted by the chroma, so that weak colours stay weak. At an amount of 1 every
  // colour gets the full boost.
  Lanes saturated(Lanes saturation, Rgb c) const {
    if (!(saturation_ > 0.0)) return saturation * (saturation_ + 1.0);
    const Lanes chroma = max(max(abs(c.r - c.g), abs(c.r - c.b)), abs(c.g - c.b));
    const Lanes weakness = powers(allLanes(1e-8), chroma);
    const Lanes boost =
        (1.0 - weakness) * saturation_ * (1.0 - fullBoost_) + fullBoost_ * saturation_;
    return choose(boost > 0.0, saturation + (1.0 - saturation) * boost, saturation * (boost + 1.0));
  }

  Lanes lightened(Lanes channel) const {
    return lightness_ >= 0.0 ? channel + (1.0 - channel) * lightness_
                             : channel * (lightness_ + 1.0);
  }

  double hue_;
  double saturation_;
  double lightness_;
  double fullBoost_;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
