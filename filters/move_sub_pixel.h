// Shifts a float image by a fraction of a pixel, in place.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/pixel_array.h"
#include "image/sampling.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Each pixel is read from (x + offsetX, y + offsetY). Offsets are less than 1 in size and have
// exact sums with coordinates, such as a half.
template <class Image>
class MoveSubPixelImageFilter final : public HalvorsundFilter {
 public:
  using HalvorsundFilter::HalvorsundFilter;

  Image image;
  double offsetX = 0.0;
  double offsetY = 0.0;

  // The direction of the walk follows the sign of the offset, so that it reads pixels before they
  // are overwritten. At the near edge of a negative offset the fraction is negative: the value is
  // extrapolated from the pixel and its neighbour, which is already overwritten. This is intended.
  // With a positive offset the far edge is clamped instead.
  std::int32_t run(std::int32_t stage, std::int32_t stages) override {
    const std::int32_t height = image.height;
    for (std::int32_t finished = 0; finished < height; ++finished) {
      moveRow(offsetY < 0.0 ? height - 1 - finished : finished);
      const std::int32_t status = host->Progress(height * stage + finished, height * stages, 0);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

 private:
  static constexpr std::int32_t runLength = 128;  // pixels read before any of them is written

  // Moves runs of pixels in the direction of the walk; the last pixel is a run of its own.
  void moveRow(std::int32_t y) const {
    const std::int32_t others = image.width - 1;
    for (std::int32_t moved = 0; moved < others; moved += runLength) {
      const std::int32_t count = std::min(runLength, others - moved);
      moveRun(y, offsetX < 0.0 ? image.width - moved - count : moved, count);
    }
    moveRun(y, offsetX < 0.0 ? 0 : others, 1);
  }

  void moveRun(std::int32_t y, std::int32_t first, std::int32_t count) const {
    constexpr int channels = Image::Pixel::channels;
    std::array<double, static_cast<std::size_t>(runLength) * channels> moved;
    sampleBilinear(image, {y, offsetX, offsetY}, first, count, moved.data());
    float* const samples = image.at(first, y);
    for (int i = 0; i < count * channels; ++i) samples[i] = static_cast<float>(moved[i]);
  }
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
