// The 18 typed configurations of the pipeline, by number.
#pragma once

#include <cstdint>
#include <type_traits>

#include "image/instruction_set.h"
#include "image/pixel.h"
#include "image/pixel_array.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

inline constexpr int configurationCount = 18;

// The mask is 8-bit grey, whatever the depth of the picture.
using MaskImage = PixelArray<PixelRGB<LayoutGrayPixel<-1>, std::uint8_t, 0, 0, 255>, 0, 1>;

// The order is: depth 32, 16, 8; in each depth with alpha, then without; in each of these 1, 2, 3
// colour planes.
constexpr int configurationNumber(int depth, bool hasAlpha, int colorPlanes) {
  const int depthRow = depth == 32 ? 0 : depth == 16 ? 1 : 2;
  return depthRow * 6 + (hasAlpha ? 0 : 3) + colorPlanes;
}

template <int ColorPlanes, bool HasAlpha>
using LayoutFor =
    std::conditional_t<ColorPlanes == 1, LayoutGrayPixel<HasAlpha ? 1 : -1>,
                       std::conditional_t<ColorPlanes == 2, Layout2ChannelPixel<HasAlpha ? 2 : -1>,
                                          LayoutRGBAPixel<0, 1, 2, HasAlpha ? 3 : -1>>>;

template <int Number>
struct Configuration {
  static_assert(Number >= 1 && Number <= configurationCount);
  static constexpr int depth = Number <= 6 ? 32 : Number <= 12 ? 16 : 8;
  static constexpr bool hasAlpha = (Number - 1) % 6 < 3;
  static constexpr int colorPlanes = (Number - 1) % 3 + 1;
  static constexpr int range = depth == 32 ? 1 : depth == 16 ? 32768 : 255;
  static_assert(configurationNumber(depth, hasAlpha, colorPlanes) == Number);

  using Layout = LayoutFor<colorPlanes, hasAlpha>;
  using HostSample =
      std::conditional_t<depth == 32, float,
                         std::conditional_t<depth == 16, std::uint16_t, std::uint8_t>>;

  // The host's interleaved picture; its pixels may hold more planes than the layout uses.
  using HostImage = PixelArray<PixelRGB<Layout, HostSample, hasAlpha, 0, range>, 0, 1>;
  // Floats in the range of the depth, without gaps.
  using WorkingImage = PixelArray<PixelRGB<Layout, float, hasAlpha, 0, range>, 0, 0>;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
