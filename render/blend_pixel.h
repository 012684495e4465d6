// The formulas of the blend modes: shaded ray pixels over picture pixels.
#pragma once

#include <array>

#include "image/color.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/pixel.h"
#include "parameters/modes.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// The channels of as many pixels as there are lanes, in the render's range; alpha is the last.
template <class Pixel>
using PixelValues = std::array<Lanes, Pixel::channels>;

// For one or two channels the result is at least 0.
template <class Pixel>
Lanes largestColor(const PixelValues<Pixel>& pixel) {
  Lanes largest = Pixel::colorChannels == 3 ? pixel[0] : max(pixel[0], Lanes{});
  for (int k = 1; k < Pixel::colorChannels; ++k) largest = max(largest, pixel[k]);
  return largest;
}

// Blends pixels in one mode. Both are unpremultiplied; base is changed in place, alpha included.
// Layouts without alpha use the same formulas with both alphas at 1.
template <class Pixel>
class PixelBlend {
 public:
  // Flattened, so that no formula is called once for every few pixels.
  [[gnu::flatten]] static void blend(PixelValues<Pixel>& base, const PixelValues<Pixel>& ray,
                                     BlendMode mode) {
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
    if constexpr (!hasAlpha) baseAlpha_ = rayAlpha_ = allLanes(1.0);
  }

  void apply(BlendMode mode) {
    switch (mode) {
#define RADIASHAFTS_CASE(number, identifier, name) \
  case BlendMode::identifier:                      \
    return identifier();
      RADIASHAFTS_BLEND_MODES(RADIASHAFTS_CASE)
#undef RADIASHAFTS_CASE
    }
    replace();  // any other number
  }

  // The formulas, one for each blend mode.

  void normal() {
    each([&](int k, Lanes, Lanes) {
      if constexpr (!hasAlpha) return ray_[k];
      return (1.0 - rayAlpha_) * baseAlpha_ * base_[k] + rayAlpha_ * ray_[k];
    });
    setAlpha((1.0 - rayAlpha_) * alphaOf(base_) + alphaOf(ray_));
    unpremultiply();
  }

  void maxWeight() {
    const Lanes weight = 1.0 - largestColor<Pixel>(ray_) * toUnit * rayAlpha_;
    each([&](int, Lanes b, Lanes p) { return (b - p) * weight + p; });
    finishAlpha();
  }

  void screen() {
    each([](int, Lanes b, Lanes p) { return (1.0 - p * toUnit) * b + p; });
    finishAlpha();
  }

  void overlay() {
    each([&](int k, Lanes b, Lanes p) {
      return composited(overlaid(b * toUnit, ray_[k] * toUnit) * range, b, p);
    });
    setAlpha(clampToRange<Pixel>(alphaOf(base_)));
    unpremultiply();
  }

  void addition() {
    each([](int, Lanes b, Lanes p) { return b + p; });
    finishAlpha();
  }

  void subtraction() {
    each([](int, Lanes b, Lanes p) { return max(b - p, Lanes{}); });
    finishAlpha();
  }

  void multiply() {
    each([&](int k, Lanes b, Lanes p) {
      const Lanes product = ray_[k] * b * toUnit;
      if constexpr (!hasAlpha) return product;
      return (b - product) * (1.0 - rayAlpha_) + product + uncovered(p);
    });
    finishCombinedAlpha();
  }

  void divide() {
    each([&](int, Lanes b, Lanes p) { return mixed(b / (p * toUnit + 0.0001), b); });
    finishAlpha();
  }

  void difference() {
    each([](int, Lanes b, Lanes p) { return abs(b - p); });
    finishAlpha();
  }

  void exclusion() {
    each([](int, Lanes b, Lanes p) { return (1.0 - p * toUnit) * b + (1.0 - b * toUnit) * p; });
    finishAlpha();
  }

  void lighten() {
    each([](int, Lanes b, Lanes p) { return max(b, p); });
    finishAlpha();
  }

  void darken() {
    each([&](int, Lanes b, Lanes p) { return mixed(min(b, p), b); });
    finishAlpha();
  }

  void maximum() {
    replaceUnless(blendLuma(ray_, rayAlpha_) <= blendLuma(base_, baseAlpha_));
  }

  void minimum() {
    replaceUnless(blendLuma(base_, baseAlpha_) <= blendLuma(ray_, rayAlpha_));
  }

  void alphaAdd() {
    setAlpha(clampToRange<Pixel>(alphaOf(base_) + blendLuma(ray_, rayAlpha_)));
  }

  void alphaSub() {
    setAlpha(max(alphaOf(base_) - blendLuma(ray_, rayAlpha_), Lanes{}));
  }

  void alphaMult() {
    setAlpha(clampToRange<Pixel>(alphaOf(base_) * blendLuma(ray_, rayAlpha_) * toUnit));
  }

  void alphaReplace() {
    setAlpha(clampToRange<Pixel>(blendLuma(ray_, rayAlpha_)));
  }

  void hue() {
    const auto [b, r] = premultipliedHsl();
    setHsl({r.h, choose(r.s == 0.0, Lanes{}, b.s), b.l});
  }

  void saturation() {
    const auto [b, r] = premultipliedHsl();
    setHsl({b.h, r.s, b.l});
  }

  void color() {
    const auto [b, r] = premultipliedHsl();
    setHsl({r.h, r.s, b.l});
  }

  // Uses the ray's hue, not the base's. This is intended in every layout.
  void luminosity() {
    const auto [b, r] = premultipliedHsl();
    setHsl({r.h, b.s, r.l});
  }

  void replace() {
    base_ = ray_;
  }

  // Sets colour k to formula(k, premultiplied base, premultiplied ray), for each k.
  template <class Formula>
  void each(const Formula& formula) {
    for (int k = 0; k < colors; ++k) {
      base_[k] = formula(k, baseAlpha_ * base_[k], rayAlpha_ * ray_[k]);
    }
  }

  void replaceUnless(LaneMask kept) {
    for (int c = 0; c < Pixel::channels; ++c) base_[c] = choose(kept, base_[c], ray_[c]);
  }

  Lanes mixed(Lanes target, Lanes b) const {
    if constexpr (!hasAlpha) return target;
    return (target - b) * rayAlpha_ + b;
  }

  // The mix over the base, and the ray itself where the base is transparent. Without alpha nothing
  // is added, not even 0, which would change the sign of a zero.
  Lanes composited(Lanes target, Lanes b, Lanes p) const {
    if constexpr (!hasAlpha) return target;
    return mixed(target, b) + uncovered(p);
  }

  // The part of the ray where the base is transparent.
  Lanes uncovered(Lanes p) const {
    if constexpr (!hasAlpha) return Lanes{};
    return (1.0 - baseAlpha_) * p;
  }

  // Both are in 0 to 1; the base selects the half of the formula.
  static Lanes overlaid(Lanes base, Lanes ray) {
    const Lanes one = allLanes(1.0);
    return choose(base < 0.5, 2.0 * base * ray,
                  1.0 - 2.0 * (1.0 - min(ray, one)) * (1.0 - min(base, one)));
  }

  struct HslPair {
    Hsl base, ray;
  };

  HslPair premultipliedHsl() const {
    PixelValues<Pixel> base = base_;
    PixelValues<Pixel> ray = ray_;
    for (int k = 0; k < colors; ++k) {
      base[k] = baseAlpha_ * base_[k];
      ray[k] = rayAlpha_ * ray_[k];
    }
    return {rgbToHsl(asRgb<colors>(base.data(), toUnit)),
            rgbToHsl(asRgb<colors>(ray.data(), toUnit))};
  }

  void setHsl(Hsl target) {
    const Rgb rgb = hslToRgb(target);
    const std::array<Lanes, 3> channels{rgb.r, rgb.g, rgb.b};
    each([&](int k, Lanes b, Lanes p) { return composited(channels[k] * range, b, p); });
    finishCombinedAlpha();
  }

  static Lanes alphaOf(const PixelValues<Pixel>& pixel) {
    if constexpr (hasAlpha) return pixel[colors];
    return allLanes(range);
  }

  void setAlpha(Lanes alpha) {
    if constexpr (hasAlpha) base_[colors] = alpha;
  }

  // Luminance times alpha; alpha is in 0 to 1.
  static Lanes blendLuma(const PixelValues<Pixel>& pixel, Lanes alpha) {
    const Lanes luma = luminance<colors>(pixel.data());
    if constexpr (hasAlpha) return luma * alpha;
    return luma;
  }

  void divideByAlphaWhere(LaneMask mask) {
    if constexpr (hasAlpha) {
      for (int k = 0; k < colors; ++k) {
        base_[k] = choose(mask, base_[k] * range / base_[colors], base_[k]);
      }
    }
  }

  void unpremultiply() {
    divideByAlphaWhere(alphaOf(base_) > 0.0);
  }

  void finishCombinedAlpha() {
    setAlpha(alphaOf(ray_) * (1.0 - baseAlpha_) + alphaOf(base_));
    finishAlpha();
  }

  // Divides a premultiplied result by alpha, which is first raised to the largest colour where that
  // is larger. Grey with alpha stays premultiplied. This is intended.
  void finishAlpha() {
    if constexpr (hasAlpha && colors > 1) {
      const Lanes largest = largestColor<Pixel>(base_);
      const LaneMask covered = largest <= alphaOf(base_);
      const LaneMask raised = ~covered & (largest < range) & (largest != 0.0);
      setAlpha(choose(covered, alphaOf(base_), choose(raised, largest, allLanes(range))));
      divideByAlphaWhere((covered & (alphaOf(base_) > 0.0)) | raised);
    }
  }

  PixelValues<Pixel>& base_;
  const PixelValues<Pixel>& ray_;
  Lanes baseAlpha_;  // in the scale 0 to 1
  Lanes rayAlpha_;
};

template <class Pixel>
void blendPixel(PixelValues<Pixel>& base, const PixelValues<Pixel>& ray, BlendMode mode) {
  PixelBlend<Pixel>::blend(base, ray, mode);
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
