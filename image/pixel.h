// The compile-time description of a pixel and of the scale of its values.
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

// Layouts: the position of each channel among the samples of an interleaved pixel. Alpha follows
// the colours; its index is -1 when there is none.
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

// One pixel. HasAlpha 0 ignores the layout's alpha index. HasWeight 1 adds one float sample after
// the channels, the weight that the ray filters accumulate. Range is the value of full scale for
// the depth of the render: the float working pixels of an 8-bit render have the range 255.
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
  // Factor from a value to the scale 0 to 1. Results depend on multiplying by it, not dividing.
  static constexpr double toUnit = Range == 255     ? byteToUnit
                                   : Range == 32768 ? 3.0517578125e-05
                                                    : 1.0;

  static_assert(!hasAlpha || Layout::alphaIndex == colorChannels);

  using WithWeight = PixelRGB<Layout, Sample, HasAlpha, 1, Range>;
};

// A coordinate or count as an integer: truncated toward zero and clamped to +-1e9, so that sums
// with picture sides fit 32 bits. A NaN becomes 0.
inline std::int32_t toInt32(double value) {
  constexpr double limit = 1e9;
  if (!(value > -limit)) return value < 0.0 ? -1'000'000'000 : 0;
  return static_cast<std::int32_t>(std::min(value, limit));
}

// Converts to the sample type: floats by narrowing, integers by truncation toward zero. Values
// beyond an integer type's limits are clamped, and a NaN becomes 0.
template <class Sample>
Sample toSample(double value) {
  if constexpr (std::is_floating_point_v<Sample>) {
    return static_cast<Sample>(value);
  } else {
    constexpr double largest = std::numeric_limits<Sample>::max();
    return static_cast<Sample>(value > 0.0 ? std::min(value, largest) : 0.0);
  }
}

// The value clamped to 0 to Pixel::range; a NaN becomes 0.
template <class Pixel>
double clampToRange(double value) {
  return value > 0.0 ? std::min(value, Pixel::range) : 0.0;
}

template <class Pixel>
Lanes clampToRange(Lanes value) {
  return choose(value > 0.0, min(value, allLanes(Pixel::range)), Lanes{});
}

inline LaneMask isNumber(Lanes value) {
  return (value <= 0.0) | (value > 0.0);
}

// Every NaN becomes the one of the language: processors take the sign and payload of a result from
// one of its operands, and compilers choose the order of operands.
inline Lanes withOneNaN(Lanes value) {
  return choose(isNumber(value), value, allLanes(std::numeric_limits<double>::quiet_NaN()));
}

// Clamps colours to what a picture can store: integers to 0 to Pixel::range, floats to 0 and above,
// where a NaN stays. The result can be cast to the sample type.
template <class Pixel>
Lanes clampToStored(Lanes value) {
  if constexpr (std::is_floating_point_v<typename Pixel::Sample>) {
    return withOneNaN(choose(value < 0.0, Lanes{}, value));
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
