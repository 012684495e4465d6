// Reading and writing one picture format.
#pragma once

#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "standin/codecs/metadata.h"

namespace radiashafts::standin {

// A picture as it is in a file: 16-bit samples from 0 to 65535, and not turned upright yet.
struct DecodedPicture {
  Picture picture;
  bool isCmyk = false;  // colorPlanes is 4, and 0 is no ink
  bool isPremultiplied = false;
  int orientation = 1;  // what is left to be done to turn it upright
  std::shared_ptr<FileMetadata> metadata = std::make_shared<FileMetadata>();
};

struct EncodedPicture {
  const Picture& picture;
  const FileMetadata& metadata;
  const EncodingOptions& options;
  std::string_view extension;            // of the format, with a dot
  int bits;                              // of a sample
  int page;                              // counts from 0
  const std::function<bool()>& aborted;  // asked now and then; encoders then return
  std::vector<std::string>& notes;
};

// What a format can hold.
struct FormatLimits {
  bool gray;
  bool alpha;
  int depth;  // the highest
  int side;   // the longest, in pixels
};

struct Codec {
  std::string_view format;
  std::vector<std::string_view> extensions;
  bool (*recognises)(std::string_view firstBytes);
  FormatLimits limits;
  // Both throw std::runtime_error with the cause. Pages count from 1; 0 is the file's main picture.
  DecodedPicture (*decode)(const std::filesystem::path& path, int page);
  void (*encode)(const std::filesystem::path& path, const EncodedPicture& encoded);
};

extern const Codec jpegCodec;
extern const Codec pngCodec;
extern const Codec webpCodec;
extern const Codec heifCodec;

// ---- What the codecs share. Functions that fail throw std::runtime_error with the cause.

// What a file of another format than TIFF and the like is told when a page is asked for.
inline constexpr char noPages[] = "holds one picture, and no pages to choose from";

void checkSides(std::uint64_t width, std::uint64_t height);

// Takes over an EXIF block, with or without its header, and notes what is damaged.
void readExif(std::string_view block, FileMetadata& metadata);

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File openFile(const std::filesystem::path& path, const char* mode);
// Closes a file that has been written.
void finishFile(File file);

}  // namespace radiashafts::standin
