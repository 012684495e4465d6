#include "standin/codecs/library_codec.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <type_traits>

#include <OpenImageIO/strutil.h>

#include "standin/codecs/exr_file.h"
#include "standin/codecs/layout.h"
#include "standin/codecs/tiff_tags.h"
#include "standin/oiio_threads.h"
#include "standin/orientation.h"

namespace radiashafts::standin {

namespace fs = std::filesystem;
using OIIO::ImageInput;
using OIIO::ImageOutput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

namespace {

int depthOf(const TypeDesc& format) {
  switch (format.basetype) {
    case TypeDesc::UINT8:
      return 8;
    case TypeDesc::UINT16:
      return 16;
    default:
      return 32;
  }
}

// The library cuts file names at a question mark.
bool hasQuestionMark(const std::string& name) {
  return name.find('?') != std::string::npos;
}

// Formats whose codecs read and write premultiplied alpha, even if unassociated alpha is requested.
bool codecPremultiplies(std::string_view format) {
  return format == "openexr" || format == "webp";
}

bool holdsPages(std::string_view format) {
  return format == "tiff" || format == "gif" || format == "openexr" || format == "webp";
}

// Whether the colours read from this file are premultiplied. TIFF files have a tag for it.
bool isPremultiplied(std::string_view format, const ImageSpec& spec) {
  return codecPremultiplies(format) ||
         (format == "tiff" && spec.get_int_attribute("oiio:UnassociatedAlpha") == 0);
}

// Sets size, depth and channels. Channels are in the hosts' order: colours, alpha, extra channels.
void setLayout(DecodedPicture& decoded, const ImageSpec& spec) {
  Picture& picture = decoded.picture;
  picture.width = spec.width;
  picture.height = spec.height;
  picture.planes = spec.nchannels;
  picture.colorPlanes = decoded.isCmyk ? 4 : spec.nchannels <= 2 ? 1 : 3;
  const auto firstExtraChannel = static_cast<std::size_t>(picture.colorPlanes);
  picture.hasAlpha =
      spec.nchannels > picture.colorPlanes &&
      (spec.alpha_channel == picture.colorPlanes || spec.channelnames.at(firstExtraChannel) == "A");
  picture.depth = depthOf(spec.format);
}

bool isTiff(const fs::path& path) {
  std::array<char, 4> start{};
  std::ifstream(path, std::ios::binary).read(start.data(), start.size());
  const std::string_view signature(start.data(), start.size());
  return signature == std::string_view("II*\0", 4) || signature == std::string_view("MM\0*", 4);
}

// A spec with the picture's size, channels and depth and what the input tells the library beside
// the tags of its metadata.
ImageSpec outputSpec(const EncodedPicture& encoded, const ImageOutput& output) {
  const Picture& picture = encoded.picture;
  const FileMetadata& metadata = encoded.metadata;
  ImageSpec spec(picture.width, picture.height, picture.planes, typeOf(picture.depth));
  spec.attribute("oiio:UnassociatedAlpha", 1);
  if (!picture.hasAlpha) spec.alpha_channel = -1;
  const auto* input = std::any_cast<ImageSpec>(&metadata.spec);
  const std::string_view format = output.format_name();
  if (input != nullptr) {
    if (depthOf(input->format) == picture.depth) spec.set_format(input->format);
    if (input->nchannels == picture.planes) {
      spec.channelnames = input->channelnames;
      spec.alpha_channel = input->alpha_channel;
      spec.z_channel = input->z_channel;
    }
    if (output.supports("tiles")) {
      spec.tile_width = input->tile_width;
      spec.tile_height = input->tile_height;
      spec.tile_depth = input->tile_depth;
    }
    if (output.supports("displaywindow")) {
      spec.x = input->x;
      spec.y = input->y;
      spec.full_x = input->full_x;
      spec.full_y = input->full_y;
      spec.full_width = input->full_width;
      spec.full_height = input->full_height;
    }
    for (const auto& attribute : input->extra_attribs) {
      const std::string_view name = attribute.name().string();
      constexpr std::string_view encoding[] = {"compression", "planarconfig", "tiff:RowsPerStrip",
                                               "tiff:zipquality"};
      const bool isEncoding =
          std::find(std::begin(encoding), std::end(encoding), name) != std::end(encoding);
      if (format != "tiff" || isEncoding) spec.extra_attribs.push_back(attribute);
    }
  }
  std::string compression = encoded.options.compression;
  if (compression.empty()) compression = spec.get_string_attribute("compression");
  if (encoded.options.quality) {
    compression.resize(std::min(compression.find(':'), compression.size()));
    compression += ':' + std::to_string(*encoded.options.quality);
  }
  if (!compression.empty()) spec.attribute("compression", compression);
  // Packed samples, such as 10-bit ones, were widened on reading.
  spec.erase_attribute("oiio:BitsPerSample");
  if (format == "dpx" && encoded.bits % 8 != 0) spec.attribute("oiio:BitsPerSample", encoded.bits);
  spec.erase_attribute("oiio:subimages");
  spec.erase_attribute("ICCProfile");
  // Without these the library writes the time, or bytes of chance.
  if (format == "tiff") spec.attribute("DateTime", "0000:00:00 00:00:00");
  if (format == "sgi" && spec.get_string_attribute("ImageDescription").empty()) {
    spec.attribute("ImageDescription", " ");
  }
  if (format == "tiff") return spec;
  if (!metadata.profile.empty()) {
    spec.attribute("ICCProfile",
                   TypeDesc(TypeDesc::UINT8, static_cast<int>(metadata.profile.size())),
                   metadata.profile.data());
  }
  if (metadata.density && metadata.density->unit != Density::none) {
    spec.attribute("XResolution", static_cast<float>(metadata.density->x));
    spec.attribute("YResolution", static_cast<float>(metadata.density->y));
    spec.attribute("ResolutionUnit", metadata.density->unit == Density::inch ? "in" : "cm");
  }
  return spec;
}

// Whether the encoder is lossless.
bool isExact(const ImageOutput& output) {
  constexpr std::string_view formats[] = {"bmp", "dpx", "fits",  "iff",  "png",  "pnm",
                                          "rla", "sgi", "targa", "tiff", "zfile"};
  if (std::find(std::begin(formats), std::end(formats), output.format_name()) ==
      std::end(formats)) {
    return false;
  }
  if (output.spec().get_int_attribute("oiio:BitsPerSample") % 8 != 0) return false;
  const std::string_view compression = output.spec().get_string_attribute("compression");
  return compression.substr(0, 4) != "jpeg";
}

// Compares strip by strip, where the file is to hold the picture unchanged.
bool contentMatches(ImageInput& input, const Picture& picture, const StoredSamples& stored) {
  const ImageSpec& spec = input.spec();
  if (stored.exact && (spec.width != picture.width || spec.height != picture.height ||
                       spec.nchannels != picture.planes)) {
    return false;
  }
  const int rowsAtOnce = spec.tile_width == 0 ? 64 : spec.tile_height;
  const std::size_t rowSamples =
      static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
  std::vector<std::uint8_t> expected(rowSamples * stored.type.size());  // one row
  std::vector<std::uint8_t> rows(expected.size() * static_cast<std::size_t>(rowsAtOnce));
  for (int y = 0; y < spec.height; y += rowsAtOnce) {
    const int end = std::min(y + rowsAtOnce, spec.height);
    const bool read =
        spec.tile_width == 0
            ? input.read_scanlines(input.current_subimage(), 0, spec.y + y, spec.y + end, 0, 0,
                                   spec.nchannels, stored.type, rows.data())
            : input.read_tiles(input.current_subimage(), 0, spec.x, spec.x + spec.width, spec.y + y,
                               spec.y + end, spec.z, spec.z + 1, 0, spec.nchannels, stored.type,
                               rows.data());
    if (!read) {
      static_cast<void>(input.geterror());
      return false;
    }
    for (int row = y; stored.exact && row < end; ++row) {
      OIIO::convert_pixel_values(typeOf(picture.depth),
                                 &picture.bytes[static_cast<std::size_t>(row) * picture.rowBytes()],
                                 stored.type, expected.data(), static_cast<int>(rowSamples));
      const std::uint8_t* const found = &rows[static_cast<std::size_t>(row - y) * expected.size()];
      if (std::memcmp(found, expected.data(), expected.size()) != 0) return false;
    }
  }
  return true;
}

// Some encoders do not report that the disk was full at the last bytes. In that case appending one
// more byte fails as well.
bool canAppendByte(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  std::ofstream stream(file, std::ios::binary | std::ios::app);
  stream.put('\0');
  stream.close();
  fs::resize_file(file, size, error);
  return !error && !stream.fail();
}

bool describesPicture(const ImageSpec& spec) {
  constexpr std::string_view prefixes[] = {
      "Exif:", "GPS:", "IPTC:", "xmp:", "Make", "Model", "ExposureTime"};
  return std::any_of(
      spec.extra_attribs.begin(), spec.extra_attribs.end(), [&](const auto& attribute) {
        return std::any_of(std::begin(prefixes), std::end(prefixes), [&](std::string_view prefix) {
          return attribute.name().string().starts_with(prefix);
        });
      });
}

}  // namespace

TypeDesc typeOf(int depth) {
  return depth == 8 ? TypeDesc::UINT8 : depth == 16 ? TypeDesc::UINT16 : TypeDesc::FLOAT;
}

void limitLibraryThreads() {
  static const bool kept = threadsAreScarce() && OIIO::attribute("exr_threads", -1);
  static_cast<void>(kept);
}

// For a file with a question mark in its name every format is tried.
std::unique_ptr<ImageInput> tryOpen(const fs::path& path, bool rawColor) {
  ImageSpec config;
  config.attribute("oiio:UnassociatedAlpha", 1);
  if (rawColor) config.attribute("oiio:RawColor", 1);
  const std::string name = path.string();
  if (!hasQuestionMark(name)) return ImageInput::open(name, &config);
  const std::string extension = path.extension().string();
  const auto all = OIIO::Strutil::splits(OIIO::get_string_attribute("input_format_list"), ",");
  std::vector<std::string> formats{"x" + extension.substr(0, extension.find('?'))};
  formats.insert(formats.end(), all.begin(), all.end());
  for (const std::string& format : formats) {
    auto input = ImageInput::create(format);
    ImageSpec found;
    if (input != nullptr && input->open(name, found, config)) return input;
  }
  return nullptr;
}

std::string usualExtension(const std::string& format) {
  const std::string name = format + ':';
  for (const std::string& extensions :
       OIIO::Strutil::splits(OIIO::get_string_attribute("extension_list"), ";")) {
    if (extensions.rfind(name, 0) == 0) {
      return '.' + extensions.substr(name.size(), extensions.find(',') - name.size());
    }
  }
  return "";
}

DecodedPicture decodeWithLibrary(const fs::path& path, int page) {
  DecodedPicture decoded;
  FileMetadata& metadata = *decoded.metadata;
  const int index = std::max(page - 1, 0);
  std::error_code error;
  if (fs::is_regular_file(path, error) && isTiff(path)) {
    decoded.isCmyk = readTiffTags(path, index, metadata);
  }
  const auto input = tryOpen(path, decoded.isCmyk);
  if (input == nullptr) {
    const std::string reason = OIIO::geterror();
    const bool isUnknown = reason.empty() || reason.find("find a format reader") != reason.npos;
    throw std::runtime_error(isUnknown ? "no picture of a format that can be read" : reason);
  }
  if (page > 0 && !holdsPages(input->format_name())) throw std::runtime_error(noPages);
  if (!input->seek_subimage(index, 0)) {
    static_cast<void>(input->geterror());
    throw std::runtime_error("has no page " + std::to_string(page));
  }
  ImageSpec spec = input->spec();
  checkSides(static_cast<unsigned>(spec.width), static_cast<unsigned>(spec.height));
  if (spec.deep) throw std::runtime_error("holds deep samples, several for each pixel");
  if (std::string_view(spec.get_string_attribute("tiff:ColorSpace")).ends_with("LAB")) {
    throw std::runtime_error("has its colours in Lab, which cannot be read; save it as RGB");
  }
  if (spec.depth > 1) throw std::runtime_error("is a volume, not a picture");
  setLayout(decoded, spec);
  decoded.picture.allocate();
  if (!input->read_image(index, 0, 0, spec.nchannels, typeOf(decoded.picture.depth),
                         decoded.picture.bytes.data())) {
    throw std::runtime_error(input->geterror());
  }
  metadata.format = input->format_name();
  if (metadata.format == exrFormat) metadata.exrHeader = readExrHeader(path, index);
  metadata.bits = spec.format == TypeDesc::HALF ? 16 : spec.get_int_attribute("oiio:BitsPerSample");
  decoded.isPremultiplied = decoded.picture.hasAlpha && isPremultiplied(metadata.format, spec);
  decoded.orientation = spec.get_int_attribute("Orientation", 1);
  if (const auto* profile = spec.find_attribute("ICCProfile");
      metadata.profile.empty() && profile) {
    metadata.profile.assign(static_cast<const char*>(profile->data()), profile->datasize());
  }
  const bool isCarried = metadata.exrHeader.has_value() || !metadata.exif.empty();
  if (!isCarried && describesPicture(spec)) {
    metadata.notes.emplace_back("the input's EXIF, IPTC and XMP data are left out");
  }
  metadata.hasNextPage = input->seek_subimage(index + 1, 0);
  if (decoded.orientation != 1) {
    spec.attribute("Orientation", 1);
    spec.full_x = spec.x = spec.full_y = spec.y = 0;
    spec.full_width = swapsSides(decoded.orientation) ? spec.height : spec.width;
    spec.full_height = swapsSides(decoded.orientation) ? spec.width : spec.height;
  }
  metadata.spec = std::move(spec);
  return decoded;
}

std::unique_ptr<ImageOutput> outputFor(std::string_view extension) {
  if (extension.empty() || hasQuestionMark(std::string(extension))) return nullptr;
  auto output = ImageOutput::create("x" + std::string(extension));
  if (output == nullptr) static_cast<void>(OIIO::geterror());
  return output;
}

int keptPlanes(const Picture& picture, const ImageOutput& output) {
  int kept = picture.planes;
  if (picture.hasAlpha && !output.supports("alpha")) kept = picture.colorPlanes;
  if (!output.supports("nchannels")) {
    kept = std::min(kept, picture.colorPlanes + (picture.hasAlpha && output.supports("alpha")));
  }
  // The DPX encoder ends the program for any other number of channels.
  if (std::string_view(output.format_name()) == "dpx") {
    kept = std::min(kept, picture.colorPlanes + (picture.hasAlpha && picture.colorPlanes == 3));
  }
  return kept;
}

StoredSamples encodeWithLibrary(ImageOutput& output, const fs::path& path,
                                const EncodedPicture& encoded, Picture& picture) {
  const ImageSpec spec = outputSpec(encoded, output);
  const std::string format = output.format_name();
  const auto mode = encoded.page == 0 ? ImageOutput::Create : ImageOutput::AppendSubimage;
  if (!output.open(path.string(), spec, mode)) throw std::runtime_error(output.geterror());
  const TypeDesc stored = output.spec().format;
  const bool holdsAll = stored == TypeDesc::HALF && picture.depth == 8;
  if (stored != spec.format && !holdsAll) {
    encoded.notes.push_back(format + " holds " + stored.c_str() + " samples and not " +
                            spec.format.c_str() + "; the depth is changed");
  }
  if (picture.hasAlpha && codecPremultiplies(format)) multiplyByAlpha(picture);
  const auto isCancelled = [](void* context, float) {
    return (*static_cast<const std::function<bool()>*>(context))();
  };
  const bool complete = output.write_image(
      typeOf(picture.depth), picture.bytes.data(), OIIO::AutoStride, OIIO::AutoStride,
      OIIO::AutoStride, isCancelled, const_cast<std::function<bool()>*>(&encoded.aborted));
  if (!complete && !encoded.aborted()) throw std::runtime_error(output.geterror());
  return {stored, isExact(output)};
}

// The library puts the temporary file's name into the header.
void clearNameInDpx(const fs::path& path) {
  constexpr std::streamoff nameAt = 36;
  constexpr std::size_t nameSize = 100;
  std::fstream stream(path, std::ios::binary | std::ios::in | std::ios::out);
  stream.seekp(nameAt);
  stream.write(std::string(nameSize, '\0').data(), nameSize);
  stream.close();
  if (stream.fail()) throw std::runtime_error("its header cannot be written");
}

void finishWithLibrary(ImageOutput& output, const fs::path& path,
                       const std::vector<FileMetadata>& pages, std::vector<std::string>& notes) {
  const std::string_view format = output.format_name();
  if (!output.close()) throw std::runtime_error(output.geterror());
  if (format == "dpx") clearNameInDpx(path);
  for (int page = 0; format == "tiff" && page < static_cast<int>(pages.size()); ++page) {
    const TagsWritten written = writeTiffTags(path, page, pages[static_cast<std::size_t>(page)]);
    if (written == TagsWritten::failed) throw std::runtime_error("its tags cannot be written");
    if (written == TagsWritten::fileTooLarge) {
      notes.emplace_back("a file above 4 GB keeps neither profile nor other metadata");
      return;
    }
  }
}

ImageSpec verify(const fs::path& path, int page, const Picture& picture,
                 const StoredSamples& stored) {
  const auto input = tryOpen(path);
  if (input == nullptr || !input->seek_subimage(page, 0) ||
      !contentMatches(*input, picture, stored) || !canAppendByte(path)) {
    static_cast<void>(OIIO::geterror());
    throw std::runtime_error("the written file does not hold the picture");
  }
  return input->spec();
}

}  // namespace radiashafts::standin
