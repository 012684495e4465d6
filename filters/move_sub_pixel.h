// Shifts a float image by a fraction of a pixel, in place.
#pragma once

#include <cstdint>

#include "image/halvorsund_filter.h"
#include "image/pixel_array.h"
#include "image/sampling.h"

namespace radiashafts {

// Each pixel is read from (x + offsetX, y + offsetY), less than one pixel outside the image.
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
    const std::int32_t width = image.width;
    const std::int32_t height = image.height;
    for (std::int32_t finished = 0; finished < height; ++finished) {
      const std::int32_t y = offsetY < 0.0 ? height - 1 - finished : finished;
      for (std::int32_t i = 0; i < width; ++i) {
        const std::int32_t x = offsetX < 0.0 ? width - 1 - i : i;
        const auto moved = sampleBilinear(image, x + offsetX, y + offsetY);
        float* pixel = image.at(x, y);
        for (int c = 0; c < Image::Pixel::channels; ++c) pixel[c] = static_cast<float>(moved[c]);
      }
      const std::int32_t status = host->Progress(height * stage + finished, height * stages, 0);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }
};

}  // namespace radiashafts
