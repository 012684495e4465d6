// TIFF's tags beside those of the pixels, read and written around the picture library.
#pragma once

#include <filesystem>

#include "standin/codecs/metadata.h"

namespace radiashafts::standin {

// Reads the metadata of a page, which counts from 0. Returns whether the page's colours are CMYK.
bool readTiffTags(const std::filesystem::path& path, int page, FileMetadata& metadata);

// Puts the metadata into a page, which counts from 0, of a file that has just been written, in
// place of the page's own. Files above 4 GB have directories of another form, and are left as they
// are.
enum class TagsWritten { done, failed, fileTooLarge };
TagsWritten writeTiffTags(const std::filesystem::path& path, int page,
                          const FileMetadata& metadata);

}  // namespace radiashafts::standin
