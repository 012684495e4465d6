// Shifts rows of a float image by a fraction of a pixel, in place.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "image/instruction_set.h"
#include "image/sampling.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Each pixel is read from (x + offsetX, y + offsetY). Offsets are less than 1 in size and have
// exact sums with coordinates, such as a half.
//
// The direction of the walk follows the sign of the offset, in rows and in columns, so that pixels
// are read before they are overwritten. At the near edge of a negative offset the fraction is
// negative: the value is extrapolated from the pixel and its neighbour, which is already
// overwritten. This is intended. With a positive offset the far edge is clamped instead.
template <class Image>
struct MoveSubPixelImageFilter {
  double offsetX = 0.0;
  double offsetY = 0.0;

  // Whether rows are moved from the bottom up.
  bool movesUpward() const { return offsetY < 0.0; }

  // Moves one row, which is one of the two that are read. Runs of pixels follow each other in the
  // direction of the walk; the last pixel is a run of its own.
  void moveRow(const SampleRows& rows, float* row) const {
    const std::int32_t others = rows.width - 1;
    for (std::int32_t moved = 0; moved < others; moved += runLength) {
      const std::int32_t count = std::min(runLength, others - moved);
      moveRun(rows, offsetX < 0.0 ? rows.width - moved - count : moved, count, row);
    }
    moveRun(rows, offsetX < 0.0 ? 0 : others, 1, row);
  }

 private:
  static constexpr int channels = Image::Pixel::channels;
  static constexpr std::int32_t runLength = 128;  // pixels read before any of them is written

  void moveRun(const SampleRows& rows, std::int32_t first, std::int32_t count, float* row) const {
    std::array<double, static_cast<std::size_t>(runLength) * channels> moved;
    sampleBilinear<channels>(rows, offsetX, first, count, moved.data());
    float* const samples = row + static_cast<std::ptrdiff_t>(first) * channels;
    for (int i = 0; i < count * channels; ++i) samples[i] = static_cast<float>(moved[i]);
  }
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
