// Reading an image between its pixels.
#pragma once

#include <array>
#include <cstdint>

namespace radiashafts {

// All channels of a tight float image at a fractional position, in double precision. The position
// is truncated toward zero and not clamped: the caller keeps it inside, or less than one pixel left
// of or above the image, where the fraction comes out negative and the value is extrapolated. A tap
// past the right or bottom edge repeats the edge pixel.
template <class Image>
[[gnu::always_inline]] inline std::array<double, Image::Pixel::channels> sampleBilinear(
    const Image& image, double x, double y) {
  constexpr int channels = Image::Pixel::channels;
  const auto ix = static_cast<std::int32_t>(x);
  const auto iy = static_cast<std::int32_t>(y);
  const double fx = x - ix;
  const double fy = y - iy;
  const std::ptrdiff_t right = ix == image.width - 1 ? 0 : Image::Pixel::samples;
  const float* upper = image.at(ix, iy);
  const float* lower = iy == image.height - 1 ? upper : image.at(ix, iy + 1);

  const double upperLeft = (1.0 - fx) * (1.0 - fy);
  const double upperRight = fx * (1.0 - fy);
  const double lowerRight = fx * fy;
  const double lowerLeft = (1.0 - fx) * fy;
  std::array<double, channels> result;
  for (int c = 0; c < channels; ++c) {
    result[c] = upper[c] * upperLeft + upper[c + right] * upperRight +
                lower[c + right] * lowerRight + lower[c] * lowerLeft;
  }
  return result;
}

}  // namespace radiashafts
