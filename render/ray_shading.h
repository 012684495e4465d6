// What happens to a ray's sample before it is blended: intensity, tint, contrast, gamma, alpha and
// colour adjustment.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>

#include "image/color.h"
#include "image/pixel.h"
#include "image/power.h"
#include "render/adjust_hsl.h"
#include "render/blend_pixel.h"
#include "render/render_values.h"

namespace radiashafts {

// The gamma curve of the integer pipelines, 32768 entries whatever the depth, in the render's
// range.
template <class Pixel>
class GammaTable {
 public:
  static constexpr int entries = 32768;

  // entriesOut holds the given number of floats.
  static void fill(float* entriesOut, double inverseGamma) {
    constexpr float step = 0x1.0002p-15F;  // about 1/32767
    const auto exponent = static_cast<float>(inverseGamma);
    for (int i = 0; i < entries; ++i) {
      entriesOut[i] =
          powerSingle(static_cast<float>(i) * step, exponent) * static_cast<float>(Pixel::range);
    }
  }

  // The entry for a value in 0 to the range.
  static int indexOf(double value) {
    constexpr double factor =
        Pixel::rangeNumber == 255 ? 128.49803921568628 : 0.999969482421875;  // 32767 / range
    return static_cast<int>(value * factor);
  }
};

template <class Pixel>
class RayShading {
 public:
  // gammaTable is read by the integer pipelines only and outlives this.
  RayShading(const RenderValues& values, const float* gammaTable)
      : intensity_(values.intensity),
        colorBalance_(values.colorBalance),
        contrast_(values.contrast),
        inverseGamma_(values.inverseGamma),
        colorLow_(values.colorLow),
        colorHigh_(values.colorHigh),
        adjustment_(values.hue, values.saturation, values.lightness),
        gammaTable_(gammaTable) {}

  // Shades the sample in place. It comes multiplied by its alpha and leaves with alpha divided out.
  void shade(PixelValues<Pixel>& ray, double falloff) const {
    const double strength = intensity_ * falloff;
    for (double& channel : ray) channel *= strength;
    tint(ray, balancedBrightness(ray));
    if constexpr (hasAlpha) ray[colors] = clampToRange<Pixel>(ray[colors]);
    for (int k = 0; k < colors; ++k) ray[k] = toned(ray[k]);
    if constexpr (hasAlpha) divideAlphaOut(ray);
    if constexpr (!isFloat) {
      for (int k = 0; k < colors; ++k) ray[k] = clampToRange<Pixel>(ray[k]);
    }
    adjustColor(ray);
  }

 private:
  static constexpr int colors = Pixel::colorChannels;
  static constexpr bool hasAlpha = Pixel::hasAlpha;
  static constexpr bool isFloat = std::is_floating_point_v<typename Pixel::Sample>;

  // 0 for black to 1 for full. The colours are multiplied by alpha already, so alpha counts twice:
  // a weight that is wanted.
  double balancedBrightness(const PixelValues<Pixel>& ray) const {
    double t = luminance<colors>(ray.data());
    if constexpr (hasAlpha) t = t * ray[colors] * Pixel::toUnit;
    t *= Pixel::toUnit;
    return colorBalance_ >= 0.0 ? (1.0 - colorBalance_) * t + colorBalance_
                                : (colorBalance_ + 1.0) * t;
  }

  // Dark rays take the low color, rays at full the high one.
  void tint(PixelValues<Pixel>& ray, double t) const {
    for (int k = 0; k < colors; ++k) {
      if (t < 0.5) {
        ray[k] *= colorLow_[k];
      } else if (t > 1.0) {
        ray[k] *= colorHigh_[k];
      } else {
        ray[k] *= (colorHigh_[k] - colorLow_[k]) * ((t - 0.5) * 2.0) + colorLow_[k];
      }
    }
  }

  // Contrast is a gain without a pivot: it lifts black by contrast times the middle.
  double toned(double value) const {
    constexpr double middle = Pixel::range * 0.5;
    const double lifted = contrast_ * (value + middle) + value;
    if constexpr (isFloat) {
      return power(lifted, inverseGamma_);
    } else {
      return gammaTable_[GammaTable<Pixel>::indexOf(clampToRange<Pixel>(lifted))];
    }
  }

  // Raises alpha just far enough to hold the colour, then divides it out.
  static void divideAlphaOut(PixelValues<Pixel>& ray) {
    double& alpha = ray[colors];
    double largest = colors == 3 ? ray[0] : std::max(ray[0], 0.0);
    for (int k = 1; k < colors; ++k) largest = std::max(largest, ray[k]);
    if (alpha < largest) alpha = std::min(largest, Pixel::range);
    if (alpha > 0.0) {
      for (int k = 0; k < colors; ++k) ray[k] = ray[k] * Pixel::range / alpha;
    }
    alpha = clampToRange<Pixel>(alpha);
  }

  void adjustColor(PixelValues<Pixel>& ray) const {
    std::array<double, 3> unit{};
    for (int k = 0; k < colors; ++k) unit[k] = ray[k] / Pixel::range;
    const Rgb adjusted = adjustment_({unit[0], unit[1], unit[2]});
    const std::array<double, 3> channels{adjusted.r, adjusted.g, adjusted.b};
    for (int k = 0; k < colors; ++k) ray[k] = channels[k] * Pixel::range;
  }

  double intensity_;
  double colorBalance_;
  double contrast_;
  double inverseGamma_;
  std::array<double, 3> colorLow_;
  std::array<double, 3> colorHigh_;
  HslAdjustment adjustment_;
  const float* gammaTable_;
};

}  // namespace radiashafts
