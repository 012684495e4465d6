#pragma once

#include "standin/picture.h"

namespace radiashafts::cli {

// The mask at another size: each value is the weighted mean of those below a triangle, which is as
// wide as two pixels of the coarser of the two sizes.
standin::Mask scaledMask(const standin::Mask& mask, int width, int height);

}  // namespace radiashafts::cli
