// The picture that the benchmarks render.
#pragma once

#include "standin/picture.h"

namespace radiashafts::bench {

// Brightness waves plus noise, at 8, 16 or 32 bits per channel.
standin::Picture makePicture(int width, int height, int depth, int colorPlanes, bool alpha);

}  // namespace radiashafts::bench
