// A picture in the hosts' layout: interleaved, rows without padding, alpha not premultiplied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "hostapi/constants.h"

namespace radiashafts::standin {

struct Picture {
  int width = 0;
  int height = 0;
  int planes = 0;         // samples per pixel
  int colorPlanes = 0;    // 1 to 3; the colours are the first planes
  bool hasAlpha = false;  // alpha follows the colours; further planes are passed through
  int depth = 8;          // 8: 0 to 255. 16: 0 to 32768. 32: floats, 1.0 is full scale
  std::vector<std::uint8_t> bytes;

  std::size_t sampleBytes() const { return static_cast<std::size_t>(depth) / 8; }
  std::size_t pixelBytes() const { return sampleBytes() * static_cast<std::size_t>(planes); }
  std::size_t rowBytes() const { return pixelBytes() * static_cast<std::size_t>(width); }
  std::size_t sampleCount() const {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
           static_cast<std::size_t>(planes);
  }
  void allocate() { bytes.resize(rowBytes() * static_cast<std::size_t>(height)); }
};

// An 8-bit selection of the same size as the picture: 255 is fully selected.
struct Mask {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;
};

// The host's mode number for the picture.
constexpr std::int16_t imageModeOf(const Picture& picture) {
  const bool is8 = picture.depth == 8;
  const bool is16 = picture.depth == 16;
  switch (picture.colorPlanes) {
    case 1:
      return is8 ? hostapi::modeGrayScale : is16 ? hostapi::modeGray16 : hostapi::modeGray32;
    case 2:
      return is8 ? hostapi::modeMultichannel : hostapi::modeDeepMultichannel;
    default:
      return is8 ? hostapi::modeRGB : is16 ? hostapi::modeRGB48 : hostapi::modeRGB96;
  }
}

}  // namespace radiashafts::standin
