// Lays one shaded ray pixel over one picture pixel: the formulas of the blend modes.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "image/color.h"
#include "image/pixel.h"
#include "parameters/blend_mode.h"

namespace radiashafts {

// Channels of a pixel as doubles in the render's range, alpha last where the layout has it.
template <class Pixel>
using PixelValues = std::array<double, Pixel::channels>;

// The blend of one pixel. Both come unpremultiplied, and base is changed in place, alpha included.
// Members without alpha are the same formulas with both alphas at full, so that a mix by the ray's
// alpha is its target itself.
template <class Pixel>
class PixelBlend {
 public:
  static void blend(PixelValues<Pixel>& base, const PixelValues<Pixel>& ray, BlendMode mode) {
    PixelBlend(base, ray).apply(mode);
  }

 private:
  static constexpr int colors = Pixel::colorChannels;
  static constexpr bool hasAlpha = Pixel::hasAlpha;
  static constexpr double range = Pixel::range;
  static constexpr double toUnit = Pixel::toUnit;

  PixelBlend(PixelValues<Pixel>& base, const PixelValues<Pixel>& ray)
      : base_(base),
        ray_(ray),
        baseAlpha_(alphaOf(base) * toUnit),
        rayAlpha_(alphaOf(ray) * toUnit) {
    if constexpr (!hasAlpha) baseAlpha_ = rayAlpha_ = 1.0;
  }

  [[gnu::always_inline]] inline void apply(BlendMode mode) {
    switch (mode) {
      case BlendMode::normal:
        each([&](int k, double, double) {
          if constexpr (!hasAlpha) return ray_[k];
          return (1.0 - rayAlpha_) * baseAlpha_ * base_[k] + rayAlpha_ * ray_[k];
        });
        setAlpha((1.0 - rayAlpha_) * alphaOf(base_) + alphaOf(ray_));
        return unpremultiply();
      case BlendMode::maxWeight: {
        const double weight = 1.0 - largestColor(ray_) * toUnit * rayAlpha_;
        each([&](int, double b, double p) { return (b - p) * weight + p; });
        return finishAlpha();
      }
      case BlendMode::screen:
        each([](int, double b, double p) { return (1.0 - p * toUnit) * b + p; });
        return finishAlpha();
      case BlendMode::overlay:
        each([&](int k, double b, double p) {
          return mixed(overlaid(b * toUnit, ray_[k] * toUnit) * range, b) + uncovered(p);
        });
        setAlpha(clampToRange<Pixel>(alphaOf(base_)));
        return unpremultiply();
      case BlendMode::addition:
        each([](int, double b, double p) { return b + p; });
        return finishAlpha();
      case BlendMode::subtraction:
        each([](int, double b, double p) { return std::max(b - p, 0.0); });
        return finishAlpha();
      case BlendMode::multiply:
        each([&](int k, double b, double p) {
          const double product = ray_[k] * b * toUnit;
          if constexpr (!hasAlpha) return product;
          return (b - product) * (1.0 - rayAlpha_) + product + uncovered(p);
        });
        return finishCombinedAlpha();
      case BlendMode::divide:
        each([&](int, double b, double p) { return mixed(b / (p * toUnit + 0.0001), b); });
        return finishAlpha();
      case BlendMode::difference:
        each([](int, double b, double p) { return std::abs(b - p); });
        return finishAlpha();
      case BlendMode::exclusion:
        each([](int, double b, double p) {
          return (1.0 - p * toUnit) * b + (1.0 - b * toUnit) * p;
        });
        return finishAlpha();
      case BlendMode::lighten:
        each([](int, double b, double p) { return std::max(b, p); });
        return finishAlpha();
      case BlendMode::darken:
        each([&](int, double b, double p) { return mixed(std::min(b, p), b); });
        return finishAlpha();
      case BlendMode::maximum:
        if (!(blendLuma(ray_, rayAlpha_) <= blendLuma(base_, baseAlpha_))) base_ = ray_;
        return;
      case BlendMode::minimum:
        if (!(blendLuma(base_, baseAlpha_) <= blendLuma(ray_, rayAlpha_))) base_ = ray_;
        return;
      case BlendMode::hue:
      case BlendMode::saturation:
      case BlendMode::color:
      case BlendMode::luminosity:
        return blendHsl(mode);
      case BlendMode::alphaAdd:
        return setAlpha(clampToRange<Pixel>(alphaOf(base_) + blendLuma(ray_, rayAlpha_)));
      case BlendMode::alphaSub:
        return setAlpha(std::max(alphaOf(base_) - blendLuma(ray_, rayAlpha_), 0.0));
      case BlendMode::alphaMult:
        return setAlpha(clampToRange<Pixel>(alphaOf(base_) * blendLuma(ray_, rayAlpha_) * toUnit));
      case BlendMode::alphaReplace:
        return setAlpha(clampToRange<Pixel>(blendLuma(ray_, rayAlpha_)));
      case BlendMode::replace:
        break;
    }
    base_ = ray_;
  }

  // Replaces each colour by what formula makes of its index, the premultiplied base and the
  // premultiplied ray.
  template <class Formula>
  void each(const Formula& formula) {
    for (int k = 0; k < colors; ++k) {
      base_[k] = formula(k, baseAlpha_ * base_[k], rayAlpha_ * ray_[k]);
    }
  }

  double mixed(double target, double b) const {
    if constexpr (!hasAlpha) return target;
    return (target - b) * rayAlpha_ + b;
  }

  // The part of the ray that stands where the base does not cover.
  double uncovered(double p) const {
    if constexpr (!hasAlpha) return 0.0;
    return (1.0 - baseAlpha_) * p;
  }

  // Both in the scale 0 to 1; the base decides which half.
  static double overlaid(double base, double ray) {
    if (base < 0.5) return 2.0 * base * ray;
    return 1.0 - 2.0 * (1.0 - std::min(ray, 1.0)) * (1.0 - std::min(base, 1.0));
  }

  // "luminosity" takes the ray's hue, not the base's. That is wanted in every layout.
  void blendHsl(BlendMode mode) {
    PixelValues<Pixel> premultiplied = base_;
    PixelValues<Pixel> premultipliedRay = ray_;
    for (int k = 0; k < colors; ++k) {
      premultiplied[k] = baseAlpha_ * base_[k];
      premultipliedRay[k] = rayAlpha_ * ray_[k];
    }
    const Hsl b = rgbToHsl(asRgb<colors>(premultiplied.data(), toUnit));
    const Hsl r = rgbToHsl(asRgb<colors>(premultipliedRay.data(), toUnit));
    Hsl target{};
    switch (mode) {
      case BlendMode::hue:
        target = {r.h, r.s == 0.0 ? 0.0 : b.s, b.l};
        break;
      case BlendMode::saturation:
        target = {b.h, r.s, b.l};
        break;
      case BlendMode::color:
        target = {r.h, r.s, b.l};
        break;
      default:
        target = {r.h, b.s, r.l};
        break;
    }
    const Rgb rgb = hslToRgb(target);
    const std::array<double, 3> channels{rgb.r, rgb.g, rgb.b};
    each([&](int k, double bk, double pk) {
      return mixed(channels[k] * range, bk) + uncovered(pk);
    });
    finishCombinedAlpha();
  }

  static double alphaOf(const PixelValues<Pixel>& pixel) {
    if constexpr (hasAlpha) return pixel[colors];
    return range;
  }

  void setAlpha(double alpha) {
    if constexpr (hasAlpha) base_[colors] = alpha;
  }

  // Brightness, weighted with the alpha in the scale 0 to 1.
  static double blendLuma(const PixelValues<Pixel>& pixel, double alpha) {
    const double luma = luminance<colors>(pixel.data());
    if constexpr (hasAlpha) return luma * alpha;
    return luma;
  }

  // Of one or two channels, 0 takes part too.
  static double largestColor(const PixelValues<Pixel>& pixel) {
    double largest = colors == 3 ? pixel[0] : std::max(pixel[0], 0.0);
    for (int k = 1; k < colors; ++k) largest = std::max(largest, pixel[k]);
    return largest;
  }

  void divideByAlpha(double alpha) {
    for (int k = 0; k < colors; ++k) base_[k] = base_[k] * range / alpha;
  }

  void unpremultiply() {
    if constexpr (hasAlpha) {
      if (base_[colors] > 0.0) divideByAlpha(base_[colors]);
    }
  }

  void finishCombinedAlpha() {
    setAlpha(alphaOf(ray_) * (1.0 - baseAlpha_) + alphaOf(base_));
    finishAlpha();
  }

  // Turns a premultiplied result back into colour and alpha, raising alpha where the colour demands
  // it. Grey with alpha stays multiplied; that is wanted.
  void finishAlpha() {
    if constexpr (hasAlpha && colors > 1) {
      const double largest = largestColor(base_);
      if (largest <= base_[colors]) return unpremultiply();
      if (largest < range && largest != 0.0) {
        base_[colors] = largest;
        return divideByAlpha(largest);
      }
      base_[colors] = range;
    }
  }

  PixelValues<Pixel>& base_;
  const PixelValues<Pixel>& ray_;
  double baseAlpha_;  // in the scale 0 to 1
  double rayAlpha_;
};

template <class Pixel>
void blendPixel(PixelValues<Pixel>& base, const PixelValues<Pixel>& ray, BlendMode mode) {
  PixelBlend<Pixel>::blend(base, ray, mode);
}

}  // namespace radiashafts
