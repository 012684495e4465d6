// The host's window, with the picture that is being filtered in it.
#pragma once

#include <string>

#include "standin/picture.h"
#include "standin/system/picture_window.h"

namespace radiashafts::cli {

// The picture reduced to fit in the room, by the nearest pixel.
standin::ShownPicture shownPicture(const standin::Picture& picture,
                                   const standin::ShownPicture& room);

}  // namespace radiashafts::cli
