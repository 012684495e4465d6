// Selects pixels by ranges of hue, saturation and lightness. A curve over each range gives the
// selection value of a pixel, from 0 to 1; the picture is multiplied by it, or it is written alone.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "filters/selection_parameters.h"
#include "image/color.h"
#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/pixel.h"
#include "image/pixel_array.h"
#include "image/power_lanes.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// The selection curve over one axis.
class AxisCurve {
 public:
  // wrapped: values repeat with period 1, so the range is shifted to begin in 0 to 1 and is at most
  // one turn long. An axis whose values can exceed 1 is not wrapped.
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

  // Every value from 0 to 1 is selected with 1, so the value need not be computed.
  bool isOpen() const { return lo_ <= 0.0 && hi_ >= 1.0 && !(exponent_ > 0.0); }

  // The curve at v, 0 to 1. Clears the lanes of passed whose value is outside the range.
  Lanes operator()(Lanes v, LaneMask& passed) const {
    // Values below the range are tried one turn higher.
    const LaneMask below = v < lo_;
    v = choose(below, v + 1.0, v);
    passed &= (v < hi_) | (~below & (v <= hi_));
    if (!(exponent_ > 0.0)) return allLanes(1.0);
    const Lanes p = (v - lo_) * scale_;
    const Lanes falling = peak_ != 1.0 ? 1.0 - (p - peak_) / (1.0 - peak_) : allLanes(1.0);
    const Lanes y = choose(p < peak_, p / peak_, falling);
    return choose(passed, powers(choose(passed, y, Lanes{}), allLanes(exponent_)), Lanes{});
  }

 private:
  static constexpr double fullTurn = 1.00001;

  double lo_, hi_, scale_, peak_, exponent_;
};

// The lightness of a float picture can exceed 1, so its axis is neither wrapped nor clamped to 1.
template <class Pixel>
class SelectionCurve {
 public:
  using Sample = typename Pixel::Sample;
  static constexpr bool isFloat = std::is_floating_point_v<Sample>;

  explicit SelectionCurve(const SelectionParameters& selection)
      : hue_(selection.hue, selection.hueOffset, true),
        saturation_(selection.saturation, selection.saturationOffset, true),
        lightness_(selection.lightness, selection.lightnessOffset, !isFloat),
        lightnessAlone_(hue_.isOpen() && saturation_.isOpen()) {}

  // Whether every pixel is selected with 1 whose samples are from 0 to full scale.
  bool isOpen() const { return lightnessAlone_ && lightness_.isOpen(); }

  // The product of the three curves for pixels given by their colour channels in the picture's
  // range; 0 for a pixel that is not selected.
  Lanes selectionValue(const Lanes* color) const {
    const Rgb rgb = asRgb<Pixel::colorChannels>(color, Pixel::toUnit);
    LaneMask passed = ~LaneMask{};
    Lanes value = allLanes(1.0);
    if (lightnessAlone_) {
      const Lanes largest = max(max(rgb.r, rgb.g), rgb.b);
      const Lanes smallest = min(min(rgb.r, rgb.g), rgb.b);
      value = lightness_(liftedLightness((smallest + largest) * 0.5), passed);
    } else {
      Hsl hsl = rgbToHsl(rgb);
      Lanes hue = hsl.h * 0.16666666666666666;
      if constexpr (isFloat) {
        hue = clampToUnit(hue);
        hsl.s = clampToUnit(hsl.s);
      }
      value = hue_(hue, passed);
      value *= saturation_(hsl.s, passed);
      value *= lightness_(liftedLightness(hsl.l), passed);
    }
    return choose(passed, value, Lanes{});
  }

 private:
  static Lanes liftedLightness(Lanes lightness) {
    if constexpr (isFloat) return choose(lightness < 0.0, Lanes{}, lightness);
    return lightness;
  }

  static Lanes clampToUnit(Lanes value) {
    return choose(value < 0.0, Lanes{}, min(value, allLanes(1.0)));
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
    writeRow(row, target.at(0, row));
    return reportRow(row, target.height, threadIndex);
  }

  // A row of the target, wherever its samples stand.
  void writeRow(std::int32_t row, typename Target::Stored* samples) const {
    const SelectionCurve<typename Colour::Pixel> curve(selection);
    const bool selectsAll = !selection.selectionActive || (curve.isOpen() && isWithinRange(row));
    if (selectsAll && !selection.selectionOnly) {
      copyRow(row, samples);
    } else {
      selectRow(curve, row, samples);
    }
  }

 private:
  using SourcePixel = typename Source::Pixel;
  using TargetSample = typename Target::Sample;
  using Working = std::array<double, SourcePixel::channels>;

  static constexpr int selectionColors = Colour::Pixel::colorChannels;
  static constexpr std::int32_t blockPixels = 64;  // whole lanes

  // Whether all samples that decide a row are from 0 to full scale. False if the row has gaps.
  bool isWithinRange(std::int32_t row) const {
    using Pixel = typename Colour::Pixel;
    using Sample = typename Pixel::Sample;
    if constexpr (!std::is_floating_point_v<Sample>) {
      if (std::numeric_limits<Sample>::max() == Pixel::rangeNumber) return true;
    }
    const std::int32_t y = selectionRow(row);
    if (selectionSource.stride() != Pixel::bytes || !selectionSource.contains(0, y)) return false;
    const typename Colour::Stored* const from = selectionSource.at(0, y);
    const std::ptrdiff_t count = std::ptrdiff_t{selectionSource.width} * Pixel::samples;
    // Floats from 0 to 1 are ordered as their bits are; those of all others are larger.
    using Bits = std::conditional_t<std::is_floating_point_v<Sample>, std::uint32_t, Sample>;
    Bits largest = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      largest = std::max(largest, std::bit_cast<Bits>(static_cast<Sample>(from[i])));
    }
    return largest <= std::bit_cast<Bits>(static_cast<Sample>(Pixel::range));
  }

  void copyRow(std::int32_t row, typename Target::Stored* samples) const {
    if constexpr (!SourcePixel::hasAlpha && std::is_same_v<typename Target::Stored, float>) {
      const bool covers = firstImage.contains(0, row) && firstImage.width >= target.width;
      if (covers && firstImage.stride() == SourcePixel::bytes && !selection.selectionOnly) {
        const typename Source::Stored* const from = firstImage.at(0, row);
        const std::ptrdiff_t count = std::ptrdiff_t{target.width} * SourcePixel::channels;
        for (std::ptrdiff_t i = 0; i < count; ++i) samples[i] = static_cast<float>(from[i]);
        return;
      }
    }
    for (std::int32_t x = 0; x < target.width; ++x) {
      Working pixel{};
      if (firstImage.contains(x, row)) {
        if (selection.selectionOnly) {
          pixel.fill(SourcePixel::range);
        } else {
          pixel = readPremultiplied(firstImage.at(x, row));
        }
      }
      write(target.pixelOf(samples, x), pixel);
    }
  }

  void selectRow(const SelectionCurve<typename Colour::Pixel>& curve, std::int32_t row,
                 typename Target::Stored* samples) const {
    const std::int32_t sourceShiftX = target.frameX - selectionSource.frameX;
    const std::int32_t sourceRow = selectionRow(row);
    const std::uint32_t columns = columnsInRow(firstImage, row);
    const std::uint32_t selectionColumns = columnsInRow(selectionSource, sourceRow);
    Working pixel{};
    for (std::int32_t first = 0; first < target.width; first += blockPixels) {
      const std::int32_t count = std::min(blockPixels, target.width - first);
      std::array<double, blockPixels> selected{};
      std::array<double, static_cast<std::size_t>(blockPixels) * selectionColors> colors{};
      for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t x = first + i + sourceShiftX;
        if (static_cast<std::uint32_t>(x) >= selectionColumns) continue;
        selected[i] = 1.0;
        readSelectionColor(selectionSource.at(x, sourceRow), &colors[i * selectionColors]);
      }
      for (std::int32_t i = 0; i < count; i += laneCount) {
        std::array<Lanes, selectionColors> color;
        for (int c = 0; c < selectionColors; ++c) {
          color[c] = eachLane([&](int lane) { return colors[(i + lane) * selectionColors + c]; });
        }
        const Lanes value = curve.selectionValue(color.data());
        for (int lane = 0; lane < laneCount; ++lane) selected[i + lane] *= value[lane];
      }
      for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t x = first + i;
        if (static_cast<std::uint32_t>(x) < columns) {
          pixel = readPremultiplied(firstImage.at(x, row));
        }
        if (selection.selectionOnly) {
          std::fill_n(pixel.begin(), SourcePixel::colorChannels, selected[i] * SourcePixel::range);
        } else {
          for (double& channel : pixel) channel *= selected[i];
        }
        write(target.pixelOf(samples, x), pixel);
      }
    }
  }

  // The row of the selection's source beside a row of the target.
  std::int32_t selectionRow(std::int32_t row) const {
    return row - selectionSource.frameY + target.frameY;
  }

  template <class Image>
  static std::uint32_t columnsInRow(const Image& image, std::int32_t row) {
    return image.contains(0, row) ? static_cast<std::uint32_t>(image.width) : 0;
  }

  // Premultiplies while reading, even if the view is premultiplied, and alpha too, so alpha is
  // squared. This is intended: the shading of the rays depends on it.
  static Working readPremultiplied(const typename Source::Stored* sample) {
    Working pixel;
    for (int c = 0; c < SourcePixel::channels; ++c) pixel[c] = sample[c];
    if constexpr (SourcePixel::hasAlpha) {
      const double alpha = pixel[SourcePixel::colorChannels] / SourcePixel::range;
      for (double& channel : pixel) channel *= alpha;
    }
    return pixel;
  }

  // Here the product with alpha is in single precision and, for integers, truncated to the sample.
  void readSelectionColor(const typename Colour::Stored* sample, double* color) const {
    using Pixel = typename Colour::Pixel;
    for (int c = 0; c < selectionColors; ++c) color[c] = sample[c];
    if constexpr (Pixel::hasAlpha) {
      if (!selectionSource.premultiplied) {
        const float alpha =
            static_cast<float>(sample[selectionColors]) / static_cast<float>(Pixel::range);
        for (int c = 0; c < selectionColors; ++c) {
          const float product = static_cast<float>(sample[c]) * alpha;
          color[c] = toSample<typename Colour::Sample>(product);
        }
      }
    }
  }

  static void write(typename Target::Stored* sample, const Working& pixel) {
    for (int c = 0; c < SourcePixel::channels; ++c) sample[c] = toSample<TargetSample>(pixel[c]);
  }
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
