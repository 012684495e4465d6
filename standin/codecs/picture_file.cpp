// Picture files: what is the same for all formats.

#include "standin/picture_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <fstream>
#include <sstream>

#include <OpenImageIO/imageio.h>

#include "standin/codecs/codec.h"
#include "standin/codecs/color_profile.h"
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
  if (decoded.orientation == 1) return;
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

// Brings the samples to the depth that is asked for and that the format holds. Returns the bits of
// a stored sample.
int fitDepth(Picture& picture, const Encoder& encoder, const FileMetadata& metadata,
             const EncodingOptions& options, std::vector<std::string>& notes) {
  const int before = metadata.bits != 0 && picture.depth == 16 ? metadata.bits : picture.depth;
  int bits = options.depth.value_or(before);
  if (encoder.codec != nullptr) bits = std::min(bits, encoder.codec->limits.depth);
  if (encoder.codec == &heifCodec && bits > 8) {
    constexpr int goodBits = 10;
    bits = bits == 12 ? 12 : goodBits;
  }
  const int depth = bits <= 8 ? 8 : bits <= 16 ? 16 : 32;
  if (depth != picture.depth) convertDepth(picture, depth);
  if (bits < before && bits != options.depth) {
    notes.push_back(encoder.format + " holds " + std::to_string(bits) + " bits a channel and not " +
                    std::to_string(before) + "; the depth is changed");
  }
  return bits;
}

// Reads the written file back and notes what it has lost.
void checkWritten(const fs::path& written, const Picture& picture, const StoredSamples& stored,
                  const Encoder& encoder, const FileMetadata& metadata,
                  std::vector<std::string>& notes) {
  const OIIO::ImageSpec spec = verify(written, picture, stored);
  if (encoder.library != nullptr && !metadata.profile.empty() &&
      spec.find_attribute("ICCProfile") == nullptr) {
    notes.push_back(encoder.format + " does not keep the colour profile");
  }
}

}  // namespace

PictureFile readPictureFile(const fs::path& path, const ReadingOptions& options) {
  limitLibraryThreads();
  const Codec* codec = inputCodec(path);
  requireThreads(path, codec);
  DecodedPicture decoded = namingFile(path, [&] {
    if (codec == nullptr) return decodeWithLibrary(path, options.page);
    if (options.page > 1 && codec != &heifCodec) {
      throw std::runtime_error("has no page " + std::to_string(options.page));
    }
    DecodedPicture found = codec->decode(path, options.page);
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
  std::string extension = path.extension().string();
  if (extension.empty()) {
    extension =
        codec != nullptr ? codec->extensions.front() : usualExtension(decoded.metadata->format);
  }
  return {std::move(decoded.picture), std::move(decoded.metadata), std::move(extension)};
}

Mask readMaskFile(const fs::path& path) {
  Picture picture = readPictureFile(path, {}).picture;
  if (picture.planes != 1) fail(path, "a mask is a grey picture without alpha");
  rescaleWords(picture, fileWord);
  if (picture.depth != 8) convertDepth(picture, 8);
  return {picture.width, picture.height, std::move(picture.bytes)};
}

void checkWritable(const fs::path& path, const Picture& picture, const EncodingOptions& options) {
  if (const std::string reason = PartialFile::obstacle(path); !reason.empty()) fail(path, reason);
  const Encoder encoder = encoderFor(path, options);
  const int side = std::max(picture.width, picture.height);
  if (encoder.codec != nullptr && side > encoder.codec->limits.side) {
    fail(path, encoder.format + " holds sides of " + std::to_string(encoder.codec->limits.side) +
                   " pixels and not " + std::to_string(side));
  }
}

WriteResult writePictureFile(const fs::path& path, PictureFile&& file,
                             const EncodingOptions& options, const std::function<bool()>& aborted) {
  limitLibraryThreads();
  PartialFile partial(path);
  const Encoder encoder = encoderFor(path, options);
  Picture& picture = file.picture;
  FileMetadata metadata;
  if (const auto* read = dynamic_cast<const FileMetadata*>(file.metadata.get())) metadata = *read;
  std::vector<std::string> notes = metadata.notes;
  if (metadata.hasFurtherPages) notes.emplace_back("holds one of the input's pages alone");
  rescaleWords(picture, fileWord);
  fitChannels(picture, encoder, notes);
  const int bits = fitDepth(picture, encoder, metadata, options, notes);
  dropUnkept(metadata, encoder.format, picture.colorPlanes, notes);
  const EncodedPicture encoded{picture, metadata, options, encoder.extension, bits, aborted, notes};
  const bool written = namingFile(path, [&] {
    StoredSamples stored{typeOf(picture.depth), encoder.codec == &pngCodec};
    if (encoder.codec != nullptr) {
      encoder.codec->encode(partial.path(), encoded);
    } else {
      stored = encodeWithLibrary(*encoder.library, partial.path(), encoded, picture);
    }
    if (aborted()) return false;
    checkWritten(partial.path(), picture, stored, encoder, metadata, notes);
    return !aborted();
  });
  if (!written) return {};
  if (const std::string error = partial.renameToTarget(); !error.empty()) fail(path, error);
  for (std::string& note : notes) note.insert(0, path.string() + ": ");
  return {true, std::move(notes)};
}

}  // namespace radiashafts::standin
