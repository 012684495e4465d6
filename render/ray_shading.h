// The shading of a ray's pixels before the blend: intensity, tint, contrast, gamma, alpha and
// colour adjustment.
#pragma once

#include <algorithm>
#include <array>
#include <type_traits>

#include "image/color.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/pixel.h"
#include "image/power_lanes.h"
#include "render/adjust_hsl.h"
#include "render/blend_pixel.h"
#include "render/render_values.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// The gamma curve of the integer configurations: 32768 entries at every depth, in the render's
// range.
template <class Pixel>
class GammaTable {
 public:
  static constexpr int entries = 32768;

  // entriesOut holds the given number of floats.
  static void fill(float* entriesOut, double inverseGamma) {
    const auto exponent = static_cast<float>(inverseGamma);
    for (int i = 0; i < entries; ++i) {
      entriesOut[i] =
          powerSingle(static_cast<float>(i) * step, exponent) * static_cast<float>(Pixel::range);
    }
  }

  // The indices of the entries for values from 0 to Pixel::range.
  static WholeLanes indexOf(Lanes value) {
    constexpr double factor =
        Pixel::rangeNumber == 255 ? 128.49803921568628 : 0.999969482421875;  // 32767 / range
    return toWhole(value * factor);
  }

  // The entries of a table for a gamma of 1, which is cheaper to compute than to read.
  static SingleLanes straightEntries(WholeLanes indices) {
    return __builtin_convertvector(indices, SingleLanes) * step * static_cast<float>(Pixel::range);
  }

 private:
  static constexpr float step = 0x1.0002p-15F;  // about 1/32767
};

template <class Pixel>
class RayShading {
 public:
  // gammaTable is read by the integer configurations only and has to outlive this object.
  RayShading(const RenderValues& values, const float* gammaTable)
      : intensity_(values.intensity),
        colorBalance_(values.colorBalance),
        contrast_(values.contrast),
        inverseGamma_(values.inverseGamma),
        colorLow_(values.colorLow),
        colorHigh_(values.colorHigh),
        adjustment_(values.hue, values.saturation, values.lightness),
        gammaTable_(gammaTable) {
    const auto isWhite = [](const std::array<double, 3>& color) {
      return std::all_of(color.begin(), color.end(), [](double c) { return c == 1.0; });
    };
    tints_ = !isWhite(colorLow_) || !isWhite(colorHigh_);
  }

  // The three steps of the shading, in place and called in this order. Pixels are premultiplied
  // before light and unpremultiplied after tone.
  void light(PixelValues<Pixel>& ray, Lanes falloff) const {
    const Lanes strength = intensity_ * falloff;
    for (Lanes& channel : ray) channel *= strength;
    if (tints_ || isFloat) tint(ray, balancedBrightness(ray));
    if constexpr (hasAlpha) ray[colors] = clampToRange<Pixel>(ray[colors]);
  }

  void tone(PixelValues<Pixel>& ray) const {
    for (int k = 0; k < colors; ++k) ray[k] = toned(ray[k]);
    if constexpr (hasAlpha) divideAlphaOut(ray);
    if constexpr (!isFloat) {
      for (int k = 0; k < colors; ++k) ray[k] = clampToRange<Pixel>(ray[k]);
    }
  }

  void adjustColor(PixelValues<Pixel>& ray) const {
    std::array<Lanes, 3> unit{};
    for (int k = 0; k < colors; ++k) unit[k] = ray[k] / Pixel::range;
    const Rgb color{unit[0], unit[1], unit[2]};
    const Rgb adjusted = adjustment_.isNeutral() && (!isFloat || isInUnit(color))
                             ? HslAdjustment::neutral<colors>(color)
                             : adjustment_(color);
    const std::array<Lanes, 3> channels{adjusted.r, adjusted.g, adjusted.b};
    for (int k = 0; k < colors; ++k) ray[k] = channels[k] * Pixel::range;
  }

 private:
  static constexpr int colors = Pixel::colorChannels;
  static constexpr bool hasAlpha = Pixel::hasAlpha;
  static constexpr bool isFloat = std::is_floating_point_v<typename Pixel::Sample>;

  // 0 for black, 1 for full scale. The colours are premultiplied, so alpha is multiplied in twice.
  // This is intended.
  Lanes balancedBrightness(const PixelValues<Pixel>& ray) const {
    Lanes t = luminance<colors>(ray.data());
    if constexpr (hasAlpha) t = t * ray[colors] * Pixel::toUnit;
    t *= Pixel::toUnit;
    return colorBalance_ >= 0.0 ? (1.0 - colorBalance_) * t + colorBalance_
                                : (colorBalance_ + 1.0) * t;
  }

  // Dark rays get the low color, rays at full scale the high one. White changes nothing, unless the
  // brightness is a NaN, which float pictures can have.
  void tint(PixelValues<Pixel>& ray, Lanes t) const {
    if (!tints_ && all(isNumber(t))) return;
    const Lanes part = max((t - 0.5) * 2.0, Lanes{});
    for (int k = 0; k < colors; ++k) {
      const double low = colorLow_[k];
      const double high = colorHigh_[k];
      ray[k] *= choose(t > 1.0, allLanes(high), (high - low) * part + low);
    }
  }

  static bool isInUnit(Rgb c) {
    return all((c.r >= 0.0) & (c.r <= 1.0) & (c.g >= 0.0) & (c.g <= 1.0) & (c.b >= 0.0) &
               (c.b <= 1.0));
  }

  // Contrast is a gain without a pivot: black becomes contrast times the middle.
  Lanes toned(Lanes value) const {
    constexpr double middle = Pixel::range * 0.5;
    const Lanes lifted = contrast_ * (value + middle) + value;
    if constexpr (isFloat) {
      return inverseGamma_ == 1.0 ? lifted : powers(lifted, allLanes(inverseGamma_));
    } else {
      const WholeLanes index = GammaTable<Pixel>::indexOf(clampToRange<Pixel>(lifted));
      if (static_cast<float>(inverseGamma_) == 1.0F) {
        return toDouble(GammaTable<Pixel>::straightEntries(index));
      }
      SingleLanes entries;
      for (int lane = 0; lane < laneCount; ++lane) entries[lane] = gammaTable_[index[lane]];
      return toDouble(entries);
    }
  }

  // Raises alpha to the largest colour, then divides the colours by it.
  static void divideAlphaOut(PixelValues<Pixel>& ray) {
    Lanes& alpha = ray[colors];
    const Lanes largest = largestColor<Pixel>(ray);
    alpha = choose(alpha < largest, min(largest, allLanes(Pixel::range)), alpha);
    for (int k = 0; k < colors; ++k) {
      ray[k] = choose(alpha > 0.0, ray[k] * Pixel::range / alpha, ray[k]);
    }
    alpha = clampToRange<Pixel>(alpha);
  }

  double intensity_;
  double colorBalance_;
  double contrast_;
  double inverseGamma_;
  std::array<double, 3> colorLow_;
  std::array<double, 3> colorHigh_;
  bool tints_;
  HslAdjustment adjustment_;
  const float* gammaTable_;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
