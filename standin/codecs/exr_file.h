// OpenEXR files: their attributes, and the files that are written. The picture library reads their
// pixels. Functions that fail throw std::runtime_error with the cause.
#pragma once

#include <any>

#include "standin/codecs/library_codec.h"

namespace radiashafts::standin {

inline constexpr char exrFormat[] = "openexr";

// The header of a part, which counts from 0, for FileMetadata::exrHeader.
std::any readExrHeader(const std::filesystem::path& path, int part);

// Writes the file with all attributes of the input's header that stay true, or with those that
// other formats' metadata becomes. Each channel keeps its type. Makes the picture, of which encoded
// has a view, what the file holds: float samples, premultiplied and rounded to the channels' types.
StoredSamples encodeExr(const std::filesystem::path& path, const EncodedPicture& encoded,
                        Picture& picture);

}  // namespace radiashafts::standin
