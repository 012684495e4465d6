// Shifts a float image by a fraction of a pixel, in place.
#pragma once

#include <cstdint>

#include "image/halvorsund_filter.h"
#include "image/lanes.h"
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
    const std::int32_t height = image.height;
    for (std::int32_t finished = 0; finished < height; ++finished) {
      moveRow(offsetY < 0.0 ? height - 1 - finished : finished);
      const std::int32_t status = host->Progress(height * stage + finished, height * stages, 0);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

 private:
  // Pixels go in lanes where none of them reads another, and those at the walk's end one by one.
  void moveRow(std::int32_t y) const {
    const std::int32_t step = offsetX < 0.0 ? -1 : 1;
    const std::int32_t start = offsetX < 0.0 ? image.width - 1 : 0;
    std::int32_t i = 0;
    for (; i + laneCount < image.width; i += laneCount) {
      const auto column = [=](int lane) { return start + (i + lane) * step; };
      move(y, column, laneCount);
    }
    for (; i < image.width; ++i) {
      const auto column = [=](int) { return start + i * step; };
      move(y, column, 1);
    }
  }

  template <class Column>
  void move(std::int32_t y, const Column& column, int count) const {
    const auto moved = sampleBilinear(image, eachLane(column) + offsetX, y + offsetY);
    for (int lane = 0; lane < count; ++lane) {
      float* pixel = image.at(column(lane), y);
      for (int c = 0; c < Image::Pixel::channels; ++c) {
        pixel[c] = static_cast<float>(moved[c][lane]);
      }
    }
  }
};

}  // namespace radiashafts
