#include "standin/codecs/image_resources.h"

#include <cstdint>

namespace radiashafts::standin {
namespace {

enum ResourceId : unsigned {
  resourceIptc = 0x0404,
  resourceThumbnail = 0x040C,
  oldThumbnail = 0x0409
};

constexpr std::string_view signature = "8BIM";

std::size_t bigEndian(std::string_view bytes, std::size_t at, std::size_t size) {
  std::size_t number = 0;
  for (std::size_t i = 0; i < size; ++i) {
    number = number << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  }
  return number;
}

constexpr std::size_t even(std::size_t size) {
  return size + size % 2;
}

}  // namespace

// A resource: signature, number, a name with its length, the data's length, the data. Name and data
// are padded to an even size.
ImageResources splitImageResources(std::string_view list) {
  ImageResources resources;
  while (list.size() > signature.size()) {
    constexpr std::size_t nameAt = 6;
    const std::size_t nameSize =
        list.size() > nameAt ? even(1 + bigEndian(list, nameAt, 1)) : list.size();
    const std::size_t dataAt = nameAt + nameSize + 4;
    const std::size_t size = dataAt <= list.size() ? bigEndian(list, dataAt - 4, 4) : list.size();
    if (dataAt > list.size() || size > list.size() - dataAt) {
      resources.damaged = true;
      break;
    }
    const std::size_t end = std::min(dataAt + even(size), list.size());
    const std::size_t id = bigEndian(list, 4, 2);
    if (id == resourceIptc && list.substr(0, 4) == signature) {
      resources.iptc = list.substr(dataAt, size);
    } else if (id != resourceThumbnail && id != oldThumbnail) {
      resources.others += list.substr(0, end);
    }
    list.remove_prefix(end);
  }
  return resources;
}

std::string joinImageResources(const ImageResources& resources) {
  if (resources.iptc.empty()) return resources.others;
  std::string list(signature);
  list += {resourceIptc >> 8, resourceIptc & 0xFF, 0, 0};
  for (int shift = 24; shift >= 0; shift -= 8) {
    list += static_cast<char>(resources.iptc.size() >> shift & 0xFF);
  }
  list += resources.iptc;
  list.resize(even(list.size()));
  return list + resources.others;
}

}  // namespace radiashafts::standin
