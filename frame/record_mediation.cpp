// Requests the whole image from the host in one piece.

#include <algorithm>

#include "diagnostics/debug_log.h"
#include "frame/pf_filter.h"
#include "hostapi/constants.h"
#include "platform/host_call.h"

namespace radiashafts {
namespace {

std::int16_t reduced(std::int16_t side, std::uint32_t factor) {
  return static_cast<std::int16_t>(static_cast<std::uint32_t>(side) / factor);
}

void traceRect(const char* name, const hostapi::Rect& rect) {
  trace("    ", name, ": left(", rect.left, "), right(", rect.right, "), top(", rect.top,
        "), bottom(", rect.bottom, ")");
}

void traceRecord(const hostapi::FilterRecord& record) {
  const auto field = [](const char* name, const auto& value) {
    trace("    ", name, "(", value, ")");
  };
  const auto pointer = [](const char* name, const void* value) {
    trace("    ", name, "(0x", value, ")");
  };
  trace("pFilterRecord:");
  field("imageMode", record.imageMode);
  field("filterCase", record.filterCase);
  field("planes", record.planes);
  field("depth", int{record.depth});
  pointer("inData", record.inData);
  field("inRowBytes", int{record.inRowBytes});
  field("inLayerPlanes", record.inLayerPlanes);
  field("inTransparencyMask", record.inTransparencyMask);
  field("inLayerMasks", record.inLayerMasks);
  field("inInvertedLayerMasks", record.inInvertedLayerMasks);
  field("inNonLayerPlanes", record.inNonLayerPlanes);
  pointer("outData", record.outData);
  field("outRowBytes", int{record.outRowBytes});
  field("outLayerPlanes", record.outLayerPlanes);
  field("outTransparencyMask", record.outTransparencyMask);
  field("outLayerMasks", record.outLayerMasks);
  field("outInvertedLayerMasks", record.outInvertedLayerMasks);
  field("outNonLayerPlanes", record.outNonLayerPlanes);
  pointer("maskData", record.maskData);
  field("maskRowBytes", int{record.maskRowBytes});
  field("haveMask", record.haveMask != 0);
  field("isFloating", record.isFloating != 0);
  field("autoMask", record.autoMask != 0);
  field("imageSize.h", record.imageSize.h);
  field("imageSize.v", record.imageSize.v);
  field("wholeSize.h", record.wholeSize.h);
  field("wholeSize.v", record.wholeSize.v);
  traceRect("inRect", record.inRect);
  traceRect("outRect", record.outRect);
  traceRect("maskRect", record.maskRect);
  traceRect("filterRect", record.filterRect);
}

}  // namespace

std::int16_t pfFilter::SetupFilterRecord(hostapi::FilterRecord* record, std::uint32_t scaleFactor) {
  trace("pfFilter::SetupFilterRecord( pFilterRecord(0x", static_cast<void*>(record),
        "), nScaleFactor(", scaleFactor, ") )");
  const LogIndent indent;
  const std::uint32_t factor = std::max<std::uint32_t>(scaleFactor, 1);

  // The filter processes the whole image; a selection has an effect only through the mask. The
  // start selector restores the host's filterRect.
  record->filterRect = {0, 0, record->imageSize.v, record->imageSize.h};
  record->inRect = {0, 0, reduced(record->imageSize.v, factor),
                    reduced(record->imageSize.h, factor)};
  record->outRect = record->inRect;
  if (record->haveMask != 0) record->maskRect = record->inRect;

  record->inLoPlane = record->outLoPlane = 0;
  record->inHiPlane = record->outHiPlane = static_cast<std::int16_t>(record->planes - 1);
  record->inputRate = record->maskRate = static_cast<hostapi::Fixed>(factor << 16);
  record->inputPadding = record->outputPadding = 255;
  record->maskPadding = 0;
  if (record->haveMask != 0 && record->isFloating == 0) record->autoMask = 0;
  record->wantsAbsolute = 0;

  const std::int16_t result = platform::callHost(record->advanceState);
  traceRecord(*record);
  return result;
}

}  // namespace radiashafts
