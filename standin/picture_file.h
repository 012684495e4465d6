// Reading and writing picture files, independent of the library used.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
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
  std::vector<PictureFile> furtherPages;
};

// How a picture is read where its file leaves a choice.
struct ReadingOptions {
  int page = 0;                   // counts from 1; 0 is the file's main picture
  bool allPages = false;          // the first one and furtherPages
  std::filesystem::path profile;  // ICC file for RGB, to which colours are converted; or empty
};

// How a picture is written where that is not to be as in its input, or as is good for the format.
struct EncodingOptions {
  std::optional<int> quality;  // 1 to 100
  std::optional<int> depth;    // bits of a sample: 8, 10, 12, 16 or 32
  std::string compression;     // by the format's name for it
  std::string format;          // an extension without the dot, instead of the path's
};

// Reads a picture at its own depth, turned upright where the file says how its camera was held.
// Throws PictureFileError, also if a side is longer than 32767 pixels.
PictureFile readPictureFile(const std::filesystem::path& path, const ReadingOptions& options = {});

// Reads a grey picture of any depth as a mask.
Mask readMaskFile(const std::filesystem::path& path);

// Throws PictureFileError if the pictures cannot be written to the path. Called before filtering,
// so that the error is reported early.
void checkWritable(const std::filesystem::path& path, const PictureFile& file,
                   const EncodingOptions& options = {});

// Writes the picture to a temporary file, in the format given by the path's extension, and renames
// it to the path when it is complete. Modifies the file's pictures. Each note says what the format
// cannot store. Throws PictureFileError. If aborted returns true, the result's written is false. In
// both cases the temporary file is deleted.
struct WriteResult {
  bool written = false;
  std::vector<std::string> notes;
};
WriteResult writePictureFile(const std::filesystem::path& path, PictureFile&& file,
                             const EncodingOptions& options, const std::function<bool()>& aborted);

}  // namespace radiashafts::standin
