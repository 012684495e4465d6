#include "platform/export.h"
#include "standin/picture_library.h"

namespace radiashafts::standin {

extern "C" {
RADIASHAFTS_EXPORT extern const PictureLibrary radiashaftsPictureLibrary;
}

const PictureLibrary radiashaftsPictureLibrary{
    .read = readPictureFile,
    .readMask = readMaskFile,
    .check = checkWritable,
    .write = writePictureFile,
};

}  // namespace radiashafts::standin
