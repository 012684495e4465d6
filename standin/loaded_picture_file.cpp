// Picture files through the shared library of picture_library.h, whose codecs would print messages
// of their own.

#include "standin/picture_library.h"
#include "standin/program_file.h"
#include "standin/system/module.h"
#include "standin/system/standard_error.h"

namespace radiashafts::standin {
namespace {

// Throws when there is none; the next call tries again.
const PictureLibrary& loadPictureLibrary() {
  static Module& module = *new Module;  // stays loaded: metadata and the libraries' threads need it
  if (!module.load(programLibrary(RADIASHAFTS_PICTURE_LIBRARY))) {
    throw PictureFileError("picture files cannot be read or written: " + module.error());
  }
  const auto* library = static_cast<const PictureLibrary*>(module.symbol(pictureLibrarySymbol));
  if (library == nullptr) {
    throw PictureFileError(std::string(RADIASHAFTS_PICTURE_LIBRARY) + " is not this program's");
  }
  return *library;
}

// Several threads may ask at once.
const PictureLibrary& pictureLibrary() {
  static const PictureLibrary& library = loadPictureLibrary();
  return library;
}

}  // namespace

PictureFile readPictureFile(const std::filesystem::path& path, const ReadingOptions& options) {
  const SilencedStandardError silenced;
  return pictureLibrary().read(path, options);
}

Mask readMaskFile(const std::filesystem::path& path) {
  const SilencedStandardError silenced;
  return pictureLibrary().readMask(path);
}

void checkWritable(const std::filesystem::path& path, const PictureFile& file,
                   const EncodingOptions& options) {
  const SilencedStandardError silenced;
  pictureLibrary().check(path, file, options);
}

WriteResult writePictureFile(const std::filesystem::path& path, PictureFile&& file,
                             const EncodingOptions& options, const std::function<bool()>& aborted) {
  const SilencedStandardError silenced;
  return pictureLibrary().write(path, std::move(file), options, aborted);
}

}  // namespace radiashafts::standin
