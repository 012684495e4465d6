// Sets a float image without gaps to 0, weights included.
#pragma once

#include <algorithm>
#include <cstdint>

#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/pixel_array.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

template <class Image>
class ClearImageFilter final : public RowFilter {
 public:
  using RowFilter::RowFilter;

  Image image;

  std::int32_t run(std::int32_t stagePosition, std::int32_t stageCount) override {
    return runRows(image.height, stagePosition, stageCount);
  }

  std::int32_t processRow(std::int32_t row, std::int32_t, std::int32_t threadIndex) override {
    const std::ptrdiff_t samples = static_cast<std::ptrdiff_t>(image.width) * Image::Pixel::samples;
    std::fill_n(image.at(0, row), samples, 0.0F);
    return reportRow(row, image.height, threadIndex);
  }
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
