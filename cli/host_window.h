// The picture for the host's window.
#pragma once

#include <string>

#include "standin/picture.h"
#include "standin/system/picture_window.h"

namespace radiashafts::cli {

// Reduces the picture to at most the limit's width and height, by nearest-neighbour sampling.
standin::ShownPicture shownPicture(const standin::Picture& picture,
                                   const standin::ShownPicture& limit);

}  // namespace radiashafts::cli
