// The render's numbered view of the host's record.
#pragma once

#include <cstdint>

#include "hostapi/filter_record.h"

namespace radiashafts {

enum class RenderValue {
  outLeft = 0,
  outRight = 1,
  outTop = 2,
  outBottom = 3,
  inRowBytes = 4,
  outRowBytes = 5,
  maskRowBytes = 6,
  inLayerPlanes = 7,
  inTransparencyMask = 8,
  inLayerMasks = 9,
  inInvertedLayerMasks = 10,
  inNonLayerPlanes = 11,
  planes = 12,
  depth = 13,
  imageMode = 14,
  inData = 15,
  outData = 16,
  maskData = 17,
  record = 18,
};

// One field, sign-extended from its own width.
std::int64_t GetRecordValue(const hostapi::FilterRecord* record, RenderValue value);

}  // namespace radiashafts
