// Reading an image between its pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Numbers of the two rows between which samples lie, and the distance from the upper one.
struct RowTaps {
  std::int32_t upper;
  std::int32_t lower;
  double fraction;
};

// The rows for samples at y + shift. Shifts are less than 1 in absolute value and have exact sums
// with any coordinate, as 0.5 has. A position is truncated toward zero: above the image the
// fraction comes out negative and values are extrapolated. Past the bottom edge the last row is
// repeated.
inline RowTaps rowTapsAt(std::int32_t y, double shift, std::int32_t height) {
  const double position = y + shift;
  const auto upper = static_cast<std::int32_t>(position);
  return {upper, upper == height - 1 ? upper : upper + 1, position - upper};
}

// The samples of two rows without gaps, and the distance of the sampling positions from the upper
// one.
struct SampleRows {
  const float* upper;
  const float* lower;
  double fraction;
  std::int32_t width;  // in pixels
};

// All channels of count pixels, from column first on, by bilinear interpolation at x + shift, in
// double precision. Columns are tapped as rows are.
template <int channels>
void sampleBilinear(const SampleRows& rows, double shift, std::int32_t first, std::int32_t count,
                    double* result) {
  const double fy = rows.fraction;

  // A run of pixels that share the fraction of the position and the distance to the right tap.
  const auto sampleStretch = [&](std::int32_t x, std::int32_t pixels) {
    const auto ix = static_cast<std::int32_t>(x + shift);
    const double fx = x + shift - ix;
    const std::ptrdiff_t right = ix == rows.width - 1 ? 0 : channels;
    const float* const upper = rows.upper + static_cast<std::ptrdiff_t>(ix) * channels;
    const float* const lower = rows.lower + static_cast<std::ptrdiff_t>(ix) * channels;
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
  const std::int32_t edge = shift < 0.0 ? 0 : rows.width - 1;
  const std::int32_t end = first + count;
  if (edge < first || edge >= end) return sampleStretch(first, count);
  if (first < edge) sampleStretch(first, edge - first);
  sampleStretch(edge, 1);
  if (edge + 1 < end) sampleStretch(edge + 1, end - edge - 1);
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
