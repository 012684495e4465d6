// Turning pictures upright.
#pragma once

#include "standin/picture.h"

namespace radiashafts::standin {

// Turns and mirrors the picture as EXIF's orientation asks for, 1 to 8; 1 and unknown numbers leave
// it as it is.
void turnUpright(Picture& picture, int orientation);

// Whether upright width and height are the stored height and width.
constexpr bool swapsSides(int orientation) {
  return orientation >= 5 && orientation <= 8;
}

}  // namespace radiashafts::standin
