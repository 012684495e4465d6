// TIFF's tags beside those of the pixels, read and written around the picture library.
#pragma once

#include <filesystem>

#include "standin/codecs/metadata.h"

namespace radiashafts::standin {

// Reads the metadata of a page, which counts from 0. Returns whether the page's colours are CMYK.
bool readTiffTags(const std::filesystem::path& path, int page, FileMetadata& metadata);

// Puts the metadata into a file of one page that has just been written, in place of its own. Files
// above 4 GB have directories of another form, and are left as they are.
enum class TagsWritten { done, failed, fileTooLarge };
TagsWritten writeTiffTags(const std::filesystem::path& path, const FileMetadata& metadata);

}  // namespace radiashafts::standin
