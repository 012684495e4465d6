// Which metadata each format takes.
#pragma once

#include <string>
#include <vector>

#include "standin/codecs/metadata.h"

namespace radiashafts::standin {

// Removes what the format, of the library's name, cannot take or what does not describe a picture
// with so many colours, and notes it.
void dropUnkept(FileMetadata& metadata, const std::string& format, int colorPlanes,
                std::vector<std::string>& notes);

}  // namespace radiashafts::standin
