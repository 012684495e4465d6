// Which colours a colour chooser offers.
#pragma once

#include "hostapi/constants.h"

namespace radiashafts {

// Pictures whose colours are chosen as greys. 32-bit grey is not among them; wanted.
constexpr bool choosesGrey(int imageMode) {
  return imageMode == hostapi::modeGrayScale || imageMode == hostapi::modeGray16;
}

}  // namespace radiashafts
