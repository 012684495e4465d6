// Picture files, behind one interface whatever library reads them.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "standin/picture.h"

namespace radiashafts::standin {

// A file that cannot be read or written; the text names the file and the cause.
class PictureFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What the file says of the picture beside its pixels: profile, resolution, metadata. Known to the
// library that read it.
struct PictureMetadata {
  virtual ~PictureMetadata() = default;
};

struct PictureFile {
  Picture picture;
  std::shared_ptr<const PictureMetadata> metadata;
};

// Reads the first picture of the file at its own depth. Throws PictureFileError, also for a side
// above 32767 pixels.
PictureFile readPictureFile(const std::filesystem::path& path);

// Reads an 8-bit grey picture as a mask.
Mask readMaskFile(const std::filesystem::path& path);

// Throws PictureFileError where such a picture could not be written to the path: asked before the
// work is done.
void checkWritable(const std::filesystem::path& path, const Picture& picture);

// Writes the picture in the format that the path's extension names, beside its place, and renames
// it onto it when it is complete. The samples of file.picture are used up. What the format cannot
// hold is said in the notes returned, a line each. Throws PictureFileError; nothing is left behind
// then, nor after aborted answers true, which gives false in written.
struct WriteResult {
  bool written = false;
  std::vector<std::string> notes;
};
WriteResult writePictureFile(const std::filesystem::path& path, PictureFile&& file,
                             const std::function<bool()>& aborted);

}  // namespace radiashafts::standin
