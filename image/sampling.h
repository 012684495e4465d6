// Reading an image between its pixels.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// The row to sample and the shift of the sampling positions: less than 1 in absolute value, and
// with an exact sum with any coordinate, as 0.5 has.
struct SampleRow {
  std::int32_t y;
  double shiftX;
  double shiftY;
};

// All channels of count pixels, from column first on, of a float image without gaps, by bilinear
// interpolation at (x + shiftX, y + shiftY), in double precision. A position is truncated toward
// zero: less than one pixel left of or above the image the fraction comes out negative and the
// value is extrapolated. A tap past the right or bottom edge repeats the edge pixel.
template <class Image>
void sampleBilinear(const Image& image, SampleRow row, std::int32_t first, std::int32_t count,
                    double* result) {
  constexpr int channels = Image::Pixel::channels;
  const double y = row.y + row.shiftY;
  const auto iy = static_cast<std::int32_t>(y);
  const double fy = y - iy;
  const std::int32_t lowerY = iy == image.height - 1 ? iy : iy + 1;

  // A run of pixels that share the fraction of the position and the distance to the right tap.
  const auto sampleStretch = [&](std::int32_t x, std::int32_t pixels) {
    const auto ix = static_cast<std::int32_t>(x + row.shiftX);
    const double fx = x + row.shiftX - ix;
    const std::ptrdiff_t right = ix == image.width - 1 ? 0 : channels;
    const float* const upper = image.at(ix, iy);
    const float* const lower = image.at(ix, lowerY);
    const double upperLeft = (1.0 - fx) * (1.0 - fy);
    const double upperRight = fx * (1.0 - fy);
    const double lowerRight = fx * fy;
    const double lowerLeft = (1.0 - fx) * fy;
    for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(pixels) * channels; ++i) {
      result[i] = upper[i] * upperLeft + upper[i + right] * upperRight +
                  lower[i + right] * lowerRight + lower[i] * lowerLeft;
    }
    result += static_cast<std::ptrdiff_t>(pixels) * channels;
  };

  // The first column (negative shift) or the last one (otherwise) has taps of its own.
  const std::int32_t edge = row.shiftX < 0.0 ? 0 : image.width - 1;
  const std::int32_t end = first + count;
  if (edge < first || edge >= end) return sampleStretch(first, count);
  if (first < edge) sampleStretch(first, edge - first);
  sampleStretch(edge, 1);
  if (edge + 1 < end) sampleStretch(edge + 1, end - edge - 1);
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
