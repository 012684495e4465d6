// What the screen shows.
#pragma once

#include <windows.h>

#include <string>

#include "standin/picture.h"

namespace radiashafts::test {

// An 8-bit RGB picture of a rectangle of the screen.
standin::Picture screenPicture(const RECT& rect);
COLORREF screenPixel(POINT point);

const std::uint8_t* pixelAt(const standin::Picture& picture, int x, int y);

// Of the whole screen, for people to look at: NAME.png in the build's folder.
void saveScreenshot(const std::string& name);

}  // namespace radiashafts::test
