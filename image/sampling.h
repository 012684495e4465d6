// Reading an image between its pixels.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "image/lanes.h"

namespace radiashafts {

// All channels of a tight float image at fractional positions in one row, in double precision. A
// position is truncated toward zero and not clamped: the caller keeps it inside, or less than one
// pixel left of or above the image, where the fraction comes out negative and the value is
// extrapolated. A tap past the right or bottom edge repeats the edge pixel.
template <class Image>
[[gnu::always_inline]] inline std::array<Lanes, Image::Pixel::channels> sampleBilinear(
    const Image& image, Lanes x, double y) {
  constexpr int channels = Image::Pixel::channels;
  const auto iy = static_cast<std::int32_t>(y);
  const double fy = y - iy;
  const std::ptrdiff_t below =
      iy == image.height - 1 ? 0 : image.rowStride / static_cast<std::ptrdiff_t>(sizeof(float));

  std::array<const float*, laneCount> upperLeft, upperRight, lowerLeft, lowerRight;
  Lanes fx;
  for (int lane = 0; lane < laneCount; ++lane) {
    const auto ix = static_cast<std::int32_t>(x[lane]);
    fx[lane] = x[lane] - ix;
    upperLeft[lane] = image.at(ix, iy);
    upperRight[lane] = upperLeft[lane] + (ix == image.width - 1 ? 0 : channels);
    lowerLeft[lane] = upperLeft[lane] + below;
    lowerRight[lane] = upperRight[lane] + below;
  }
  const auto tap = [](const std::array<const float*, laneCount>& pixel, int channel) {
    SingleLanes samples;
    for (int lane = 0; lane < laneCount; ++lane) samples[lane] = pixel[lane][channel];
    return toDouble(samples);
  };

  const Lanes weights[4] = {(1.0 - fx) * (1.0 - fy), fx * (1.0 - fy), fx * fy, (1.0 - fx) * fy};
  std::array<Lanes, channels> result;
  for (int c = 0; c < channels; ++c) {
    result[c] = tap(upperLeft, c) * weights[0] + tap(upperRight, c) * weights[1] +
                tap(lowerRight, c) * weights[2] + tap(lowerLeft, c) * weights[3];
  }
  return result;
}

}  // namespace radiashafts
