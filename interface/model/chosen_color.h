// Colours as choosers and screens hold them.
#pragma once

#include "hostapi/constants.h"

namespace radiashafts {

// The channel, 0.0 to 1.0, of a byte of 1.
inline constexpr double channelOfByte = 0.00392156862745098;

// Pictures whose colours are chosen as greys. 32-bit grey is not among them; wanted.
constexpr bool choosesGrey(int imageMode) {
  return imageMode == hostapi::modeGrayScale || imageMode == hostapi::modeGray16;
}

}  // namespace radiashafts
