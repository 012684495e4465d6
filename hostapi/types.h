// Basic types of the host's published structures.
#pragma once

#include <cstdint>

namespace hostapi {

using Boolean = std::uint8_t;  // non-zero is true
using Fixed = std::int32_t;    // 16.16 fixed point
using OSErr = std::int16_t;    // 0 is success
using Handle = char**;         // pointer to a master pointer: *handle is the block

struct Point {
  std::int16_t v, h;
};

// Right and bottom are exclusive.
struct Rect {
  std::int16_t top, left, bottom, right;
};

struct VPoint {
  std::int32_t v, h;
};

struct VRect {
  std::int32_t top, left, bottom, right;
};

struct RGBColor {
  std::uint16_t red, green, blue;
};

using FilterColor = std::uint8_t[4];
using PlugInMonitor = Fixed[10];

// A four-character code: the first character is in the highest byte.
constexpr std::uint32_t fourCharacterCode(const char (&text)[5]) {
  std::uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

static_assert(sizeof(Point) == 4 && sizeof(Rect) == 8 && sizeof(VRect) == 16);
static_assert(sizeof(RGBColor) == 6 && sizeof(PlugInMonitor) == 40);
static_assert(fourCharacterCode("ORIX") == 0x4F524958);

}  // namespace hostapi
