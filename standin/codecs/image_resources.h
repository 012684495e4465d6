// The list of resources that JPEG and TIFF files keep IPTC data in.
#pragma once

#include <string>
#include <string_view>

namespace radiashafts::standin {

struct ImageResources {
  std::string iptc;
  std::string others;    // the list without the IPTC data and without thumbnails
  bool damaged = false;  // the list ends early
};

ImageResources splitImageResources(std::string_view list);
std::string joinImageResources(const ImageResources& resources);

}  // namespace radiashafts::standin
