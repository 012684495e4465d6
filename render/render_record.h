// The door from the host's untyped record into the typed pipeline.
#pragma once

#include <cstdint>

#include "hostapi/filter_record.h"
#include "image/halvorsund_host.h"
#include "parameters/effect_parameters.h"

namespace radiashafts {

// What a picture is made of, as far as the render uses it.
struct PictureLayout {
  int colorPlanes;  // those that are rendered; 0 where nothing can be
  bool hasAlpha;
  int depth;  // 8, 16 or 32; 0 where nothing can be rendered
};

PictureLayout pictureLayoutOf(const hostapi::FilterRecord* record);

// Renders what stands in the record's buffers with the parameters as they are now. previewLevel is
// added to the view's scale; 0 for a final render. A picture that the effect does not treat, an
// empty one, or one whose input is smaller than the output is left alone with status 0. So is a
// mask that is smaller.
std::int16_t renderRecord(HalvorsundHost& host, const EffectParameters& parameters,
                          std::int32_t previewLevel, const hostapi::FilterRecord* record);

}  // namespace radiashafts
