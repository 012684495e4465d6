#include "render/record_values.h"

namespace radiashafts {
namespace {

std::int64_t address(const void* pointer) {
  return reinterpret_cast<std::intptr_t>(pointer);
}

}  // namespace

std::int64_t GetRecordValue(const hostapi::FilterRecord* record, RenderValue value) {
  switch (value) {
    case RenderValue::outLeft:
      return record->outRect.left;
    case RenderValue::outRight:
      return record->outRect.right;
    case RenderValue::outTop:
      return record->outRect.top;
    case RenderValue::outBottom:
      return record->outRect.bottom;
    case RenderValue::inRowBytes:
      return record->inRowBytes;
    case RenderValue::outRowBytes:
      return record->outRowBytes;
    case RenderValue::maskRowBytes:
      return record->maskRowBytes;
    case RenderValue::inLayerPlanes:
      return record->inLayerPlanes;
    case RenderValue::inTransparencyMask:
      return record->inTransparencyMask;
    case RenderValue::inLayerMasks:
      return record->inLayerMasks;
    case RenderValue::inInvertedLayerMasks:
      return record->inInvertedLayerMasks;
    case RenderValue::inNonLayerPlanes:
      return record->inNonLayerPlanes;
    case RenderValue::planes:
      return record->planes;
    case RenderValue::depth:
      return record->depth;
    case RenderValue::imageMode:
      return record->imageMode;
    case RenderValue::inData:
      return address(record->inData);
    case RenderValue::outData:
      return address(record->outData);
    case RenderValue::maskData:
      return address(record->maskData);
    case RenderValue::record:
      return address(record);
  }
  return 0;
}

}  // namespace radiashafts
