// Still WebP pictures through libwebp.

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <webp/decode.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include "standin/codecs/codec.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

struct DeleteMux {
  void operator()(WebPMux* mux) const { WebPMuxDelete(mux); }
};
using Mux = std::unique_ptr<WebPMux, DeleteMux>;

WebPData dataOf(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

constexpr char profileChunk[] = "ICCP";
constexpr char exifChunk[] = "EXIF";
constexpr char xmpChunk[] = "XMP ";

void readMetadata(const std::string& bytes, FileMetadata& metadata) {
  const WebPData data = dataOf(bytes);
  const Mux mux(WebPMuxCreate(&data, 0));
  const auto chunk = [&mux](const char* name) {
    WebPData found{};
    if (mux == nullptr || WebPMuxGetChunk(mux.get(), name, &found) != WEBP_MUX_OK) {
      return std::string();
    }
    return std::string(reinterpret_cast<const char*>(found.bytes), found.size);
  };
  metadata.profile = chunk(profileChunk);
  metadata.xmp = chunk(xmpChunk);
  if (const std::string exif = chunk(exifChunk); !exif.empty()) readExif(exif, metadata);
}

DecodedPicture decodeWebp(const fs::path& path, int) {
  std::ifstream stream(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(stream)),
                          std::istreambuf_iterator<char>());
  const WebPData data = dataOf(bytes);
  WebPBitstreamFeatures features;
  if (WebPGetFeatures(data.bytes, data.size, &features) != VP8_STATUS_OK) {
    throw std::runtime_error("is damaged");
  }
  DecodedPicture decoded;
  Picture& picture = decoded.picture;
  checkSides(static_cast<unsigned>(features.width), static_cast<unsigned>(features.height));
  picture.width = features.width;
  picture.height = features.height;
  picture.hasAlpha = features.has_alpha != 0;
  picture.colorPlanes = 3;
  picture.planes = picture.hasAlpha ? 4 : 3;
  picture.allocate();
  const auto decode = picture.hasAlpha ? WebPDecodeRGBAInto : WebPDecodeRGBInto;
  if (decode(data.bytes, data.size, picture.bytes.data(), picture.bytes.size(),
             static_cast<int>(picture.rowBytes())) == nullptr) {
    throw std::runtime_error("is truncated or damaged");
  }
  constexpr int losslessFormat = 2;
  decoded.metadata->lossless = features.format == losslessFormat;
  readMetadata(bytes, *decoded.metadata);
  return decoded;
}

// RAII: the library's copy of the picture, and the encoded bytes.
struct Encoding {
  Encoding() {
    if (WebPPictureInit(&picture) == 0) throw std::runtime_error("another version of libwebp");
    WebPMemoryWriterInit(&writer);
    picture.writer = WebPMemoryWrite;
    picture.custom_ptr = &writer;
  }
  ~Encoding() {
    WebPPictureFree(&picture);
    WebPMemoryWriterClear(&writer);
  }
  Encoding(const Encoding&) = delete;
  Encoding& operator=(const Encoding&) = delete;
  WebPPicture picture;
  WebPMemoryWriter writer;
};

WebPConfig configOf(const EncodedPicture& encoded) {
  WebPConfig config;
  WebPConfigInit(&config);
  constexpr int goodQuality = 90;
  constexpr int losslessEffort = 6;
  if (encoded.options.compression == "lossless" ||
      (encoded.metadata.lossless && !encoded.options.quality &&
       encoded.options.compression.empty())) {
    WebPConfigLosslessPreset(&config, losslessEffort);
    config.exact = 1;
  } else {
    config.quality = static_cast<float>(encoded.options.quality.value_or(goodQuality));
  }
  return config;
}

void encodeWebp(const fs::path& path, const EncodedPicture& encoded) {
  const Picture& picture = encoded.picture;
  const WebPConfig config = configOf(encoded);
  Encoding encoding;
  encoding.picture.width = picture.width;
  encoding.picture.height = picture.height;
  encoding.picture.use_argb = config.lossless;
  encoding.picture.user_data = const_cast<std::function<bool()>*>(&encoded.aborted);
  encoding.picture.progress_hook = [](int, const WebPPicture* running) {
    return (*static_cast<const std::function<bool()>*>(running->user_data))() ? 0 : 1;
  };
  const auto import = picture.hasAlpha ? WebPPictureImportRGBA : WebPPictureImportRGB;
  if (import(&encoding.picture, picture.bytes.data(), static_cast<int>(picture.rowBytes())) == 0) {
    throw std::bad_alloc();
  }
  if (WebPEncode(&config, &encoding.picture) == 0) {
    if (encoded.aborted()) return;
    throw std::runtime_error("libwebp reports error " +
                             std::to_string(encoding.picture.error_code));
  }
  const WebPData image{encoding.writer.mem, encoding.writer.size};
  const Mux mux(WebPMuxCreate(&image, 0));
  const auto add = [&mux](const char* name, const std::string& bytes) {
    const WebPData data = dataOf(bytes);
    if (!bytes.empty() && WebPMuxSetChunk(mux.get(), name, &data, 1) != WEBP_MUX_OK) {
      throw std::bad_alloc();
    }
  };
  if (mux == nullptr) throw std::bad_alloc();
  add(profileChunk, encoded.metadata.profile);
  add(exifChunk, encoded.metadata.exif.empty() ? "" : encoded.metadata.exif.block());
  add(xmpChunk, encoded.metadata.xmp);
  WebPData whole{};
  if (WebPMuxAssemble(mux.get(), &whole) != WEBP_MUX_OK) throw std::bad_alloc();
  const std::unique_ptr<void, decltype(&WebPFree)> owner(const_cast<std::uint8_t*>(whole.bytes),
                                                         WebPFree);
  File file = openFile(path, "wb");
  std::fwrite(whole.bytes, 1, whole.size, file.get());
  finishFile(std::move(file));
}

// An animation is left to the picture library.
bool isStillWebp(std::string_view start) {
  constexpr std::size_t flagsAt = 20;
  constexpr unsigned animationFlag = 2;
  if (start.substr(0, 4) != "RIFF" || start.substr(8, 4) != "WEBP") return false;
  return start.substr(12, 4) != "VP8X" || start.size() <= flagsAt ||
         (static_cast<unsigned char>(start[flagsAt]) & animationFlag) == 0;
}

}  // namespace

const Codec webpCodec{
    .format = "webp",
    .extensions = {".webp"},
    .recognises = isStillWebp,
    .limits = {.gray = false, .alpha = true, .depth = 8, .side = WEBP_MAX_DIMENSION},
    .decode = decodeWebp,
    .encode = encodeWebp,
};

}  // namespace radiashafts::standin
