// The functions of picture_file.h in a shared library of their own, which is loaded when the first
// picture is: the picture formats bring some 250 libraries along, and most of a start's time.
#pragma once

#include "standin/picture_file.h"

namespace radiashafts::standin {

struct PictureLibrary {
  decltype(readPictureFile)* read;
  decltype(readMaskFile)* readMask;
  decltype(standin::checkWritable)* check;
  decltype(writePictureFile)* write;
};

// The object of this name that the shared library exports.
inline constexpr char pictureLibrarySymbol[] = "radiashaftsPictureLibrary";

}  // namespace radiashafts::standin
