#include "standin/codecs/codec.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace radiashafts::standin {

void checkSides(std::uint64_t width, std::uint64_t height) {
  const std::uint64_t side = std::max(width, height);
  if (side > static_cast<std::uint64_t>(hostapi::maximumSide)) {
    throw std::runtime_error("a side of " + std::to_string(side) +
                             " pixels is above the limit of 32767");
  }
}

void readExif(std::string_view block, FileMetadata& metadata) {
  constexpr std::string_view header("Exif\0\0", 6);
  if (block.substr(0, header.size()) == header) block.remove_prefix(header.size());
  auto tree = TagTree::read(block);
  if (!tree) {
    metadata.notes.emplace_back("the input's EXIF data is damaged, and left out");
    return;
  }
  if (tree->isDamaged()) {
    metadata.notes.emplace_back("damaged tags of the input's EXIF data are left out");
  }
  metadata.exif = std::move(*tree);
}

namespace {

[[noreturn]] void throwSystemError() {
  throw std::runtime_error(std::generic_category().message(errno));
}

}  // namespace

File openFile(const std::filesystem::path& path, const char* mode) {
  File file(std::fopen(path.c_str(), mode));
  if (file == nullptr) throwSystemError();
  return file;
}

void finishFile(File file) {
  const bool failed = std::ferror(file.get()) != 0;
  if (std::fclose(file.release()) != 0 || failed) throwSystemError();
}

}  // namespace radiashafts::standin
