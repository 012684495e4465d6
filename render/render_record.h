// From the host's untyped record to the typed render.
#pragma once

#include <cstdint>

#include "hostapi/filter_record.h"
#include "image/halvorsund_host.h"
#include "parameters/effect_parameters.h"

namespace radiashafts {

// The parts of a picture's format that the render uses.
struct PictureLayout {
  int colorPlanes;  // those that are rendered; 0 where nothing can be
  bool hasAlpha;
  int depth;  // 8, 16 or 32; 0 where nothing can be rendered
};

PictureLayout pictureLayoutOf(const hostapi::FilterRecord* record);

// Renders the picture in the record's buffers with the current parameters. previewLevel is added to
// the scale of the view; it is 0 in a final render. Returns 0 and changes nothing when the effect
// does not support the picture's format, or the picture is empty, or the input is smaller than the
// output. A mask that is smaller than the output is ignored.
std::int16_t renderRecord(HalvorsundHost& host, const EffectParameters& parameters,
                          std::int32_t previewLevel, const hostapi::FilterRecord* record);

}  // namespace radiashafts
