// The picture that the benchmarks render.
#pragma once

#include "standin/picture.h"

namespace radiashafts::bench {

// 6000 x 4000 pixels of brightness waves at 8, 16 or 32 bits a channel.
standin::Picture makePicture(int depth, int colorPlanes, bool alpha);

}  // namespace radiashafts::bench
