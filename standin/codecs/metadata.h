// What picture files hold beside the pixels.
#pragma once

#include <any>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "standin/codecs/image_resources.h"
#include "standin/codecs/tag_tree.h"
#include "standin/picture_file.h"

namespace radiashafts::standin {

// Pixels per unit of length; without a unit only their ratio means something.
struct Density {
  enum Unit { none, inch, centimetre };
  double x = 0.0;
  double y = 0.0;
  Unit unit = none;
};

// A PNG text. A JPEG comment is one with this keyword.
inline constexpr char commentKeyword[] = "Comment";
struct PictureText {
  std::string keyword;
  std::string text;
  int compression = -1;  // as in libpng: Latin-1 below 1, UTF-8 from 1 on
  std::string language, translatedKeyword;
};

// How a JPEG file was encoded: for each component its sampling and quantisation.
struct JpegEncoding {
  struct Component {
    int horizontal;
    int vertical;
    std::array<std::uint16_t, 64> quantisation;
  };
  std::vector<Component> components;
  bool progressive = false;
  bool hasJfifHeader = true;
};

struct FileMetadata final : PictureMetadata {
  std::string format;  // that was read, by the library's name
  TagTree exif;
  ImageResources resources;
  std::string xmp;
  std::vector<std::string> xmpExtensions;  // JPEG's, with their header
  std::string profile;                     // ICC
  std::optional<Density> density;
  std::vector<PictureText> texts;
  std::vector<std::pair<std::string, std::string>> carriedChunks;  // PNG's, by name
  std::optional<JpegEncoding> jpeg;
  bool lossless = false;  // WebP
  int bits = 0;           // of a sample, where it is neither 8, 16 nor 32
  std::any nclx;          // HEIF's numbers for a colour space
  std::any exrHeader;     // OpenEXR's attributes
  std::any spec;          // of a file that the picture library read
  bool colorsConverted = false;
  bool hasNextPage = false;
  std::vector<std::string> notes;  // what is left out already
};

}  // namespace radiashafts::standin
