// The compile-time description of a pixel, and the scale its values are on.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/unit_scale.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Layouts say which sample of an interleaved pixel is which channel. Alpha stands behind the
// colours; an index of -1 says that there is none.
template <int Alpha>
struct LayoutGrayPixel {
  static constexpr int colorChannels = 1;
  static constexpr int alphaIndex = Alpha;
};

template <int Alpha>
struct Layout2ChannelPixel {
  static constexpr int colorChannels = 2;
  static constexpr int alphaIndex = Alpha;
};

template <int Red, int Green, int Blue, int Alpha>
struct LayoutRGBAPixel {
  static_assert(Red == 0 && Green == 1 && Blue == 2, "colours are stored in this order everywhere");
  static constexpr int colorChannels = 3;
  static constexpr int alphaIndex = Alpha;
};

// One pixel of Sample values. HasAlpha 0 ignores the layout's alpha index. HasWeight 1 adds one
// float sample behind the channels, the weight that the ray filters gather. Range is the value of
// full scale and belongs to the render's depth: a float working pixel of an 8-bit render has 255.
template <class Layout, class SampleType, int HasAlpha, int HasWeight, int Range>
struct PixelRGB {
  using Sample = SampleType;

  static constexpr int colorChannels = Layout::colorChannels;
  static constexpr bool hasAlpha = HasAlpha != 0;
  static constexpr int channels = colorChannels + HasAlpha;  // alpha, where present, is the last
  static constexpr int samples = channels + HasWeight;       // the weight is the last of all
  static constexpr int bytes = samples * static_cast<int>(sizeof(Sample));

  static constexpr int rangeNumber = Range;
  static constexpr double range = Range;
  // Factor that takes a value to the scale 0 to 1; multiplied, never divided by its inverse.
  static constexpr double toUnit = Range == 255     ? byteToUnit
                                   : Range == 32768 ? 3.0517578125e-05
                                                    : 1.0;

  static_assert(!hasAlpha || Layout::alphaIndex == colorChannels);

  using WithWeight = PixelRGB<Layout, Sample, HasAlpha, 1, Range>;
};

// A coordinate or count as a whole number: truncated toward zero and held within a billion of 0, so
// that sums with picture sides stay in 32 bits; a NaN becomes 0.
inline std::int32_t toInt32(double value) {
  constexpr double limit = 1e9;
  if (!(value > -limit)) return value < 0.0 ? -1'000'000'000 : 0;
  return static_cast<std::int32_t>(std::min(value, limit));
}

// Converts to the sample type: floats by narrowing, integers by truncation toward zero. What an
// integer sample cannot hold becomes the nearest value that it can, and a NaN becomes 0.
template <class Sample>
Sample toSample(double value) {
  if constexpr (std::is_floating_point_v<Sample>) {
    return static_cast<Sample>(value);
  } else {
    constexpr double largest = std::numeric_limits<Sample>::max();
    return static_cast<Sample>(value > 0.0 ? std::min(value, largest) : 0.0);
  }
}

// A value held in 0 to the range's full scale; a NaN becomes 0.
template <class Pixel>
double clampToRange(double value) {
  return value > 0.0 ? std::min(value, Pixel::range) : 0.0;
}

template <class Pixel>
Lanes clampToRange(Lanes value) {
  return choose(value > 0.0, min(value, allLanes(Pixel::range)), Lanes{});
}

// Colours held in what a picture stores: integers in the range, floats at 0 only; those pass a NaN
// on. What comes back is ready for a cast to the sample.
template <class Pixel>
Lanes clampToStored(Lanes value) {
  if constexpr (std::is_floating_point_v<typename Pixel::Sample>) {
    return choose(value < 0.0, Lanes{}, value);
  } else {
    return clampToRange<Pixel>(value);
  }
}

template <class Pixel>
typename Pixel::Sample toClampedSample(double value) {
  return static_cast<typename Pixel::Sample>(clampToStored<Pixel>(allLanes(value))[0]);
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
