// Changes of how a picture's samples are stored. 16-bit samples are on the files' scale.
#pragma once

#include "standin/picture.h"

namespace radiashafts::standin {

void divideByAlpha(Picture& picture);
void multiplyByAlpha(Picture& picture);

// Keeps the first planes.
void dropPlanes(Picture& picture, int kept);

// Repeats the grey of a picture with one colour plane and nothing but alpha beside it.
void makeRgb(Picture& picture);

void convertDepth(Picture& picture, int depth);

}  // namespace radiashafts::standin
