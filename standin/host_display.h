// The stand-in's drawing proc.
#pragma once

#include "hostapi/pixel_map.h"

namespace radiashafts::standin {

// Draws 8-bit grey or RGB pixels, interleaved or planar, into the device context. Returns
// an error for a null context and for any other pixel format.
hostapi::OSErr displayPixels(const hostapi::PSPixelMap* source, const hostapi::VRect* sourceRect,
                             std::int32_t row, std::int32_t column, void* deviceContext);

}  // namespace radiashafts::standin
