// The host's colour picker and converter.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostapi/types.h"

namespace hostapi {

enum ColorServicesSelector : std::int16_t { colorServicesChooseColor = 0 };
enum ColorSpace : std::int16_t { colorSpaceRGB = 0, colorSpaceGray = 4 };

struct ColorServicesInfo {
  std::int32_t infoSize;
  std::int16_t selector;
  std::int16_t sourceSpace;
  std::int16_t resultSpace;
  Boolean resultGamutInfoValid;
  Boolean resultInGamut;
  void* reservedSourceSpaceInfo;
  void* reservedResultSpaceInfo;
  std::int16_t colorComponents[4];
  void* reserved;
  std::intptr_t selectorParameter;
};

using ColorServicesProc = OSErr (*)(ColorServicesInfo* info);

static_assert(sizeof(ColorServicesInfo) == 56);
static_assert(offsetof(ColorServicesInfo, selector) == 4);
static_assert(offsetof(ColorServicesInfo, resultInGamut) == 11);
static_assert(offsetof(ColorServicesInfo, reservedSourceSpaceInfo) == 16);
static_assert(offsetof(ColorServicesInfo, colorComponents) == 32);
static_assert(offsetof(ColorServicesInfo, selectorParameter) == 48);

}  // namespace hostapi
