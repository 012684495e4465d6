#include "standin/codecs/tiff_tags.h"

#include <algorithm>
#include <fstream>

namespace radiashafts::standin {
namespace {

// Tags that tell how the pixels are stored, or belong to other pictures in the file.
bool describesPixels(std::uint16_t id) {
  constexpr std::uint16_t stored[] = {
      254, 255, 256, 257, 258, 259, 262, 263, 264, 265, 266, 273, 277,  278, 279, 280,
      281, 284, 288, 289, 290, 291, 292, 293, 297, 301, 317, 320, 321,  322, 323, 324,
      325, 326, 327, 328, 330, 332, 333, 334, 336, 338, 339, 340, 341,  342, 347, 512,
      513, 514, 515, 517, 518, 519, 520, 521, 529, 530, 531, 532, 37724};
  return std::binary_search(std::begin(stored), std::end(stored), id);
}

}  // namespace

bool readTiffTags(const std::filesystem::path& path, int page, FileMetadata& metadata) {
  std::ifstream stream(path, std::ios::binary);
  auto tree = TagTree::read(stream, page);
  if (!tree) return false;
  if (tree->isDamaged()) metadata.notes.emplace_back("damaged tags of the input are left out");
  constexpr double separated = 5.0;
  const bool isCmyk = tree->number(tagPhotometric) == separated;
  metadata.xmp = tree->take(tagXmp);
  metadata.profile = tree->take(tagProfile);
  metadata.resources = splitImageResources(tree->take(tagImageResources));
  if (std::string iptc = tree->take(tagIptc); !iptc.empty()) metadata.resources.iptc = iptc;
  const auto x = tree->number(tagXResolution);
  const auto y = tree->number(tagYResolution);
  if (x && y) {
    constexpr Density::Unit units[] = {Density::none, Density::inch, Density::centimetre};
    const double unit = tree->number(tagResolutionUnit).value_or(2.0);
    metadata.density = Density{
        *x, *y,
        unit >= 1.0 && unit <= 3.0 ? units[static_cast<std::size_t>(unit) - 1] : Density::inch};
  }
  tree->eraseIf(describesPixels);
  metadata.exif = std::move(*tree);
  return isCmyk;
}

TagsWritten writeTiffTags(const std::filesystem::path& path, int page,
                          const FileMetadata& metadata) {
  std::fstream stream(path, std::ios::binary | std::ios::in | std::ios::out);
  auto tree = TagTree::read(stream, page);
  if (!tree) return TagsWritten::fileTooLarge;
  stream.clear();
  stream.seekg(0, std::ios::end);
  const auto size = static_cast<std::uint64_t>(stream.tellg());
  tree->eraseIf([](std::uint16_t id) { return !describesPixels(id); });
  TagTree described = metadata.exif;
  described.eraseIf(describesPixels);
  tree->merge(std::move(described));
  if (metadata.density && tree->find(tagXResolution) == nullptr) {
    tree->setRatio(tagXResolution, metadata.density->x);
    tree->setRatio(tagYResolution, metadata.density->y);
    tree->setNumber(tagResolutionUnit, typeShort,
                    static_cast<std::uint32_t>(metadata.density->unit) + 1);
  }
  const auto set = [&](std::uint16_t id, std::uint16_t type, const std::string& bytes) {
    if (!bytes.empty()) tree->setBytes(id, type, bytes);
  };
  set(tagXmp, typeByte, metadata.xmp);
  set(tagIptc, typeUndefined, metadata.resources.iptc);
  set(tagImageResources, typeByte, metadata.resources.others);
  set(tagProfile, typeUndefined, metadata.profile);
  std::string added;
  const std::uint32_t directory = tree->append(added, size, tree->next());
  if (size + added.size() > UINT32_MAX) return TagsWritten::fileTooLarge;
  stream.seekp(0, std::ios::end);
  stream.write(added.data(), static_cast<std::streamsize>(added.size()));
  stream.seekp(tree->pointerAt());
  const std::string offset = tree->bytesOf(directory);
  stream.write(offset.data(), static_cast<std::streamsize>(offset.size()));
  stream.close();
  return stream.fail() ? TagsWritten::failed : TagsWritten::done;
}

}  // namespace radiashafts::standin
