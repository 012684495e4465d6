// Converts the rendered image to the preview's bitmap.
#pragma once

#include <cstdint>
#include <optional>

#include "hostapi/filter_record.h"

namespace radiashafts {

// The pixel layout of the bitmap, which depends on who draws it: red, green, blue with the top row
// first for the host; blue, green, red with the bottom row first for the system.
enum class BitmapOrder { forHost, forSystem };

// The bitmap's width in pixels for an image width: the next larger multiple of 32, so that the row
// stride of 3-byte pixels is a multiple of 4 bytes.
constexpr int bitmapWidthFor(int width) {
  return (width / 32 + 1) * 32;
}

// How many pixels were converted.
struct DrawnPixels {
  int visible = 0;  // not fully transparent
  int clipped = 0;  // of these: a colour channel has its largest value
};

// Converts the record's output to rows of bitmapWidth 3-byte pixels. Transparent areas show a
// checkerboard. Empty, with nothing written, when the record's mode, depth or size is not
// supported.
std::optional<DrawnPixels> drawToPreview(const hostapi::FilterRecord& record, BitmapOrder order,
                                         int bitmapWidth, std::uint8_t* bitmap);

}  // namespace radiashafts
