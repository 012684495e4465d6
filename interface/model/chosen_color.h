// Whether the colour chooser offers colours or grey levels.
#pragma once

#include "hostapi/constants.h"

namespace radiashafts {

// Whether colours for pictures of this mode are chosen as greys. 32-bit grey is excluded. This is
// intended: the colour space requested from the host depends on it.
constexpr bool choosesGrey(int imageMode) {
  return imageMode == hostapi::modeGrayScale || imageMode == hostapi::modeGray16;
}

}  // namespace radiashafts
