// Reading and writing picture files, independent of the library used.
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

// The file's metadata: colour profile, resolution and the rest. Its type depends on the library
// that read it.
struct PictureMetadata {
  virtual ~PictureMetadata() = default;
};

struct PictureFile {
  Picture picture;
  std::shared_ptr<const PictureMetadata> metadata;
  std::string extension;  // with a dot; for a file without one that of its format
};

// Reads the file's first picture at its own depth, turned upright where the file says how its camera
// was held. Throws PictureFileError, also if a side is
// longer than 32767 pixels.
PictureFile readPictureFile(const std::filesystem::path& path);

// Reads a grey picture of any depth as a mask.
Mask readMaskFile(const std::filesystem::path& path);

// Throws PictureFileError if the picture cannot be written to the path. Called before filtering, so
// that the error is reported early.
void checkWritable(const std::filesystem::path& path, const Picture& picture);

// Writes the picture to a temporary file, in the format given by the path's extension, and renames
// it to the path when it is complete. Modifies file.picture. Each note says what the format cannot
// store. Throws PictureFileError. If aborted returns true, the result's written is false. In both
// cases the temporary file is deleted.
struct WriteResult {
  bool written = false;
  std::vector<std::string> notes;
};
WriteResult writePictureFile(const std::filesystem::path& path, PictureFile&& file,
                             const std::function<bool()>& aborted);

}  // namespace radiashafts::standin
