// Decides how much of each pixel takes part: tests hue, saturation and lightness against ranges,
// shapes what passes with a curve, and multiplies a picture by the result or writes it alone.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

#include "image/color.h"
#include "image/halvorsund_filter.h"
#include "image/pixel.h"
#include "image/pixel_array.h"
#include "image/power.h"

namespace radiashafts {

// One axis, in the scale 0 to 1. climax moves the curve's apex from the start of the range (-1) to
// its end (+1); soften is the exponent of the curve, 0 for a hard edge.
struct SelectionAxis {
  double low = 0.0;
  double high = 1.0;
  double climax = 1.0;
  double soften = 0.0;
};

struct SelectionParameters {
  bool selectionOnly = false;   // write the selection itself, not the picture times it
  bool selectionActive = true;  // false: copy, without any test
  SelectionAxis hue;
  SelectionAxis saturation;
  SelectionAxis lightness;
  double hueOffset = 0.0;  // added to both ends of the range
  double saturationOffset = 0.0;
  double lightnessOffset = 0.0;
};

// An axis made ready for testing.
class AxisCurve {
 public:
  // A wrapped axis has lo in 0 to 1 and its range at most one turn long. An axis that can exceed 1
  // is not wrapped.
  AxisCurve(const SelectionAxis& axis, double offset, bool wrapped)
      : lo_(std::min(axis.low, axis.high) + offset), hi_(std::max(axis.low, axis.high) + offset) {
    if (wrapped) {
      const std::int32_t turns = toInt32(lo_ >= 0.0 ? lo_ : lo_ - 1.0);
      lo_ -= turns;
      hi_ -= turns;
      if (lo_ + 1.0 <= hi_) hi_ = lo_ + fullTurn;
    }
    scale_ = hi_ != lo_ ? 1.0 / (hi_ - lo_) : 1.0;
    peak_ = (axis.climax + 1.0) * 0.5;
    exponent_ = axis.soften;
  }

  // Every value from 0 to 1 passes, and passes as 1: there is no need to know the value.
  bool isOpen() const { return lo_ == 0.0 && hi_ == fullTurn && !(exponent_ > 0.0); }

  // 0 to 1; sets passed to false when the value lies outside the range.
  double operator()(double v, bool& passed) const {
    if (v < lo_) {
      v += 1.0;  // a range that reaches past 1 takes the value one turn up
      passed &= v < hi_;
    } else {
      passed &= v <= hi_;
    }
    if (!passed || !(exponent_ > 0.0)) return 1.0;
    const double p = (v - lo_) * scale_;
    double y = 1.0;
    if (p < peak_) {
      y = p / peak_;
    } else if (peak_ != 1.0) {
      y = 1.0 - (p - peak_) / (1.0 - peak_);
    }
    return power(y, exponent_);
  }

 private:
  static constexpr double fullTurn = 1.00001;

  double lo_, hi_, scale_, peak_, exponent_;
};

// Lightness of a float picture can exceed 1, so its axis is neither wrapped nor limited there.
template <class Pixel>
class SelectionCurve {
 public:
  static constexpr bool isFloat = std::is_floating_point_v<typename Pixel::Sample>;

  explicit SelectionCurve(const SelectionParameters& selection)
      : hue_(selection.hue, selection.hueOffset, true),
        saturation_(selection.saturation, selection.saturationOffset, true),
        lightness_(selection.lightness, selection.lightnessOffset, !isFloat),
        lightnessAlone_(hue_.isOpen() && saturation_.isOpen()) {}

  // The product of the axes' curves for the colour channels of one pixel as they stand in the
  // picture; 0 for a pixel that is not selected.
  double selectionValue(const double* color) const {
    const Rgb rgb = asRgb<Pixel::colorChannels>(color, Pixel::toUnit);
    bool passed = true;
    if (lightnessAlone_) {
      const double largest = std::max(std::max(rgb.r, rgb.g), rgb.b);
      const double smallest = std::min(std::min(rgb.r, rgb.g), rgb.b);
      const double value = lightness_(liftedLightness((smallest + largest) * 0.5), passed);
      return passed ? value : 0.0;
    }
    Hsl hsl = rgbToHsl(rgb);
    double hue = hsl.h * 0.16666666666666666;
    if constexpr (isFloat) {
      hue = std::clamp(hue, 0.0, 1.0);
      hsl.s = std::clamp(hsl.s, 0.0, 1.0);
    }
    double value = hue_(hue, passed);
    if (passed) value *= saturation_(hsl.s, passed);
    if (passed) value *= lightness_(liftedLightness(hsl.l), passed);
    return passed ? value : 0.0;
  }

 private:
  static double liftedLightness(double lightness) {
    if constexpr (isFloat) return lightness < 0.0 ? 0.0 : lightness;
    return lightness;
  }

  AxisCurve hue_;
  AxisCurve saturation_;
  AxisCurve lightness_;
  bool lightnessAlone_;
};

// Source, Target and Colour are PixelArrays of one layout and range. Target is the float working
// image on the way to the rays, or the host's image when the selection itself is shown.
template <class Source, class Target, class Colour>
class HslRangeSelectionFilter final : public RowFilter {
 public:
  using RowFilter::RowFilter;

  Source firstImage;       // the picture that is multiplied
  Target target;           // written row by row
  Colour selectionSource;  // the picture whose colours decide
  SelectionParameters selection;

  std::int32_t run(std::int32_t stagePosition, std::int32_t stageCount) override {
    return runRows(target.height, stagePosition, stageCount);
  }

  std::int32_t processRow(std::int32_t row, std::int32_t, std::int32_t threadIndex) override {
    if (selection.selectionActive) {
      selectRow(row);
    } else {
      copyRow(row);
    }
    return reportRow(row, target.height, threadIndex);
  }

 private:
  using SourcePixel = typename Source::Pixel;
  using TargetSample = typename Target::Sample;
  using Working = std::array<double, SourcePixel::channels>;

  void copyRow(std::int32_t row) const {
    for (std::int32_t x = 0; x < target.width; ++x) {
      Working pixel{};
      if (firstImage.contains(x, row)) {
        if (selection.selectionOnly) {
          pixel.fill(SourcePixel::range);
        } else {
          pixel = readPremultiplied(firstImage.at(x, row));
        }
      }
      write(x, row, pixel);
    }
  }

  void selectRow(std::int32_t row) const {
    const SelectionCurve<typename Colour::Pixel> curve(selection);
    const std::int32_t sourceShiftX = target.frameX - selectionSource.frameX;
    const std::int32_t sourceRow = row - selectionSource.frameY + target.frameY;
    Working pixel{};
    for (std::int32_t x = 0; x < target.width; ++x) {
      double selected = 0.0;
      if (selectionSource.contains(x + sourceShiftX, sourceRow)) {
        const auto color = readSelectionColor(selectionSource.at(x + sourceShiftX, sourceRow));
        selected = curve.selectionValue(color.data());
      }
      if (firstImage.contains(x, row)) pixel = readPremultiplied(firstImage.at(x, row));
      if (selection.selectionOnly) {
        std::fill_n(pixel.begin(), SourcePixel::colorChannels, selected * SourcePixel::range);
      } else {
        for (double& channel : pixel) channel *= selected;
      }
      write(x, row, pixel);
    }
  }

  // Premultiplies on the way in, whatever the view says of itself, and alpha with the colours:
  // alpha comes out squared. That is wanted, the shading of the rays counts on it.
  static Working readPremultiplied(const typename Source::Sample* sample) {
    Working pixel;
    for (int c = 0; c < SourcePixel::channels; ++c) pixel[c] = sample[c];
    if constexpr (SourcePixel::hasAlpha) {
      const double alpha = pixel[SourcePixel::colorChannels] / SourcePixel::range;
      for (double& channel : pixel) channel *= alpha;
    }
    return pixel;
  }

  // Here the product with alpha is single precision and, for integers, truncated to the sample.
  std::array<double, Colour::Pixel::colorChannels> readSelectionColor(
      const typename Colour::Sample* sample) const {
    using Pixel = typename Colour::Pixel;
    std::array<double, Pixel::colorChannels> color;
    for (int c = 0; c < Pixel::colorChannels; ++c) color[c] = sample[c];
    if constexpr (Pixel::hasAlpha) {
      if (!selectionSource.premultiplied) {
        const float alpha =
            static_cast<float>(sample[Pixel::colorChannels]) / static_cast<float>(Pixel::range);
        for (int c = 0; c < Pixel::colorChannels; ++c) {
          const float product = static_cast<float>(sample[c]) * alpha;
          color[c] = toSample<typename Colour::Sample>(product);
        }
      }
    }
    return color;
  }

  void write(std::int32_t x, std::int32_t row, const Working& pixel) const {
    TargetSample* sample = target.at(x, row);
    for (int c = 0; c < SourcePixel::channels; ++c) sample[c] = toSample<TargetSample>(pixel[c]);
  }
};

}  // namespace radiashafts
