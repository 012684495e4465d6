// Published numbers of the host interface.
#pragma once

#include <cstdint>

#include "hostapi/types.h"

namespace hostapi {

enum Selector : std::int16_t {
  selectorAbout = 0,
  selectorParameters = 1,
  selectorPrepare = 2,
  selectorStart = 3,
  selectorContinue = 4,
  selectorFinish = 5,
};

enum ImageMode : std::int16_t {
  modeBitmap = 0,
  modeGrayScale = 1,
  modeIndexed = 2,
  modeRGB = 3,
  modeCMYK = 4,
  modeHSL = 5,
  modeHSB = 6,
  modeMultichannel = 7,
  modeDuotone = 8,
  modeLab = 9,
  modeGray16 = 10,
  modeRGB48 = 11,
  modeLab48 = 12,
  modeCMYK64 = 13,
  modeDeepMultichannel = 14,
  modeDuotone16 = 15,
  modeRGB96 = 16,
  modeGray32 = 17,
};

// The largest number of colour planes that the plug-in filters in this mode; 0 when the mode is not
// supported.
constexpr int largestColorCount(std::int64_t imageMode) {
  switch (imageMode) {
    case modeGrayScale:
    case modeGray16:
    case modeGray32:
      return 1;
    case modeRGB:
    case modeMultichannel:
    case modeRGB48:
    case modeDeepMultichannel:
    case modeRGB96:
      return 3;
    default:
      return 0;
  }
}

enum FilterCase : std::int16_t {
  flatImageNoSelection = 1,
  flatImageWithSelection = 2,
  floatingSelection = 3,
  editableTransparencyNoSelection = 4,
  editableTransparencyWithSelection = 5,
  protectedTransparencyNoSelection = 6,
  protectedTransparencyWithSelection = 7,
};

constexpr std::int16_t userCanceledError = -128;
constexpr std::int16_t memoryFullError = -108;
constexpr std::int16_t nilHandleError = -109;

constexpr Fixed fixedOne = 0x10000;

enum PlayInfo : std::int16_t { playDontDisplay = 0, playDisplay = 1, playSilent = 2 };
enum RecordInfo : std::int16_t { recordDialogOptional = 0, recordDialogRequired = 1 };

// The longest side of a picture, in pixels: the host's coordinates are signed 16-bit integers.
constexpr int maximumSide = 32767;

}  // namespace hostapi
