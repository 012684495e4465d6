// Picture files: what is the same for all formats.

#include "standin/picture_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <map>
#include <sstream>

#include <OpenImageIO/imageio.h>

#include "standin/codecs/codec.h"
#include "standin/codecs/color_profile.h"
#include "standin/codecs/exr_file.h"
#include "standin/codecs/kept_metadata.h"
#include "standin/codecs/layout.h"
#include "standin/codecs/library_codec.h"
#include "standin/oiio_threads.h"
#include "standin/orientation.h"
#include "standin/partial_file.h"
#include "standin/word_scale.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

const Codec* const codecs[] = {&jpegCodec, &pngCodec, &webpCodec, &heifCodec};

[[noreturn]] void fail(const fs::path& path, const std::string& cause) {
  // Messages of the codec libraries may contain line breaks; the user gets one line.
  std::string line = cause;
  while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back()))) line.pop_back();
  std::replace(line.begin(), line.end(), '\n', ' ');
  throw PictureFileError(path.string() + ": " + line);
}

// Runs work whose errors do not name the file.
template <class Work>
auto namingFile(const fs::path& path, const Work& work) {
  try {
    return work();
  } catch (const PictureFileError&) {
    throw;
  } catch (const std::runtime_error& error) {
    fail(path, error.what());
  }
}

// The codecs of HEIF and AVIF would wait for their threads forever.
void requireThreads(const fs::path& path, const Codec* codec) {
  if (codec == &heifCodec && threadsAreScarce()) {
    fail(path, "the system lets this process have too few threads for this format");
  }
}

// By the first bytes, which only a plain file gives twice.
const Codec* inputCodec(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) fail(path, "no such file");
  if (fs::is_directory(path, error)) fail(path, "is a directory");
  if (!fs::is_regular_file(path, error)) return nullptr;
  std::array<char, 32> start{};
  std::ifstream(path, std::ios::binary).read(start.data(), start.size());
  const std::string_view bytes(start.data(), start.size());
  for (const Codec* codec : codecs) {
    if (codec->recognises(bytes)) return codec;
  }
  return nullptr;
}

// What writes a format: one of the two.
struct Encoder {
  const Codec* codec = nullptr;
  std::unique_ptr<OIIO::ImageOutput> library;
  std::string extension;
  std::string format;
};

Encoder encoderFor(const fs::path& path, const EncodingOptions& options) {
  Encoder encoder;
  encoder.extension = options.format.empty() ? path.extension().string() : "." + options.format;
  std::transform(encoder.extension.begin(), encoder.extension.end(), encoder.extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const Codec* codec : codecs) {
    const auto& extensions = codec->extensions;
    if (std::find(extensions.begin(), extensions.end(), encoder.extension) != extensions.end()) {
      encoder.codec = codec;
      encoder.format = codec->format;
    }
  }
  if (encoder.codec != nullptr) {
    requireThreads(path, encoder.codec);
    return encoder;
  }
  encoder.library = outputFor(encoder.extension);
  if (encoder.library == nullptr) {
    fail(path,
         "no picture format that can be written has the extension '" + encoder.extension + "'");
  }
  encoder.format = encoder.library->format_name();
  return encoder;
}

// Turns the picture as its file asks for; from then on the file's request is fulfilled.
void makeUpright(DecodedPicture& decoded) {
  turnUpright(decoded.picture, decoded.orientation);
  FileMetadata& metadata = *decoded.metadata;
  metadata.exif.replaceNumber(tagOrientation, 1);
  for (const char* before : {"tiff:Orientation=\"", "tiff:Orientation>"}) {
    const std::size_t at = metadata.xmp.find(before);
    if (at == std::string::npos) continue;
    const std::size_t number = at + std::string_view(before).size();
    if (number < metadata.xmp.size()) metadata.xmp[number] = '1';
  }
}

// The tags that a filtered and turned picture makes untrue.
void updateTags(DecodedPicture& decoded, bool colorsConverted) {
  TagTree& exif = decoded.metadata->exif;
  const auto width = static_cast<std::uint32_t>(decoded.picture.width);
  const auto height = static_cast<std::uint32_t>(decoded.picture.height);
  for (const TagId id : {tagImageWidth, tagPixelXDimension}) exif.replaceNumber(id, width);
  for (const TagId id : {tagImageLength, tagPixelYDimension}) exif.replaceNumber(id, height);
  exif.replaceText(tagSoftware, "Radiashafts " RADIASHAFTS_VERSION);
  constexpr std::uint32_t srgb = 1;
  constexpr std::uint32_t uncalibrated = 0xFFFF;
  decoded.metadata->colorsConverted = colorsConverted;
  if (colorsConverted) {
    exif.replaceNumber(tagColorSpace, decoded.metadata->profile.empty() ? srgb : uncalibrated);
  }
}

void convertToProfile(DecodedPicture& decoded, const fs::path& path) {
  std::string profile;
  if (!path.empty()) {
    std::ifstream stream(path, std::ios::binary);
    profile = (std::ostringstream() << stream.rdbuf()).str();
    if (fitOf(profile, 3) != ProfileFit::fits) fail(path, "is no colour profile for RGB");
  }
  const bool converts = decoded.isCmyk || !profile.empty();
  if (decoded.isCmyk) {
    convertCmyk(decoded, profile);
  } else if (converts) {
    convertColors(decoded, profile);
  }
  updateTags(decoded, converts);
}

// Drops channels that the format cannot hold, and repeats the grey where it holds RGB alone.
void fitChannels(Picture& picture, const Encoder& encoder, std::vector<std::string>& notes) {
  int kept = picture.colorPlanes;
  if (encoder.library != nullptr) {
    kept = keptPlanes(picture, *encoder.library);
  } else if (picture.hasAlpha && encoder.codec->limits.alpha) {
    ++kept;
  }
  if (kept < picture.planes) {
    notes.push_back(encoder.format + " holds " + std::to_string(kept) + " of the picture's " +
                    std::to_string(picture.planes) + " channels; the rest is left out");
    dropPlanes(picture, kept);
  }
  if (encoder.codec != nullptr && !encoder.codec->limits.gray && picture.colorPlanes == 1) {
    makeRgb(picture);
  }
}

// The bits of a stored sample, of those that are wanted.
int storedBits(const Encoder& encoder, int wanted) {
  const bool isPacked = wanted % 8 != 0;
  if (encoder.codec == &heifCodec) return wanted <= 8 ? 8 : wanted == 12 ? 12 : 10;
  if (encoder.codec != nullptr) {
    return std::min(isPacked ? 16 : wanted, encoder.codec->limits.depth);
  }
  return isPacked && wanted > 8 && encoder.format != "dpx" ? 16 : wanted;
}

// Brings the samples to the depth that is asked for and that the format holds. Returns the bits of
// a stored sample.
int fitDepth(Picture& picture, const Encoder& encoder, const FileMetadata& metadata,
             const EncodingOptions& options, std::vector<std::string>& notes) {
  const int wanted = options.depth.value_or(metadata.bits != 0 ? metadata.bits : picture.depth);
  const int bits = storedBits(encoder, wanted);
  // The picture library makes half floats of floats, not of words.
  const bool staysFloat = picture.depth == 32 && encoder.library != nullptr &&
                          (!options.depth || encoder.format == "openexr");
  const int depth = staysFloat || bits > 16 ? 32 : bits > 8 ? 16 : 8;
  if (depth != picture.depth) convertDepth(picture, depth);
  if (bits < wanted || (options.depth && bits != wanted)) {
    notes.push_back(encoder.format + " holds " + std::to_string(bits) + " bits a channel and not " +
                    std::to_string(wanted) + "; the depth is changed");
  }
  return bits;
}

// Refuses a compression that the format does not have.
void checkCompression(const fs::path& path, const Encoder& encoder, const std::string& name) {
  static const std::map<std::string, std::vector<std::string_view>> compressions{
      {"tiff", {"none", "lzw", "zip", "packbits", "jpeg"}},
      {"openexr", {"none", "rle", "zips", "zip", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"}},
      {"webp", {"lossless", "lossy"}}};
  if (name.empty()) return;
  const auto found = compressions.find(encoder.format);
  if (found == compressions.end() ||
      std::find(found->second.begin(), found->second.end(), name) == found->second.end()) {
    fail(path, encoder.format + " has no compression '" + name + "'");
  }
}

// One page on its way into a file.
struct Page {
  Picture picture;
  FileMetadata metadata;
  StoredSamples stored{};
};

// Fits the page to the format and encodes it.
void encodePage(Page& page, int number, const Encoder& encoder, const fs::path& path,
                const EncodingOptions& options, const std::function<bool()>& aborted,
                std::vector<std::string>& notes) {
  Picture& picture = page.picture;
  notes.insert(notes.end(), page.metadata.notes.begin(), page.metadata.notes.end());
  rescaleWords(picture, fileWord);
  fitChannels(picture, encoder, notes);
  const int bits = fitDepth(picture, encoder, page.metadata, options, notes);
  dropUnkept(page.metadata, encoder.format, picture.colorPlanes, notes);
  const EncodedPicture encoded{picture, page.metadata, options, encoder.extension,
                               bits,    number,        aborted, notes};
  if (encoder.format == exrFormat) {
    page.stored = encodeExr(path, encoded, picture);
  } else if (encoder.library != nullptr) {
    page.stored = encodeWithLibrary(*encoder.library, path, encoded, picture);
  } else {
    encoder.codec->encode(path, encoded);
    page.stored = {typeOf(picture.depth), encoder.codec == &pngCodec};
  }
}

// Reads a written page back and notes what it has lost.
void checkWritten(const fs::path& written, const Page& page, int number, const Encoder& encoder,
                  std::vector<std::string>& notes) {
  const OIIO::ImageSpec spec = verify(written, number, page.picture, page.stored);
  if (encoder.library != nullptr && !page.metadata.profile.empty() &&
      spec.find_attribute("ICCProfile") == nullptr) {
    notes.push_back(encoder.format + " does not keep the colour profile");
  }
}

// The file's picture and further pages.
std::vector<Page> pagesOf(PictureFile&& file) {
  std::vector<Page> pages;
  const auto add = [&pages](PictureFile& from) {
    const auto* read = dynamic_cast<const FileMetadata*>(from.metadata.get());
    pages.push_back({std::move(from.picture), read != nullptr ? *read : FileMetadata(), {}});
  };
  add(file);
  for (PictureFile& page : file.furtherPages) add(page);
  return pages;
}

PictureFile readPage(const fs::path& path, const Codec* codec, int page,
                     const ReadingOptions& options) {
  DecodedPicture decoded = namingFile(path, [&] {
    if (codec == nullptr) return decodeWithLibrary(path, page);
    if (page > 0 && codec != &heifCodec) throw std::runtime_error(noPages);
    DecodedPicture found = codec->decode(path, page);
    found.metadata->format = codec->format;
    if (const auto orientation = found.metadata->exif.number(tagOrientation)) {
      found.orientation = static_cast<int>(*orientation);
    }
    return found;
  });
  if (decoded.picture.hasAlpha && decoded.isPremultiplied) divideByAlpha(decoded.picture);
  makeUpright(decoded);
  namingFile(path, [&] { convertToProfile(decoded, options.profile); });
  rescaleWords(decoded.picture, hostWord);
  if (!options.allPages && (page > 1 || decoded.metadata->hasNextPage)) {
    const bool isMerged = decoded.metadata->format == "psd" && page <= 1;
    decoded.metadata->notes.emplace_back(isMerged ? "holds the input's layers merged into one"
                                                  : "holds one of the input's pages alone");
  }
  std::string extension = path.extension().string();
  if (extension.empty()) {
    extension =
        codec != nullptr ? codec->extensions.front() : usualExtension(decoded.metadata->format);
  }
  return {std::move(decoded.picture), std::move(decoded.metadata), std::move(extension), {}};
}

bool hasNextPage(const PictureFile& file) {
  return dynamic_cast<const FileMetadata&>(*file.metadata).hasNextPage;
}

}  // namespace

PictureFile readPictureFile(const fs::path& path, const ReadingOptions& options) {
  limitLibraryThreads();
  const Codec* codec = inputCodec(path);
  requireThreads(path, codec);
  PictureFile file = readPage(path, codec, options.allPages ? 1 : options.page, options);
  bool hasNext = options.allPages && hasNextPage(file);
  for (int page = 2; hasNext; ++page) {
    file.furtherPages.push_back(readPage(path, codec, page, options));
    hasNext = hasNextPage(file.furtherPages.back());
  }
  return file;
}

Mask readMaskFile(const fs::path& path) {
  Picture picture = readPictureFile(path, {}).picture;
  if (picture.planes != 1) fail(path, "a mask is a grey picture without alpha");
  rescaleWords(picture, fileWord);
  if (picture.depth != 8) convertDepth(picture, 8);
  return {picture.width, picture.height, std::move(picture.bytes)};
}

void checkWritable(const fs::path& path, const PictureFile& file, const EncodingOptions& options) {
  if (const std::string reason = PartialFile::obstacle(path); !reason.empty()) fail(path, reason);
  const Encoder encoder = encoderFor(path, options);
  const Picture& picture = file.picture;
  const int side = std::max(picture.width, picture.height);
  if (encoder.codec != nullptr && side > encoder.codec->limits.side) {
    fail(path, encoder.format + " holds sides of " + std::to_string(encoder.codec->limits.side) +
                   " pixels and not " + std::to_string(side));
  }
  if (!file.furtherPages.empty() && encoder.format != "tiff") {
    fail(path, encoder.format + " holds one page and not " +
                   std::to_string(file.furtherPages.size() + 1) + "; TIFF holds all");
  }
  checkCompression(path, encoder, options.compression);
}

WriteResult writePictureFile(const fs::path& path, PictureFile&& file,
                             const EncodingOptions& options, const std::function<bool()>& aborted) {
  limitLibraryThreads();
  PartialFile partial(path);
  const Encoder encoder = encoderFor(path, options);
  std::vector<Page> pages = pagesOf(std::move(file));
  std::vector<std::string> notes;
  const auto write = [&] {
    for (std::size_t i = 0; i < pages.size(); ++i) {
      encodePage(pages[i], static_cast<int>(i), encoder, partial.path(), options, aborted, notes);
      if (aborted()) return false;
    }
    if (encoder.library != nullptr && encoder.format != exrFormat) {
      std::vector<FileMetadata> metadata;
      metadata.reserve(pages.size());
      for (const Page& page : pages) metadata.push_back(page.metadata);
      finishWithLibrary(*encoder.library, partial.path(), metadata, notes);
    }
    for (std::size_t i = 0; i < pages.size(); ++i) {
      checkWritten(partial.path(), pages[i], static_cast<int>(i), encoder, notes);
    }
    return !aborted();
  };
  if (!namingFile(path, write)) return {};
  if (const std::string error = partial.renameToTarget(); !error.empty()) fail(path, error);
  for (std::string& note : notes) note.insert(0, path.string() + ": ");
  return {true, std::move(notes)};
}

}  // namespace radiashafts::standin
