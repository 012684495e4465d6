// Turns what the filter rendered into the preview's bitmap.
#pragma once

#include <cstdint>

#include "hostapi/filter_record.h"

namespace radiashafts {

// Who brings the bitmap to the screen: the host takes red, green, blue with rows from the top; the
// system takes blue, green, red with rows from the bottom.
enum class BitmapOrder { forHost, forSystem };

// Pixels of a row of the preview's bitmap: a multiple of 32 above the width, so that rows of 3-byte
// pixels are a multiple of 4 bytes.
constexpr int bitmapWidthFor(int width) {
  return (width / 32 + 1) * 32;
}

// Fills the bitmap, rows of bitmapWidth 3-byte pixels, from the record's output. Transparent places
// show a checkerboard. False, with nothing written, where the record has no picture that can be
// shown.
bool drawToPreview(const hostapi::FilterRecord& record, BitmapOrder order, int bitmapWidth,
                   std::uint8_t* bitmap);

}  // namespace radiashafts
