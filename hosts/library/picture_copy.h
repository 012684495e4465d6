// Pictures between the callers' layouts and the host's. 16-bit samples are 0 to 65535 outside.
#pragma once

#include "hosts/library/radiashafts-host.h"
#include "standin/picture.h"

namespace radiashafts::hosts {

// Reuses the memory of to.
void copyIn(const radiashafts_picture& from, standin::Picture& to);
void copyIn(const radiashafts_mask& from, int width, int height, standin::Mask& to);

// The pictures have the same size, depth and planes.
void copyOut(const standin::Picture& from, const radiashafts_picture& to);

}  // namespace radiashafts::hosts
