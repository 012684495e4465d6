#include "standin/codecs/exr_file.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>

#include <Iex.h>
#include <ImfChannelList.h>
#include <ImfFloatAttribute.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfIntAttribute.h>
#include <ImfMultiPartInputFile.h>
#include <ImfOutputFile.h>
#include <ImfPartType.h>
#include <ImfStandardAttributes.h>
#include <ImfStringAttribute.h>
#include <ImfTiledOutputFile.h>
#include <ImfVecAttribute.h>
#include <OpenImageIO/tiffutils.h>
#include <half.h>

#include "standin/codecs/layout.h"

namespace radiashafts::standin {
namespace {

using OIIO::ImageSpec;
using OIIO::TypeDesc;
using HeaderPointer = std::shared_ptr<const Imf::Header>;

constexpr char orientationName[] = "Orientation";
constexpr char softwareName[] = "Software";

// What the picture library calls a standard attribute that it has from another format.
const char* attributeName(const std::string& name) {
  constexpr std::pair<std::string_view, const char*> names[] = {{"DateTime", "capDate"},
                                                                {"Copyright", "owner"},
                                                                {"ImageDescription", "comments"},
                                                                {"ExposureTime", "expTime"},
                                                                {"FNumber", "aperture"}};
  for (const auto& [usual, own] : names) {
    if (name == usual) return own;
  }
  return name.c_str();
}

// Whether the attribute says something of the picture, and not how another format stores it.
bool describesPicture(const std::string& name) {
  constexpr std::string_view encoding[] = {"ICCProfile",       "ResolutionUnit", "XResolution",
                                           "YResolution",      "compression",    "planarconfig",
                                           "PixelAspectRatio", orientationName};
  if (std::find(std::begin(encoding), std::end(encoding), name) != std::end(encoding)) return false;
  const bool hasPrefix = name.find(':') != std::string::npos;
  return !hasPrefix || name.starts_with("Exif:") || name.starts_with("GPS:");
}

bool isWhole(int type) {
  return type == TypeDesc::INT || type == TypeDesc::UINT || type == TypeDesc::UINT16;
}

void insertAttributes(Imf::Header& header, const ImageSpec& spec) {
  for (const auto& attribute : spec.extra_attribs) {
    const std::string name = attribute.name().string();
    const TypeDesc type = attribute.type();
    if (name == "smpte:TimeCode" && type.basetype == TypeDesc::UINT && type.basevalues() == 2) {
      const auto* bits = static_cast<const unsigned*>(attribute.data());
      Imf::addTimeCode(header, Imf::TimeCode(bits[0], bits[1]));
    } else if (!describesPicture(name) || header.find(attributeName(name)) != header.end()) {
      continue;
    } else if (type == TypeDesc::STRING) {
      header.insert(attributeName(name), Imf::StringAttribute(attribute.get_string()));
    } else if (type == TypeDesc::FLOAT) {
      header.insert(attributeName(name), Imf::FloatAttribute(attribute.get_float()));
    } else if (type.basetype == TypeDesc::FLOAT && type.basevalues() == 3) {
      const auto* numbers = static_cast<const float*>(attribute.data());
      header.insert(name, Imf::V3fAttribute({numbers[0], numbers[1], numbers[2]}));
    } else if (type.basevalues() == 1 && isWhole(type.basetype)) {
      header.insert(attributeName(name), Imf::IntAttribute(attribute.get_int()));
    }
  }
}

Imath::Box2i boxOf(int x, int y, int width, int height) {
  return {{x, y}, {x + width - 1, y + height - 1}};
}

// For a picture of another format.
Imf::Header newHeader(const EncodedPicture& encoded) {
  const FileMetadata& metadata = encoded.metadata;
  const Picture& picture = encoded.picture;
  Imf::Header header(picture.width, picture.height);
  ImageSpec spec;
  if (const auto* read = std::any_cast<ImageSpec>(&metadata.spec)) {
    spec = *read;
    header.dataWindow() = boxOf(spec.x, spec.y, picture.width, picture.height);
    header.displayWindow() = boxOf(spec.full_x, spec.full_y, spec.full_width, spec.full_height);
    header.pixelAspectRatio() = spec.get_float_attribute("PixelAspectRatio", 1.0F);
  } else if (!metadata.exif.empty()) {
    OIIO::decode_exif(metadata.exif.block(), spec);
  }
  insertAttributes(header, spec);
  constexpr double centimetresOfInch = 2.54;
  if (const auto& density = metadata.density; density && density->unit != Density::none) {
    const double scale = density->unit == Density::inch ? 1.0 : centimetresOfInch;
    Imf::addXDensity(header, static_cast<float>(density->x * scale));
    header.pixelAspectRatio() = static_cast<float>(density->x / density->y);
  }
  return header;
}

// The input's header without what a filtered picture makes untrue.
Imf::Header headerFor(const EncodedPicture& encoded) {
  const auto* read = std::any_cast<HeaderPointer>(&encoded.metadata.exrHeader);
  Imf::Header header = read != nullptr ? **read : newHeader(encoded);
  for (const char* name : {"chunkCount", "name", "preview", "type", "version"}) header.erase(name);
  if (encoded.metadata.colorsConverted) header.erase("chromaticities");
  if (auto* software = header.findTypedAttribute<Imf::StringAttribute>(softwareName)) {
    software->value() = "Radiashafts " RADIASHAFTS_VERSION;
  }
  auto* orientation = header.findTypedAttribute<Imf::IntAttribute>(orientationName);
  if (orientation != nullptr && orientation->value() != 1) {  // it has been turned upright
    orientation->value() = 1;
    header.dataWindow() = boxOf(0, 0, encoded.picture.width, encoded.picture.height);
    header.displayWindow() = header.dataWindow();
  }
  if (header.hasTileDescription() && header.tileDescription().mode != Imf::ONE_LEVEL) {
    header.tileDescription().mode = Imf::ONE_LEVEL;
    encoded.notes.emplace_back("the smaller levels of the picture are left out");
  }
  return header;
}

void setCompression(Imf::Header& header, const EncodingOptions& options) {
  constexpr std::pair<std::string_view, Imf::Compression> names[] = {
      {"none", Imf::NO_COMPRESSION},   {"rle", Imf::RLE_COMPRESSION},
      {"zips", Imf::ZIPS_COMPRESSION}, {"zip", Imf::ZIP_COMPRESSION},
      {"piz", Imf::PIZ_COMPRESSION},   {"pxr24", Imf::PXR24_COMPRESSION},
      {"b44", Imf::B44_COMPRESSION},   {"b44a", Imf::B44A_COMPRESSION},
      {"dwaa", Imf::DWAA_COMPRESSION}, {"dwab", Imf::DWAB_COMPRESSION}};
  for (const auto& [name, compression] : names) {
    if (name == options.compression) header.compression() = compression;
  }
  const bool isDwa = header.compression() >= Imf::DWAA_COMPRESSION;
  if (isDwa && options.quality) {
    header.dwaCompressionLevel() = static_cast<float>(*options.quality);
  }
}

struct Channel {
  std::string name;
  Imf::PixelType type;
};

// In the picture's order.
std::vector<Channel> channelsFor(const EncodedPicture& encoded, const Imf::Header& header) {
  const Picture& picture = encoded.picture;
  const auto planes = static_cast<std::size_t>(picture.planes);
  constexpr int halfBits = 16;
  const bool wantsHalf = encoded.options.depth ? encoded.bits <= halfBits : picture.depth != 32;
  const Imf::PixelType type = wantsHalf ? Imf::HALF : Imf::FLOAT;
  std::vector<Channel> channels;
  const auto* spec = std::any_cast<ImageSpec>(&encoded.metadata.spec);
  if (spec != nullptr && spec->channelnames.size() == planes) {
    for (const std::string& name : spec->channelnames) channels.push_back({name, type});
  } else {
    ImageSpec usual(1, 1, picture.planes, TypeDesc::FLOAT);
    if (picture.colorPlanes == 1) usual.channelnames[0] = "Y";
    if (picture.hasAlpha) {
      usual.channelnames[static_cast<std::size_t>(picture.colorPlanes)] = "A";
    }
    for (const std::string& name : usual.channelnames) channels.push_back({name, type});
  }
  for (Channel& channel : channels) {
    const Imf::Channel* read = header.channels().findChannel(channel.name);
    const bool keepsType = !encoded.options.depth || (read != nullptr && read->type == Imf::UINT);
    if (read != nullptr && keepsType) channel.type = read->type;
  }
  return channels;
}

float* samplesOf(Picture& picture) {
  return reinterpret_cast<float*>(picture.bytes.data());
}

// A NaN has many forms, of which conversions keep one.
float roundedToHalf(float sample) {
  return std::isnan(sample) ? std::numeric_limits<float>::quiet_NaN()
                            : static_cast<float>(half(sample));
}

// The picture library reads whole numbers as shares of the highest one.
unsigned wholeNumber(float share) {
  constexpr double highest = std::numeric_limits<unsigned>::max();
  const double number = std::round(static_cast<double>(share) * highest);
  return number >= 0.0 ? static_cast<unsigned>(std::min(number, highest)) : 0U;
}

// The samples of one channel of whole numbers; the others are taken from the picture.
struct WholeChannel {
  std::size_t plane;
  std::vector<unsigned> samples;
};

std::vector<WholeChannel> wholeChannels(Picture& picture, const std::vector<Channel>& channels,
                                        std::vector<std::string>& notes) {
  constexpr unsigned highestExact = 1U << 24;  // of the floats that a picture holds
  std::vector<WholeChannel> whole;
  const std::size_t planes = channels.size();
  for (std::size_t plane = 0; plane < planes; ++plane) {
    if (channels[plane].type != Imf::UINT) continue;
    WholeChannel& channel = whole.emplace_back(WholeChannel{plane, {}});
    for (std::size_t i = plane; i < picture.sampleCount(); i += planes) {
      channel.samples.push_back(wholeNumber(samplesOf(picture)[i]));
    }
    if (*std::max_element(channel.samples.begin(), channel.samples.end()) > highestExact) {
      notes.push_back("whole numbers above 16777216 are rounded in the channel " +
                      channels[plane].name);
    }
  }
  return whole;
}

// The halves of all half channels, at the same places as the picture's samples.
std::vector<half> halvesOf(Picture& picture, const std::vector<Channel>& channels) {
  const bool hasHalves = std::any_of(channels.begin(), channels.end(), [](const Channel& channel) {
    return channel.type == Imf::HALF;
  });
  if (!hasHalves) return {};
  std::vector<half> halves(picture.sampleCount());
  float* const samples = samplesOf(picture);
  for (std::size_t i = 0; i < halves.size(); ++i) {
    if (channels[i % channels.size()].type != Imf::HALF) continue;
    samples[i] = roundedToHalf(samples[i]);
    halves[i] = half(samples[i]);
  }
  return halves;
}

// Writes 64 rows, or one row of tiles, at a time.
void writePixels(const std::filesystem::path& path, const Imf::Header& header,
                 const Imf::FrameBuffer& frame, const std::function<bool()>& aborted) {
  if (header.hasTileDescription()) {
    Imf::TiledOutputFile file(path.c_str(), header);
    file.setFrameBuffer(frame);
    for (int y = 0; y < file.numYTiles() && !aborted(); ++y) {
      const int row = header.lineOrder() == Imf::DECREASING_Y ? file.numYTiles() - 1 - y : y;
      file.writeTiles(0, file.numXTiles() - 1, row, row);
    }
    return;
  }
  Imf::OutputFile file(path.c_str(), header);
  file.setFrameBuffer(frame);
  constexpr int rowsAtOnce = 64;
  const int height = header.dataWindow().max.y - header.dataWindow().min.y + 1;
  for (int y = 0; y < height && !aborted(); y += rowsAtOnce) {
    file.writePixels(std::min(rowsAtOnce, height - y));
  }
}

// The library's exceptions are of a class of their own.
template <class Work>
auto withUsualErrors(const Work& work) {
  try {
    return work();
  } catch (const Iex::BaseExc& error) {
    throw std::runtime_error(error.what());
  }
}

bool isLossless(Imf::Compression compression) {
  return compression <= Imf::PIZ_COMPRESSION;
}

StoredSamples encode(const std::filesystem::path& path, const EncodedPicture& encoded,
                     Picture& picture) {
  Imf::Header header = headerFor(encoded);
  setCompression(header, encoded.options);
  const std::vector<Channel> channels = channelsFor(encoded, header);
  if (picture.depth == 16 && !encoded.options.depth) {
    encoded.notes.emplace_back("openexr holds half samples and not uint16; the depth is changed");
  }
  if (picture.depth != 32) convertDepth(picture, 32);
  if (picture.hasAlpha) multiplyByAlpha(picture);

  std::vector<half> halves = halvesOf(picture, channels);
  std::vector<WholeChannel> whole = wholeChannels(picture, channels, encoded.notes);
  header.channels() = Imf::ChannelList();
  Imf::FrameBuffer frame;
  // Adds a channel whose pixels are so many samples apart.
  const auto add = [&](const Channel& channel, auto* first, std::size_t apart) {
    header.channels().insert(channel.name, Imf::Channel(channel.type));
    const std::size_t step = apart * sizeof *first;
    frame.insert(channel.name, Imf::Slice::Make(channel.type, first, header.dataWindow(), step,
                                                step * static_cast<std::size_t>(picture.width)));
  };
  for (std::size_t plane = 0; plane < channels.size(); ++plane) {
    const Channel& channel = channels[plane];
    if (channel.type == Imf::HALF) add(channel, &halves[plane], channels.size());
    if (channel.type == Imf::FLOAT) add(channel, samplesOf(picture) + plane, channels.size());
  }
  for (WholeChannel& channel : whole) add(channels[channel.plane], channel.samples.data(), 1);
  writePixels(path, header, frame, encoded.aborted);
  return {TypeDesc::FLOAT, isLossless(header.compression()) && whole.empty()};
}

}  // namespace

std::any readExrHeader(const std::filesystem::path& path, int part) {
  return withUsualErrors([&]() -> std::any {
    const Imf::MultiPartInputFile file(path.c_str());
    return HeaderPointer(std::make_shared<Imf::Header>(file.header(part)));
  });
}

StoredSamples encodeExr(const std::filesystem::path& path, const EncodedPicture& encoded,
                        Picture& picture) {
  return withUsualErrors([&] { return encode(path, encoded, picture); });
}

}  // namespace radiashafts::standin
