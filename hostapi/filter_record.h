// The host's parameter blocks: the about selector passes an AboutRecord, every other selector a
// FilterRecord.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostapi/color_services.h"
#include "hostapi/descriptors.h"
#include "hostapi/pixel_map.h"
#include "hostapi/suites.h"
#include "hostapi/types.h"

namespace hostapi {

using AbortProc = Boolean (*)();
using ProgressProc = void (*)(std::int32_t done, std::int32_t total);
using AdvanceStateProc = OSErr (*)();
using ProcessEventProc = void (*)(void* event);

// The target of platformData. The window may be null.
struct PlatformData {
  void* ownerWindow;
};

// The only packed structure of the interface: 4-byte alignment. Fields after depth are not used.
#pragma pack(push, 4)
struct FilterRecord {
  std::int32_t serialNumber;
  AbortProc abortProc;
  ProgressProc progressProc;
  Handle parameters;
  Point imageSize;
  std::int16_t planes;
  Rect filterRect;
  RGBColor background;
  RGBColor foreground;
  std::int32_t maxSpace;
  std::int32_t bufferSpace;
  Rect inRect;
  std::int16_t inLoPlane;
  std::int16_t inHiPlane;
  Rect outRect;
  std::int16_t outLoPlane;
  std::int16_t outHiPlane;
  void* inData;
  std::int32_t inRowBytes;
  void* outData;
  std::int32_t outRowBytes;
  Boolean isFloating;
  Boolean haveMask;
  Boolean autoMask;
  Rect maskRect;
  void* maskData;
  std::int32_t maskRowBytes;
  FilterColor backColor;
  FilterColor foreColor;
  std::uint32_t hostSig;
  void* hostProc;
  std::int16_t imageMode;
  Fixed imageHRes;
  Fixed imageVRes;
  Point floatCoord;
  Point wholeSize;
  PlugInMonitor monitor;
  PlatformData* platformData;
  BufferProcs* bufferProcs;
  void* resourceProcs;
  ProcessEventProc processEvent;
  DisplayPixelsProc displayPixels;
  HandleProcs* handleProcs;
  Boolean supportsDummyChannels;
  Boolean supportsAlternateLayouts;
  std::int16_t wantLayout;
  std::int16_t filterCase;
  std::int16_t dummyPlaneValue;
  void* premiereHook;
  AdvanceStateProc advanceState;
  Boolean supportsAbsolute;
  Boolean wantsAbsolute;
  void* getPropertyObsolete;
  Boolean cannotUndo;
  Boolean supportsPadding;
  std::int16_t inputPadding;
  std::int16_t outputPadding;
  std::int16_t maskPadding;
  char samplingSupport;
  char reservedByte;
  Fixed inputRate;
  Fixed maskRate;
  ColorServicesProc colorServices;
  std::int16_t inLayerPlanes;
  std::int16_t inTransparencyMask;
  std::int16_t inLayerMasks;
  std::int16_t inInvertedLayerMasks;
  std::int16_t inNonLayerPlanes;
  std::int16_t outLayerPlanes;
  std::int16_t outTransparencyMask;
  std::int16_t outLayerMasks;
  std::int16_t outInvertedLayerMasks;
  std::int16_t outNonLayerPlanes;
  std::int16_t absLayerPlanes;
  std::int16_t absTransparencyMask;
  std::int16_t absLayerMasks;
  std::int16_t absInvertedLayerMasks;
  std::int16_t absNonLayerPlanes;
  std::int16_t inPreDummyPlanes;
  std::int16_t inPostDummyPlanes;
  std::int16_t outPreDummyPlanes;
  std::int16_t outPostDummyPlanes;
  std::int32_t inColumnBytes;
  std::int32_t inPlaneBytes;
  std::int32_t outColumnBytes;
  std::int32_t outPlaneBytes;
  void* imageServicesProcs;
  void* propertyProcs;
  std::int16_t inTileHeight;
  std::int16_t inTileWidth;
  Point inTileOrigin;
  std::int16_t absTileHeight;
  std::int16_t absTileWidth;
  Point absTileOrigin;
  std::int16_t outTileHeight;
  std::int16_t outTileWidth;
  Point outTileOrigin;
  std::int16_t maskTileHeight;
  std::int16_t maskTileWidth;
  Point maskTileOrigin;
  PIDescriptorParameters* descriptorParameters;
  void* errorString;
  void* channelPortProcs;
  void* documentInfo;
  SPBasicSuite* sSPBasic;
  void* plugInRef;
  std::int32_t depth;
  void* iCCprofileData;
  std::int32_t iCCprofileSize;
  std::int32_t canUseICCProfiles;
  std::int32_t hasImageScrap;
  void* bigDocumentData;
  char reserved[46];
};
#pragma pack(pop)

struct AboutRecord {
  PlatformData* platformData;
  SPBasicSuite* sSPBasic;
  void* plugInRef;
  char reserved[244];
};

static_assert(sizeof(FilterRecord) == 560);
static_assert(offsetof(AboutRecord, sSPBasic) == 8 && offsetof(AboutRecord, reserved) == 24);

#define RADIASHAFTS_FIELD_AT(field, offset) static_assert(offsetof(FilterRecord, field) == (offset))
RADIASHAFTS_FIELD_AT(serialNumber, 0);
RADIASHAFTS_FIELD_AT(abortProc, 4);
RADIASHAFTS_FIELD_AT(progressProc, 12);
RADIASHAFTS_FIELD_AT(parameters, 20);
RADIASHAFTS_FIELD_AT(imageSize, 28);
RADIASHAFTS_FIELD_AT(planes, 32);
RADIASHAFTS_FIELD_AT(filterRect, 34);
RADIASHAFTS_FIELD_AT(background, 42);
RADIASHAFTS_FIELD_AT(foreground, 48);
RADIASHAFTS_FIELD_AT(maxSpace, 56);
RADIASHAFTS_FIELD_AT(bufferSpace, 60);
RADIASHAFTS_FIELD_AT(inRect, 64);
RADIASHAFTS_FIELD_AT(inLoPlane, 72);
RADIASHAFTS_FIELD_AT(inHiPlane, 74);
RADIASHAFTS_FIELD_AT(outRect, 76);
RADIASHAFTS_FIELD_AT(outLoPlane, 84);
RADIASHAFTS_FIELD_AT(outHiPlane, 86);
RADIASHAFTS_FIELD_AT(inData, 88);
RADIASHAFTS_FIELD_AT(inRowBytes, 96);
RADIASHAFTS_FIELD_AT(outData, 100);
RADIASHAFTS_FIELD_AT(outRowBytes, 108);
RADIASHAFTS_FIELD_AT(isFloating, 112);
RADIASHAFTS_FIELD_AT(haveMask, 113);
RADIASHAFTS_FIELD_AT(autoMask, 114);
RADIASHAFTS_FIELD_AT(maskRect, 116);
RADIASHAFTS_FIELD_AT(maskData, 124);
RADIASHAFTS_FIELD_AT(maskRowBytes, 132);
RADIASHAFTS_FIELD_AT(backColor, 136);
RADIASHAFTS_FIELD_AT(foreColor, 140);
RADIASHAFTS_FIELD_AT(hostSig, 144);
RADIASHAFTS_FIELD_AT(hostProc, 148);
RADIASHAFTS_FIELD_AT(imageMode, 156);
RADIASHAFTS_FIELD_AT(imageHRes, 160);
RADIASHAFTS_FIELD_AT(imageVRes, 164);
RADIASHAFTS_FIELD_AT(floatCoord, 168);
RADIASHAFTS_FIELD_AT(wholeSize, 172);
RADIASHAFTS_FIELD_AT(monitor, 176);
RADIASHAFTS_FIELD_AT(platformData, 216);
RADIASHAFTS_FIELD_AT(bufferProcs, 224);
RADIASHAFTS_FIELD_AT(resourceProcs, 232);
RADIASHAFTS_FIELD_AT(processEvent, 240);
RADIASHAFTS_FIELD_AT(displayPixels, 248);
RADIASHAFTS_FIELD_AT(handleProcs, 256);
RADIASHAFTS_FIELD_AT(supportsDummyChannels, 264);
RADIASHAFTS_FIELD_AT(supportsAlternateLayouts, 265);
RADIASHAFTS_FIELD_AT(wantLayout, 266);
RADIASHAFTS_FIELD_AT(filterCase, 268);
RADIASHAFTS_FIELD_AT(dummyPlaneValue, 270);
RADIASHAFTS_FIELD_AT(premiereHook, 272);
RADIASHAFTS_FIELD_AT(advanceState, 280);
RADIASHAFTS_FIELD_AT(supportsAbsolute, 288);
RADIASHAFTS_FIELD_AT(wantsAbsolute, 289);
RADIASHAFTS_FIELD_AT(getPropertyObsolete, 292);
RADIASHAFTS_FIELD_AT(cannotUndo, 300);
RADIASHAFTS_FIELD_AT(supportsPadding, 301);
RADIASHAFTS_FIELD_AT(inputPadding, 302);
RADIASHAFTS_FIELD_AT(outputPadding, 304);
RADIASHAFTS_FIELD_AT(maskPadding, 306);
RADIASHAFTS_FIELD_AT(samplingSupport, 308);
RADIASHAFTS_FIELD_AT(reservedByte, 309);
RADIASHAFTS_FIELD_AT(inputRate, 312);
RADIASHAFTS_FIELD_AT(maskRate, 316);
RADIASHAFTS_FIELD_AT(colorServices, 320);
RADIASHAFTS_FIELD_AT(inLayerPlanes, 328);
RADIASHAFTS_FIELD_AT(inTransparencyMask, 330);
RADIASHAFTS_FIELD_AT(inLayerMasks, 332);
RADIASHAFTS_FIELD_AT(inInvertedLayerMasks, 334);
RADIASHAFTS_FIELD_AT(inNonLayerPlanes, 336);
RADIASHAFTS_FIELD_AT(outLayerPlanes, 338);
RADIASHAFTS_FIELD_AT(outTransparencyMask, 340);
RADIASHAFTS_FIELD_AT(outLayerMasks, 342);
RADIASHAFTS_FIELD_AT(outInvertedLayerMasks, 344);
RADIASHAFTS_FIELD_AT(outNonLayerPlanes, 346);
RADIASHAFTS_FIELD_AT(absLayerPlanes, 348);
RADIASHAFTS_FIELD_AT(absTransparencyMask, 350);
RADIASHAFTS_FIELD_AT(absLayerMasks, 352);
RADIASHAFTS_FIELD_AT(absInvertedLayerMasks, 354);
RADIASHAFTS_FIELD_AT(absNonLayerPlanes, 356);
RADIASHAFTS_FIELD_AT(inPreDummyPlanes, 358);
RADIASHAFTS_FIELD_AT(inPostDummyPlanes, 360);
RADIASHAFTS_FIELD_AT(outPreDummyPlanes, 362);
RADIASHAFTS_FIELD_AT(outPostDummyPlanes, 364);
RADIASHAFTS_FIELD_AT(inColumnBytes, 368);
RADIASHAFTS_FIELD_AT(inPlaneBytes, 372);
RADIASHAFTS_FIELD_AT(outColumnBytes, 376);
RADIASHAFTS_FIELD_AT(outPlaneBytes, 380);
RADIASHAFTS_FIELD_AT(imageServicesProcs, 384);
RADIASHAFTS_FIELD_AT(propertyProcs, 392);
RADIASHAFTS_FIELD_AT(inTileHeight, 400);
RADIASHAFTS_FIELD_AT(inTileWidth, 402);
RADIASHAFTS_FIELD_AT(inTileOrigin, 404);
RADIASHAFTS_FIELD_AT(absTileHeight, 408);
RADIASHAFTS_FIELD_AT(absTileWidth, 410);
RADIASHAFTS_FIELD_AT(absTileOrigin, 412);
RADIASHAFTS_FIELD_AT(outTileHeight, 416);
RADIASHAFTS_FIELD_AT(outTileWidth, 418);
RADIASHAFTS_FIELD_AT(outTileOrigin, 420);
RADIASHAFTS_FIELD_AT(maskTileHeight, 424);
RADIASHAFTS_FIELD_AT(maskTileWidth, 426);
RADIASHAFTS_FIELD_AT(maskTileOrigin, 428);
RADIASHAFTS_FIELD_AT(descriptorParameters, 432);
RADIASHAFTS_FIELD_AT(errorString, 440);
RADIASHAFTS_FIELD_AT(channelPortProcs, 448);
RADIASHAFTS_FIELD_AT(documentInfo, 456);
RADIASHAFTS_FIELD_AT(sSPBasic, 464);
RADIASHAFTS_FIELD_AT(plugInRef, 472);
RADIASHAFTS_FIELD_AT(depth, 480);
RADIASHAFTS_FIELD_AT(iCCprofileData, 484);
RADIASHAFTS_FIELD_AT(iCCprofileSize, 492);
RADIASHAFTS_FIELD_AT(canUseICCProfiles, 496);
RADIASHAFTS_FIELD_AT(hasImageScrap, 500);
RADIASHAFTS_FIELD_AT(bigDocumentData, 504);
RADIASHAFTS_FIELD_AT(reserved, 512);
#undef RADIASHAFTS_FIELD_AT

}  // namespace hostapi
