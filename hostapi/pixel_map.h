// The picture structure that the host's drawing proc takes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostapi/types.h"

namespace hostapi {

struct PSPixelMap {
  std::int32_t version;
  VRect bounds;
  std::int32_t imageMode;
  std::int32_t rowBytes;
  std::int32_t colBytes;
  std::int32_t planeBytes;
  void* baseAddr;
  void* mat;
  void* masks;
  std::int32_t maskPhaseRow;
  std::int32_t maskPhaseCol;
};

// platformContext is the target's device context, pointer-sized.
using DisplayPixelsProc = OSErr (*)(const PSPixelMap* source, const VRect* sourceRect,
                                    std::int32_t destinationRow, std::int32_t destinationColumn,
                                    void* platformContext);

static_assert(offsetof(PSPixelMap, bounds) == 4 && offsetof(PSPixelMap, imageMode) == 20);
static_assert(offsetof(PSPixelMap, rowBytes) == 24 && offsetof(PSPixelMap, planeBytes) == 32);
static_assert(offsetof(PSPixelMap, baseAddr) == 40 && offsetof(PSPixelMap, masks) == 56);
static_assert(offsetof(PSPixelMap, maskPhaseRow) == 64 && offsetof(PSPixelMap, maskPhaseCol) == 68);

}  // namespace hostapi
