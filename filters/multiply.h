// Multiplies an image, alpha included, by the host's 8-bit selection mask.
#pragma once

#include <cstdint>

#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/pixel.h"
#include "image/pixel_array.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// The mask is read at the image's own (x, y), so it is at least as large.
template <class Image, class Mask>
class MultImageFilter final : public RowFilter {
 public:
  using RowFilter::RowFilter;

  Image image;
  Mask mask;

  std::int32_t run(std::int32_t stagePosition, std::int32_t stageCount) override {
    return runRows(image.height, stagePosition, stageCount);
  }

  std::int32_t processRow(std::int32_t row, std::int32_t, std::int32_t threadIndex) override {
    multiplyRow(row, image.at(0, row));
    return reportRow(row, image.height, threadIndex);
  }

  // A row of the image, wherever its samples stand.
  void multiplyRow(std::int32_t row, typename Image::Stored* samples) const {
    using Pixel = typename Image::Pixel;
    for (std::int32_t x = 0; x < image.width; ++x) {
      const double factor = *mask.at(x, row) * Mask::Pixel::toUnit;
      typename Image::Stored* const sample = image.pixelOf(samples, x);
      for (int c = 0; c < Pixel::channels; ++c) {
        sample[c] = toSample<typename Image::Sample>(factor * sample[c]);
      }
    }
  }
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
