// All other formats, through OpenImageIO, which also checks what every encoder has written.
#pragma once

#include <memory>

#include <OpenImageIO/imageio.h>

#include "standin/codecs/codec.h"

namespace radiashafts::standin {

// Functions that fail throw std::runtime_error with the cause.

// Null for a file of no known format; OIIO::geterror() has the reason.
std::unique_ptr<OIIO::ImageInput> tryOpen(const std::filesystem::path& path, bool rawColor = false);
// The usual extension of a format's files, with a dot.
std::string usualExtension(const std::string& format);
DecodedPicture decodeWithLibrary(const std::filesystem::path& path, int page);

// Null if no format that can be written has the extension, which has a dot.
std::unique_ptr<OIIO::ImageOutput> outputFor(std::string_view extension);
// How many of the picture's channels the format holds.
int keptPlanes(const Picture& picture, const OIIO::ImageOutput& output);

// What a written file holds, and whether it is to hold the picture's samples unchanged.
struct StoredSamples {
  OIIO::TypeDesc type;
  bool exact;
};
// Adds a page to the file that the output writes, or begins it. Modifies the picture, of which
// encoded has a view, where the encoder wants premultiplied alpha.
StoredSamples encodeWithLibrary(OIIO::ImageOutput& output, const std::filesystem::path& path,
                                const EncodedPicture& encoded, Picture& picture);
// Ends the file and adds the metadata of its pages where the library does not write it.
void finishWithLibrary(OIIO::ImageOutput& output, const std::filesystem::path& path,
                       const std::vector<FileMetadata>& pages, std::vector<std::string>& notes);

// Reads a page of the file, from 0 on, back and returns its spec: not all encoders report a full
// disk.
OIIO::ImageSpec verify(const std::filesystem::path& path, int page, const Picture& picture,
                       const StoredSamples& stored);

OIIO::TypeDesc typeOf(int depth);

// When threads are scarce, keeps OpenEXR from starting its own pool, which is separate from the
// picture library's.
void limitLibraryThreads();

}  // namespace radiashafts::standin
