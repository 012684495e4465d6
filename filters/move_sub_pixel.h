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

  // The walk's direction follows the sign of the offset, so that samples read pixels that are not
  // yet overwritten. At the near edge of a negative offset the fraction is negative: the value is
  // extrapolated from the pixel itself and its neighbour, which is overwritten by then. That edge
  // is wanted as it is; with a positive offset the far edge is clamped instead.
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
  static constexpr std::int32_t stretch = 128;  // pixels read before any of them is written

  // Stretches follow the walk; the pixel at its end goes alone.
  void moveRow(std::int32_t y) const {
    const std::int32_t others = image.width - 1;
    for (std::int32_t moved = 0; moved < others; moved += stretch) {
      const std::int32_t count = std::min(stretch, others - moved);
      moveStretch(y, offsetX < 0.0 ? image.width - moved - count : moved, count);
    }
    moveStretch(y, offsetX < 0.0 ? 0 : others, 1);
  }

  void moveStretch(std::int32_t y, std::int32_t first, std::int32_t count) const {
    constexpr int channels = Image::Pixel::channels;
    std::array<double, static_cast<std::size_t>(stretch) * channels> moved;
    sampleBilinear(image, {y, offsetX, offsetY}, first, count, moved.data());
    float* const samples = image.at(first, y);
    for (int i = 0; i < count * channels; ++i) samples[i] = static_cast<float>(moved[i]);
  }
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
