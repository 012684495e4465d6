// The whole effect: the chain of passes from the host's picture to the host's output.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

#include "filters/multiply.h"
#include "filters/range_selection.h"
#include "filters/smooth_rays.h"
#include "filters/straight_rays.h"
#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/sampling.h"
#include "render/blend_pixel.h"
#include "render/ray_shading.h"
#include "render/ray_source.h"
#include "render/render_values.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Image is the host's picture, Working the float image of the same layout and range, Mask the
// host's mask.
template <class Image, class Working, class Mask>
class RadiashaftsEffect final : public RowFilter {
 public:
  using RowFilter::RowFilter;

  Image source;
  Image output;
  Image colorSource;  // decides the selection
  Mask mask;          // its data may be null
  RenderValues values;

  // The arguments are not used: the passes have fixed positions in the progress of the render. A
  // status other than NoErrorCode skips the remaining passes.
  std::int32_t run(std::int32_t, std::int32_t) override {
    const HostBuffer rays(*host, output.width, output.height, Pixel::bytes, sizeof(float));
    const HostBuffer gamma(*host, GammaTable<Pixel>::entries, 1, sizeof(float));
    std::int32_t slots = 1;
    host->ThreadCount(&slots, ThreadPool::maximumSlots);
    const HostBuffer rows(*host, output.width, 2 * slots, Pixel::bytes);
    if (!rays || !gamma || !rows) return host->OutOfMemoryCode();
    GammaTable<HostPixel>::fill(gamma.floats(), values.inverseGamma);
    gammaTable_ = gamma.floats();
    rowsOfSlots_ = rows.floats();
    rayImage_ = tightView<Working>(output.width, output.height, rays.data());
    rayImage_.frameX = source.frameX;
    rayImage_.frameY = source.frameY;
    return values.show == SelectionShowMode::normal ? renderRays() : showSelection();
  }

  // The last pass: shades and blends one band of rows.
  std::int32_t processRow(std::int32_t index, std::int32_t iterations,
                          std::int32_t threadIndex) override {
    const std::int32_t height = output.height;
    const RowBand band(index, iterations, height);
    const RayShading<HostPixel> shading(values, gammaTable_);
    RayRows rays(*this, threadIndex);
    for (std::int32_t y = band.first; y < band.end; ++y) {
      const RowTaps taps = rowTapsAt(y, shiftY_, height);
      shadeRow(shading, y, {rays.at(taps.upper), rays.at(taps.lower), taps.fraction, output.width});
      const std::int32_t status = host->Progress(4 * height + y, 5 * height, threadIndex);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

 private:
  using HostPixel = typename Image::Pixel;
  using Pixel = typename Working::Pixel;
  using Sample = typename HostPixel::Sample;

  std::int32_t renderRays() {
    const bool smears = values.rayLength != 0.0;
    std::int32_t status = prepareSource(smears);
    if (status == host->NoErrorCode() && smears) status = smear();
    if (status != host->NoErrorCode()) return status;
    return runIterations(bandCount(output.height));
  }

  std::int32_t showSelection() {
    HslRangeSelectionFilter<Image, Image, Image> filter(*host);
    filter.firstImage = source;
    filter.target = output;
    filter.selectionSource = colorSource;
    filter.selection = values.selection;
    const std::int32_t status = filter.run(2, passCount);
    if (status != host->NoErrorCode() || mask.data == nullptr) return status;
    MultImageFilter<Image, Mask> multiply(*host);
    multiply.image = output;
    multiply.mask = mask;
    return multiply.run(3, passCount);
  }

  // The picture is moved by half a pixel before the smear; the last pass samples it with the
  // opposite shift.
  std::int32_t prepareSource(bool moves) {
    RaySourceFilter<Image, Working, Mask> filter(*host);
    filter.source = source;
    filter.colorSource = colorSource;
    filter.mask = mask;
    filter.target = rayImage_;
    filter.selection = values.selection;
    filter.rowsOfSlots = rowsOfSlots_;
    if (moves) {
      filter.move =
          MoveSubPixelImageFilter<Working>{offsetFor(values.originX), offsetFor(values.originY)};
      shiftX_ = -filter.move->offsetX;
      shiftY_ = -filter.move->offsetY;
    }
    return filter.run(0, passCount);
  }

  std::int32_t smear() {
    if (values.mode != RayMode::straight) {
      RadiashaftsSmoothFilter<Working> smooth(*host);
      return castRays(smooth);
    }
    straightRays_.emplace(*host);
    return castRays(*straightRays_);
  }

  // -0.5 for a whole origin of 0 or more, +0.5 for a negative one.
  static double offsetFor(double origin) {
    const double offset = std::abs(origin - std::trunc(origin)) - 0.5;
    return origin < 0.0 ? -offset : offset;
  }

  template <class Filter>
  std::int32_t castRays(Filter& filter) {
    filter.image = rayImage_;
    filter.length = values.rayLength;
    filter.originX = static_cast<std::int32_t>(values.originX);
    filter.originY = static_cast<std::int32_t>(values.originY);
    return filter.run(2, passCount);
  }

  static constexpr std::int32_t blockPixels = 64;
  static constexpr int channels = HostPixel::channels;

  // Rows of the rays for one thread, asked for from the top down. Those of straight rays are
  // resolved here, so that the smeared image never goes through memory.
  class RayRows {
   public:
    RayRows(const RadiashaftsEffect& effect, std::int32_t threadIndex)
        : effect_(effect),
          rows_(effect.rowsOfSlots_ +
                2 * static_cast<std::ptrdiff_t>(threadIndex) * rowSamples(effect)) {}

    const float* at(std::int32_t y) {
      if (!effect_.straightRays_) return effect_.rayImage_.at(0, y);
      const std::int32_t place = y % 2;
      float* const row = rows_ + place * rowSamples(effect_);
      if (std::exchange(held_[place], y) != y) effect_.straightRays_->resolveRow(y, row);
      return row;
    }

   private:
    static std::ptrdiff_t rowSamples(const RadiashaftsEffect& effect) {
      return static_cast<std::ptrdiff_t>(effect.output.width) * channels;
    }
    const RadiashaftsEffect& effect_;
    float* rows_;
    std::array<std::int32_t, 2> held_{-1, -1};
  };

  // Neighbouring pixels of a row; an element has as many as there are lanes. Lanes past the end of
  // a row are 0.
  using Block = std::array<PixelValues<HostPixel>, blockPixels / laneCount>;

  // Each step runs over the whole block before the next one: the steps of one pixel depend on each
  // other, those of its neighbours do not and run in parallel in the processor.
  void shadeRow(const RayShading<HostPixel>& shading, std::int32_t y,
                const SampleRows& rayRows) const {
    for (std::int32_t first = 0; first < output.width; first += blockPixels) {
      const std::int32_t count = std::min(blockPixels, output.width - first);
      Block rays = sampleRays(rayRows, first, count);
      Block pixels = readPixels(first, y, count);
      const auto each = [&](const auto& step) {
        for (std::int32_t i = 0; i * laneCount < count; ++i) step(i);
      };
      each([&](std::int32_t i) { shading.light(rays[i], falloffAt(first + i * laneCount, y)); });
      each([&](std::int32_t i) { shading.tone(rays[i]); });
      each([&](std::int32_t i) { shading.adjustColor(rays[i]); });
      each([&](std::int32_t i) { blend(pixels[i], rays[i]); });
      writePixels(first, y, count, pixels);
    }
  }

  Block sampleRays(const SampleRows& rayRows, std::int32_t first, std::int32_t count) const {
    std::array<double, static_cast<std::size_t>(blockPixels) * channels> samples;
    sampleBilinear<channels>(rayRows, shiftX_, first, count, samples.data());
    Block rays{};
    eachElement(count, [&](std::int32_t i, auto lanes) {
      const double* const pixels = &samples[static_cast<std::size_t>(i) * laneCount * channels];
      for (int c = 0; c < channels; ++c) {
        for (int lane = 0; lane < lanes; ++lane) rays[i][c][lane] = pixels[lane * channels + c];
      }
    });
    return rays;
  }

  Block readPixels(std::int32_t first, std::int32_t y, std::int32_t count) const {
    Block pixels{};
    eachElement(count, [&](std::int32_t i, auto lanes) {
      for (int c = 0; c < channels; ++c) {
        LanesOf<Sample> samples{};
        for (int lane = 0; lane < lanes; ++lane) {
          samples[lane] = source.at(first + i * laneCount + lane, y)[c];
        }
        pixels[i][c] = toDouble(samples);
      }
    });
    return pixels;
  }

  // Alpha is stored without a clamp to the range.
  void writePixels(std::int32_t first, std::int32_t y, std::int32_t count,
                   const Block& pixels) const {
    eachElement(count, [&](std::int32_t i, auto lanes) {
      const auto sampleAt = [&](int lane) { return output.at(first + i * laneCount + lane, y); };
      for (int k = 0; k < HostPixel::colorChannels; ++k) {
        const LanesOf<Sample> samples = toLanesOf<Sample>(pixels[i][k]);
        for (int lane = 0; lane < lanes; ++lane) {
          sampleAt(lane)[k] = static_cast<Sample>(samples[lane]);
        }
      }
      if constexpr (HostPixel::hasAlpha) {
        const Lanes alpha = withOneNaN(pixels[i][channels - 1]);
        for (int lane = 0; lane < lanes; ++lane) {
          sampleAt(lane)[channels - 1] = toSample<Sample>(alpha[lane]);
        }
      }
    });
  }

  // Calls step(index of the element, number of its pixels) for count pixels. That number is a
  // compile-time constant except in the last element of a row.
  template <class Step>
  static void eachElement(std::int32_t count, const Step& step) {
    const std::int32_t whole = count / laneCount;
    for (std::int32_t i = 0; i < whole; ++i) step(i, std::integral_constant<int, laneCount>());
    if (count % laneCount != 0) step(whole, count % laneCount);
  }

  Lanes falloffAt(std::int32_t first, std::int32_t y) const {
    const double radius = values.falloffRadius <= 0.0 ? 1e-06 : values.falloffRadius;
    const double inverseRadius = 1.0 / radius;
    const Lanes x = eachLane([=](int lane) { return first + lane; });
    const Lanes dx = (values.originX - x) * inverseRadius * values.viewScaleX;
    const double dy = (values.originY - y) * inverseRadius * values.viewScaleY;
    const Lanes falloff = 1.0 - sqrt(dx * dx + dy * dy);
    // Beyond the radius rays are faint, not absent.
    return choose(falloff <= 0.0, allLanes(0.0001), falloff);
  }

  void blend(PixelValues<HostPixel>& pixels, const PixelValues<HostPixel>& rays) const {
    if constexpr (HostPixel::hasAlpha) {
      const Lanes alpha = pixels[HostPixel::colorChannels];
      if (source.premultiplied) {
        scaleColors(pixels, choose(alpha > 0.0, HostPixel::range / alpha, allLanes(1.0)));
      }
    }
    blendPixel<HostPixel>(pixels, rays, values.blendMode);
    if constexpr (HostPixel::hasAlpha) {
      const Lanes alpha = pixels[HostPixel::colorChannels];
      if (output.premultiplied) scaleColors(pixels, alpha / HostPixel::range);
    }
    for (int k = 0; k < HostPixel::colorChannels; ++k) {
      pixels[k] = clampToStored<HostPixel>(pixels[k]);
    }
  }

  static void scaleColors(PixelValues<HostPixel>& pixel, Lanes factor) {
    for (int k = 0; k < HostPixel::colorChannels; ++k) pixel[k] *= factor;
  }

  static constexpr std::int32_t passCount = 5;

  Working
      rayImage_;  // the selected picture, then smooth rays; premultiplied, in the render's range
  std::optional<RadiashaftsStraightFilter<Working>> straightRays_;
  float* rowsOfSlots_ = nullptr;  // two rows for each thread
  const float* gammaTable_ = nullptr;
  double shiftX_ = 0.0;
  double shiftY_ = 0.0;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
