// The host's window, with the picture that is being filtered in it.
#pragma once

#include <string>

#include "platform/picture_window.h"
#include "standin/picture.h"

namespace radiashafts::cli {

// The picture reduced to fit in the room, by the nearest pixel.
platform::ShownPicture shownPicture(const standin::Picture& picture,
                                    const platform::ShownPicture& room);

}  // namespace radiashafts::cli
