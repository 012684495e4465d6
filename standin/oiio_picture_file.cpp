// Picture files through OpenImageIO.

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>
#include <type_traits>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include "standin/oiio_threads.h"
#include "standin/orientation.h"
#include "standin/partial_file.h"
#include "standin/picture_file.h"
#include "standin/word_scale.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;
using OIIO::ImageInput;
using OIIO::ImageOutput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

// When threads are scarce, keeps OpenEXR from starting its own pool, which is separate from the
// picture library's.
void limitLibraryThreads() {
  static const bool kept = threadsAreScarce() && OIIO::attribute("exr_threads", -1);
  static_cast<void>(kept);
}

struct OiioMetadata final : PictureMetadata {
  ImageSpec spec;
  bool hasFurtherPages = false;
};

[[noreturn]] void fail(const fs::path& path, const std::string& cause) {
  // Messages of the codec libraries may contain line breaks; the user gets one line.
  std::string line = cause;
  while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back()))) line.pop_back();
  std::replace(line.begin(), line.end(), '\n', ' ');
  throw PictureFileError(path.string() + ": " + line);
}

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

TypeDesc typeOf(int depth) {
  return depth == 8 ? TypeDesc::UINT8 : depth == 16 ? TypeDesc::UINT16 : TypeDesc::FLOAT;
}

// Replaces each colour value, on the file's scale, by combine(colour, alpha), with alpha from 0
// to 1. Integers are rounded and clamped to full scale. Pixels with alpha 0 are skipped.
template <class Sample, class Combine>
void combineWithAlpha(Picture& picture, double fullScale, const Combine& combine) {
  auto* pixel = reinterpret_cast<Sample*>(picture.bytes.data());
  const std::size_t pixels = picture.sampleCount() / static_cast<std::size_t>(picture.planes);
  for (std::size_t i = 0; i < pixels; ++i, pixel += picture.planes) {
    const double alpha = pixel[picture.colorPlanes] / fullScale;
    if (alpha == 0.0) continue;
    for (int k = 0; k < picture.colorPlanes; ++k) {
      const double value = combine(static_cast<double>(pixel[k]), alpha);
      if constexpr (std::is_integral_v<Sample>) {
        pixel[k] = static_cast<Sample>(std::min(value + 0.5, fullScale));
      } else {
        pixel[k] = static_cast<Sample>(value);
      }
    }
  }
}

template <class Combine>
void combineWithAlpha(Picture& picture, const Combine& combine) {
  switch (picture.depth) {
    case 8:
      return combineWithAlpha<std::uint8_t>(picture, 255.0, combine);
    case 16:
      return combineWithAlpha<std::uint16_t>(picture, 65535.0, combine);
    default:
      return combineWithAlpha<float>(picture, 1.0, combine);
  }
}

// Formats whose codecs read and write premultiplied alpha, even if unassociated alpha is requested.
bool codecPremultiplies(std::string_view format) {
  return format == "openexr" || format == "webp";
}

// Whether the colours read from this file are premultiplied. TIFF files have a tag for it.
bool isPremultiplied(std::string_view format, const ImageSpec& spec) {
  return codecPremultiplies(format) ||
         (format == "tiff" && spec.get_int_attribute("oiio:UnassociatedAlpha") == 0);
}

void divideByAlpha(Picture& picture) {
  combineWithAlpha(picture, [](double color, double alpha) { return color / alpha; });
}

// Premultiplies for the encoder. The WebP encoder divides by alpha^(1/2.2), although the decoder
// multiplies by alpha itself.
void multiplyByAlpha(Picture& picture, std::string_view format) {
  const double exponent = format == "webp" ? 1.0 / 2.2 : 1.0;
  combineWithAlpha(picture, [exponent](double color, double alpha) {
    return color * std::pow(alpha, exponent);
  });
}

// Sets size, depth and channels. Channels are in the hosts' order: colours, alpha, extra channels.
void setLayout(Picture& picture, const ImageSpec& spec) {
  picture.width = spec.width;
  picture.height = spec.height;
  picture.planes = spec.nchannels;
  picture.colorPlanes = spec.nchannels <= 2 ? 1 : 3;
  const auto firstExtraChannel = static_cast<std::size_t>(picture.colorPlanes);
  picture.hasAlpha =
      spec.nchannels > picture.colorPlanes &&
      (spec.alpha_channel == picture.colorPlanes || spec.channelnames.at(firstExtraChannel) == "A");
  picture.depth = depthOf(spec.format);
}

// Turns the picture as its file asks for; from then on the file's request is fulfilled.
void makeUpright(Picture& picture, ImageSpec& spec) {
  const int orientation = spec.get_int_attribute("Orientation", 1);
  turnUpright(picture, orientation);
  if (orientation == 1) return;
  spec.attribute("Orientation", 1);
  spec.full_x = spec.x = spec.full_y = spec.y = 0;
  spec.full_width = picture.width;
  spec.full_height = picture.height;
}

// The JPEG decoder pads a truncated file without an error. In a complete file the end marker
// follows the last scan; neither marker can occur inside scan data.
bool isTruncatedJpeg(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(stream)),
                          std::istreambuf_iterator<char>());
  const std::size_t lastScan = bytes.rfind("\xFF\xDA");
  return lastScan == std::string::npos || bytes.find("\xFF\xD9", lastScan) == std::string::npos;
}

// The extension by which the library selects a format; it cuts file names at a question mark.
std::string extensionOf(const fs::path& path) {
  const std::string extension = path.extension().string();
  return extension.substr(0, extension.find('?'));
}

// The usual extension of a format's files, with the dot.
std::string extensionOf(const ImageInput& input) {
  const std::string name = std::string(input.format_name()) + ':';
  for (const std::string& format :
       OIIO::Strutil::splits(OIIO::get_string_attribute("extension_list"), ";")) {
    if (format.rfind(name, 0) == 0) {
      return '.' + format.substr(name.size(), format.find(',') - name.size());
    }
  }
  return "";
}

// Opens a picture file, also one with a question mark in its name, for which every format is tried.
// On failure returns null; OIIO::geterror() has the reason.
std::unique_ptr<ImageInput> tryOpen(const fs::path& path) {
  ImageSpec config;
  config.attribute("oiio:UnassociatedAlpha", 1);
  const std::string name = path.string();
  if (name.find('?') == std::string::npos) return ImageInput::open(name, &config);
  const auto all = OIIO::Strutil::splits(OIIO::get_string_attribute("input_format_list"), ",");
  std::vector<std::string> formats{"x" + extensionOf(path)};
  formats.insert(formats.end(), all.begin(), all.end());
  for (const std::string& format : formats) {
    auto input = ImageInput::create(format);
    ImageSpec found;
    if (input != nullptr && input->open(name, found, config)) return input;
  }
  return nullptr;
}

// The codecs of HEIF and AVIF would wait for their threads forever.
void requireThreads(const fs::path& path, bool isHeif) {
  if (isHeif && threadsAreScarce()) {
    fail(path, "the system lets this process have too few threads for this format");
  }
}

// By its first bytes, which only a plain file gives twice.
bool isHeif(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return false;
  std::array<char, 8> start{};
  std::ifstream(path, std::ios::binary).read(start.data(), start.size());
  return std::string_view(start.data() + 4, 4) == "ftyp";
}

std::unique_ptr<ImageOutput> outputFor(const fs::path& path) {
  const std::string extension = path.extension().string();
  const bool truncated = extension != extensionOf(path);
  auto output = truncated || extension.empty() ? nullptr : ImageOutput::create("x" + extension);
  if (output == nullptr) {
    static_cast<void>(OIIO::geterror());
    fail(path, "no picture format that can be written has the extension '" + extension + "'");
  }
  requireThreads(path, std::string_view(output->format_name()) == "heif");
  return output;
}

std::unique_ptr<ImageInput> openInput(const fs::path& path, ImageSpec& spec) {
  std::error_code error;
  if (!fs::exists(path, error)) fail(path, "no such file");
  if (fs::is_directory(path, error)) fail(path, "is a directory");
  requireThreads(path, isHeif(path));
  auto input = tryOpen(path);
  if (input == nullptr) {
    const std::string reason = OIIO::geterror();
    const bool isUnknown = reason.empty() || reason.find("find a format reader") != reason.npos;
    fail(path, isUnknown ? "no picture of a format that can be read" : reason);
  }
  spec = input->spec();
  if (spec.width > hostapi::maximumSide || spec.height > hostapi::maximumSide) {
    fail(path, "a side of " + std::to_string(std::max(spec.width, spec.height)) +
                   " pixels is above the limit of 32767");
  }
  if (spec.depth > 1) fail(path, "is a volume, not a picture");
  if (std::string_view(input->format_name()) == "jpeg" && isTruncatedJpeg(path)) {
    fail(path, "the file is truncated");
  }
  return input;
}

// The output's spec: the input's metadata without the attributes that no longer apply.
ImageSpec outputSpec(const PictureFile& file, const ImageOutput& output) {
  const auto* metadata = dynamic_cast<const OiioMetadata*>(file.metadata.get());
  ImageSpec spec = metadata != nullptr ? metadata->spec : ImageSpec();
  const Picture& picture = file.picture;
  spec.width = spec.full_width = picture.width;
  spec.height = spec.full_height = picture.height;
  if (metadata != nullptr && output.supports("displaywindow")) {
    spec.full_width = metadata->spec.full_width;
    spec.full_height = metadata->spec.full_height;
  } else {
    spec.x = spec.y = spec.full_x = spec.full_y = 0;
  }
  if (!output.supports("tiles")) spec.tile_width = spec.tile_height = spec.tile_depth = 0;
  spec.channelformats.clear();
  spec.attribute("oiio:UnassociatedAlpha", 1);
  // Packed samples, such as 10-bit ones, were widened on reading.
  spec.erase_attribute("oiio:BitsPerSample");
  spec.erase_attribute("oiio:subimages");
  return spec;
}

// Drops the channels that the format cannot store and adds a note.
void dropChannels(Picture& picture, ImageSpec& spec, const ImageOutput& output,
                  const fs::path& path, std::vector<std::string>& notes) {
  int kept = picture.planes;
  if (picture.hasAlpha && !output.supports("alpha")) kept = picture.colorPlanes;
  if (!output.supports("nchannels")) {
    kept = std::min(kept, picture.colorPlanes + (picture.hasAlpha && output.supports("alpha")));
  }
  // The DPX encoder ends the program for any other number of channels.
  if (std::string_view(output.format_name()) == "dpx") {
    kept = std::min(kept, picture.colorPlanes + (picture.hasAlpha && picture.colorPlanes == 3));
  }
  if (kept == picture.planes) return;
  notes.push_back(path.string() + ": " + output.format_name() + " holds " + std::to_string(kept) +
                  " of the picture's " + std::to_string(picture.planes) +
                  " channels; the rest is left out");
  const std::size_t from = picture.pixelBytes();
  picture.planes = kept;
  const std::size_t to = picture.pixelBytes();
  const std::size_t pixels =
      static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
  for (std::size_t i = 0; i < pixels; ++i) {
    std::memmove(&picture.bytes[i * to], &picture.bytes[i * from], to);
  }
  picture.allocate();
  if (kept <= picture.colorPlanes) picture.hasAlpha = false;
  spec.nchannels = kept;
  spec.channelnames.resize(static_cast<std::size_t>(kept));
  if (!picture.hasAlpha) spec.alpha_channel = -1;
  if (spec.z_channel >= kept) spec.z_channel = -1;
}

void notePages(const PictureFile& file, const fs::path& path, std::vector<std::string>& notes) {
  const auto* metadata = dynamic_cast<const OiioMetadata*>(file.metadata.get());
  if (metadata != nullptr && metadata->hasFurtherPages) {
    notes.push_back(path.string() + ": holds the first of the input's pages alone");
  }
}

// Whether the encoder is lossless.
bool isExact(const ImageOutput& output) {
  constexpr std::string_view formats[] = {"bmp", "dpx", "fits", "iff",   "openexr", "png",
                                          "pnm", "rla", "sgi",  "targa", "tiff",    "zfile"};
  if (std::find(std::begin(formats), std::end(formats), output.format_name()) ==
      std::end(formats)) {
    return false;
  }
  const std::string_view compression = output.spec().get_string_attribute("compression");
  for (const std::string_view lossy : {"jpeg", "b44", "dwa", "pxr24"}) {
    if (compression.substr(0, lossy.size()) == lossy) return false;
  }
  return output.spec().get_string_attribute("tiff:ColorSpace") != "CMYK";
}

// Reads the file back strip by strip and, if the encoder is lossless, compares it with the picture:
// some encoders do not report a full disk.
bool contentMatches(ImageInput& input, const ImageOutput& output, const Picture& picture) {
  const ImageSpec& spec = input.spec();
  const TypeDesc type = output.spec().format;
  const bool exact = isExact(output);
  if (exact && (spec.width != picture.width || spec.height != picture.height ||
                spec.nchannels != picture.planes)) {
    return false;
  }
  const int rowsAtOnce = spec.tile_width == 0 ? 64 : spec.tile_height;
  const std::size_t rowSamples =
      static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
  std::vector<std::uint8_t> expected(rowSamples * type.size());  // one row
  std::vector<std::uint8_t> rows(expected.size() * static_cast<std::size_t>(rowsAtOnce));
  for (int y = 0; y < spec.height; y += rowsAtOnce) {
    const int end = std::min(y + rowsAtOnce, spec.height);
    const bool read =
        spec.tile_width == 0
            ? input.read_scanlines(0, 0, spec.y + y, spec.y + end, 0, 0, spec.nchannels, type,
                                   rows.data())
            : input.read_tiles(0, 0, spec.x, spec.x + spec.width, spec.y + y, spec.y + end, spec.z,
                               spec.z + 1, 0, spec.nchannels, type, rows.data());
    if (!read) {
      static_cast<void>(input.geterror());
      return false;
    }
    for (int row = y; exact && row < end; ++row) {
      OIIO::convert_pixel_values(typeOf(picture.depth),
                                 &picture.bytes[static_cast<std::size_t>(row) * picture.rowBytes()],
                                 type, expected.data(), static_cast<int>(rowSamples));
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

// Throws if the written file does not contain the picture. Adds notes for metadata that the format
// did not store.
void verify(const fs::path& written, const fs::path& path, const ImageOutput& output,
            const PictureFile& file, std::vector<std::string>& notes) {
  const auto input = tryOpen(written);
  if (input == nullptr || !contentMatches(*input, output, file.picture) ||
      !canAppendByte(written)) {
    static_cast<void>(OIIO::geterror());
    fail(path, "the written file does not hold the picture");
  }
  const ImageSpec& spec = input->spec();
  const auto noteLoss = [&](const char* what) {
    notes.push_back(path.string() + ": " + input->format_name() + " does not keep the " + what);
  };
  const auto* metadata = dynamic_cast<const OiioMetadata*>(file.metadata.get());
  if (metadata == nullptr) return;
  const ImageSpec& requested = metadata->spec;
  if (requested.find_attribute("ICCProfile") != nullptr &&
      spec.find_attribute("ICCProfile") == nullptr) {
    noteLoss("colour profile");
  }
}

// Lets an encoder write to memory instead of the disk: the JPEG encoder ends the program when the
// disk is full.
class MemoryFile {
 public:
  bool attachTo(ImageOutput& output) { return attached_ = output.set_ioproxy(&proxy_); }
  // Writes the encoded bytes to the path. Does nothing and returns true if not attached.
  bool writeTo(const fs::path& path) const {
    if (!attached_) return true;
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes_.data()),
                 static_cast<std::streamsize>(bytes_.size()));
    stream.close();
    return !stream.fail();
  }

 private:
  bool attached_ = false;
  std::vector<unsigned char> bytes_;
  OIIO::Filesystem::IOVecOutput proxy_{bytes_};
};

}  // namespace

PictureFile readPictureFile(const fs::path& path) {
  limitLibraryThreads();
  auto metadata = std::make_shared<OiioMetadata>();
  const auto input = openInput(path, metadata->spec);
  const ImageSpec& spec = metadata->spec;
  PictureFile file;
  setLayout(file.picture, spec);
  file.picture.allocate();
  if (!input->read_image(0, 0, 0, spec.nchannels, typeOf(file.picture.depth),
                         file.picture.bytes.data())) {
    fail(path, input->geterror());
  }
  if (file.picture.hasAlpha && isPremultiplied(input->format_name(), spec)) {
    divideByAlpha(file.picture);
  }
  rescaleWords(file.picture, hostWord);
  makeUpright(file.picture, metadata->spec);
  file.extension = path.has_extension() ? path.extension().string() : extensionOf(*input);
  metadata->hasFurtherPages = input->seek_subimage(1, 0);
  file.metadata = std::move(metadata);
  return file;
}

Mask readMaskFile(const fs::path& path) {
  limitLibraryThreads();
  ImageSpec spec;
  const auto input = openInput(path, spec);
  if (spec.nchannels != 1) fail(path, "a mask is a grey picture without alpha");
  Picture picture;
  picture.width = spec.width;
  picture.height = spec.height;
  picture.planes = picture.colorPlanes = 1;
  picture.allocate();
  if (!input->read_image(0, 0, 0, 1, TypeDesc::UINT8, picture.bytes.data())) {
    fail(path, input->geterror());
  }
  makeUpright(picture, spec);
  return {picture.width, picture.height, std::move(picture.bytes)};
}

void checkWritable(const fs::path& path, const Picture&) {
  if (const std::string reason = PartialFile::obstacle(path); !reason.empty()) fail(path, reason);
  outputFor(path);
}

WriteResult writePictureFile(const fs::path& path, PictureFile&& file,
                             const std::function<bool()>& aborted) {
  limitLibraryThreads();
  MemoryFile memory;
  PartialFile partial(path);
  const auto output = outputFor(path);
  WriteResult result;
  Picture& picture = file.picture;
  ImageSpec spec = outputSpec(file, *output);
  if (file.metadata == nullptr) {
    spec = ImageSpec(picture.width, picture.height, picture.planes, typeOf(picture.depth));
  }
  dropChannels(picture, spec, *output, path, result.notes);
  notePages(file, path, result.notes);
  const TypeDesc requested = spec.format;
  // For float samples the PNG encoder would choose 8 bits; 16 bits is its best depth.
  if (picture.depth == 32 && std::string_view(output->format_name()) == "png") {
    spec.set_format(TypeDesc::UINT16);
  }
  if (std::string_view(output->format_name()) == "jpeg") memory.attachTo(*output);
  if (!output->open(partial.path().string(), spec)) fail(path, output->geterror());
  if (output->spec().format != requested) {
    result.notes.push_back(path.string() + ": " + output->format_name() + " holds " +
                           output->spec().format.c_str() + " samples and not " + requested.c_str() +
                           "; the depth is changed");
  }

  rescaleWords(picture, fileWord);
  if (picture.hasAlpha && codecPremultiplies(output->format_name())) {
    multiplyByAlpha(picture, output->format_name());
  }
  const auto isCancelled = [](void* context, float) {
    return (*static_cast<const std::function<bool()>*>(context))();
  };
  const bool complete = output->write_image(
      typeOf(picture.depth), picture.bytes.data(), OIIO::AutoStride, OIIO::AutoStride,
      OIIO::AutoStride, isCancelled, const_cast<std::function<bool()>*>(&aborted));
  if (aborted()) return result;
  if (!complete || !output->close()) fail(path, output->geterror());
  if (!memory.writeTo(partial.path())) fail(path, "the written file does not hold the picture");
  verify(partial.path(), path, *output, file, result.notes);
  if (aborted()) return result;
  if (const std::string error = partial.renameToTarget(); !error.empty()) fail(path, error);
  result.written = true;
  return result;
}

}  // namespace radiashafts::standin
