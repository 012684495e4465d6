// PNG through libpng.

#include <bit>
#include <cmath>
#include <cstring>
#include <stdexcept>

#include <png.h>

#include "standin/codecs/codec.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

constexpr char xmpKeyword[] = "XML:com.adobe.xmp";
// Chunks that are carried as they are: what the colours are, when the picture was changed, and
// where or what it lies on.
constexpr png_byte carriedChunks[] =
    "gAMA\0cHRM\0sRGB\0tIME\0cICP\0mDCV\0cLLI\0oFFs\0sCAL\0pCAL\0sTER";
constexpr int carriedChunkCount = 11;
// The further pictures of an animation.
constexpr png_byte frameChunks[] = "fcTL\0fdAT";
constexpr int frameChunkCount = 2;
constexpr double centimetresInMetre = 100.0;

[[noreturn]] void throwError(png_structp, png_const_charp text) {
  throw std::runtime_error(text);
}

// The library goes on without what it warns of.
void keepWarning(png_structp png, png_const_charp text) {
  static_cast<std::vector<std::string>*>(png_get_error_ptr(png))
      ->push_back(std::string("png: ") + text);
}

struct Reader {
  explicit Reader(std::vector<std::string>& warnings)
      : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &warnings, throwError, keepWarning)),
        info(png_create_info_struct(png)) {}
  ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  png_structp png;
  png_infop info;
};

struct Writer {
  explicit Writer(std::vector<std::string>& warnings)
      : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &warnings, throwError, keepWarning)),
        info(png_create_info_struct(png)) {}
  ~Writer() { png_destroy_write_struct(&png, &info); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;
  png_structp png;
  png_infop info;
};

void readTexts(const Reader& reader, FileMetadata& metadata) {
  png_textp texts = nullptr;
  int count = 0;
  png_get_text(reader.png, reader.info, &texts, &count);
  for (int i = 0; i < count; ++i) {
    const png_text& text = texts[i];
    const std::size_t size = text.compression > 0 ? text.itxt_length : text.text_length;
    std::string content(text.text, size);
    if (std::strcmp(text.key, xmpKeyword) == 0) {
      metadata.xmp = std::move(content);
    } else {
      const bool isUtf8 = text.compression > 0;
      metadata.texts.push_back({text.key, std::move(content), text.compression,
                                isUtf8 ? text.lang : "", isUtf8 ? text.lang_key : ""});
    }
  }
}

bool isCarried(std::string_view name) {
  const std::string_view all(reinterpret_cast<const char*>(carriedChunks), sizeof carriedChunks);
  return all.find(name) != std::string_view::npos;
}

void readMetadata(const Reader& reader, FileMetadata& metadata) {
  readTexts(reader, metadata);
  png_bytep exif = nullptr;
  png_uint_32 exifSize = 0;
  if (png_get_eXIf_1(reader.png, reader.info, &exifSize, &exif) != 0) {
    readExif({reinterpret_cast<const char*>(exif), exifSize}, metadata);
  }
  png_charp name = nullptr;
  int compression = 0;
  png_bytep profile = nullptr;
  png_uint_32 profileSize = 0;
  if (png_get_iCCP(reader.png, reader.info, &name, &compression, &profile, &profileSize) != 0) {
    metadata.profile.assign(reinterpret_cast<const char*>(profile), profileSize);
  }
  png_uint_32 x = 0;
  png_uint_32 y = 0;
  int unit = PNG_RESOLUTION_UNKNOWN;
  if (png_get_pHYs(reader.png, reader.info, &x, &y, &unit) != 0) {
    const bool isMetric = unit == PNG_RESOLUTION_METER;
    const double scale = isMetric ? centimetresInMetre : 1.0;
    metadata.density =
        Density{x / scale, y / scale, isMetric ? Density::centimetre : Density::none};
  }
  png_unknown_chunkp chunks = nullptr;
  const int count = png_get_unknown_chunks(reader.png, reader.info, &chunks);
  std::string leftOut;
  for (int i = 0; i < count; ++i) {
    const std::string chunk = reinterpret_cast<const char*>(chunks[i].name);
    if (isCarried(chunk)) {
      metadata.carriedChunks.emplace_back(
          chunk, std::string(reinterpret_cast<const char*>(chunks[i].data), chunks[i].size));
    } else if (chunk == "acTL") {
      metadata.notes.emplace_back("holds the first picture of the input's animation alone");
    } else {
      leftOut += ' ' + chunk;
    }
  }
  if (!leftOut.empty()) {
    metadata.notes.push_back("chunks that a program has put into the input are left out:" +
                             leftOut);
  }
}

DecodedPicture decodePng(const fs::path& path, int) {
  const File file = openFile(path, "rb");
  DecodedPicture decoded;
  const Reader reader(decoded.metadata->notes);
  png_structp const png = reader.png;
  png_infop const info = reader.info;
  png_init_io(png, file.get());
  png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, nullptr, 0);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, carriedChunks, carriedChunkCount);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, frameChunks, frameChunkCount);
  png_read_info(png, info);
  checkSides(png_get_image_width(png, info), png_get_image_height(png, info));
  png_set_expand(png);
  if (png_get_bit_depth(png, info) == 16 && std::endian::native == std::endian::little) {
    png_set_swap(png);
  }
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  Picture& picture = decoded.picture;
  picture.width = static_cast<int>(png_get_image_width(png, info));
  picture.height = static_cast<int>(png_get_image_height(png, info));
  picture.planes = png_get_channels(png, info);
  picture.depth = png_get_bit_depth(png, info);
  picture.hasAlpha = picture.planes % 2 == 0;
  picture.colorPlanes = picture.planes - (picture.hasAlpha ? 1 : 0);
  picture.allocate();
  std::vector<png_bytep> rows;
  rows.reserve(static_cast<std::size_t>(picture.height));
  for (int y = 0; y < picture.height; ++y) {
    rows.push_back(&picture.bytes[static_cast<std::size_t>(y) * picture.rowBytes()]);
  }
  png_read_image(png, rows.data());
  png_read_end(png, info);
  readMetadata(reader, *decoded.metadata);
  return decoded;
}

void writeTexts(const Writer& writer, const FileMetadata& metadata) {
  std::vector<png_text> texts;
  const auto add = [&](const PictureText& text) {
    png_text entry{};
    entry.compression = text.compression;
    entry.key = const_cast<char*>(text.keyword.c_str());
    entry.text = const_cast<char*>(text.text.c_str());
    entry.text_length = entry.itxt_length = text.text.size();
    entry.lang = const_cast<char*>(text.language.c_str());
    entry.lang_key = const_cast<char*>(text.translatedKeyword.c_str());
    texts.push_back(entry);
  };
  const PictureText xmp{xmpKeyword, metadata.xmp, PNG_ITXT_COMPRESSION_NONE, "", ""};
  if (!xmp.text.empty()) add(xmp);
  for (const PictureText& text : metadata.texts) add(text);
  png_set_text(writer.png, writer.info, texts.data(), static_cast<int>(texts.size()));
}

void writeMetadata(const Writer& writer, const FileMetadata& metadata) {
  writeTexts(writer, metadata);
  const std::string exif = metadata.exif.empty() ? "" : metadata.exif.block();
  if (!exif.empty()) {
    png_set_eXIf_1(writer.png, writer.info, static_cast<png_uint_32>(exif.size()),
                   reinterpret_cast<png_bytep>(const_cast<char*>(exif.data())));
  }
  if (!metadata.profile.empty()) {
    png_set_iCCP(writer.png, writer.info, "ICC Profile", PNG_COMPRESSION_TYPE_BASE,
                 reinterpret_cast<png_const_bytep>(metadata.profile.data()),
                 static_cast<png_uint_32>(metadata.profile.size()));
  }
  if (metadata.density) {
    const Density& density = *metadata.density;
    constexpr double inchesInMetre = 1.0 / 0.0254;
    const double scale = density.unit == Density::inch         ? inchesInMetre
                         : density.unit == Density::centimetre ? centimetresInMetre
                                                               : 1.0;
    png_set_pHYs(writer.png, writer.info, static_cast<png_uint_32>(std::lround(density.x * scale)),
                 static_cast<png_uint_32>(std::lround(density.y * scale)),
                 density.unit == Density::none ? PNG_RESOLUTION_UNKNOWN : PNG_RESOLUTION_METER);
  }
  std::vector<png_unknown_chunk> chunks;
  for (const auto& [name, data] : metadata.carriedChunks) {
    png_unknown_chunk chunk{};
    std::memcpy(chunk.name, name.c_str(), sizeof chunk.name);
    chunk.data = reinterpret_cast<png_bytep>(const_cast<char*>(data.data()));
    chunk.size = data.size();
    chunk.location = PNG_HAVE_IHDR;
    chunks.push_back(chunk);
  }
  png_set_unknown_chunks(writer.png, writer.info, chunks.data(), static_cast<int>(chunks.size()));
}

void encodePng(const fs::path& path, const EncodedPicture& encoded) {
  const Picture& picture = encoded.picture;
  File file = openFile(path, "wb");
  const Writer writer(encoded.notes);
  png_structp const png = writer.png;
  png_init_io(png, file.get());
  const int colors = picture.colorPlanes == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB;
  png_set_IHDR(png, writer.info, static_cast<png_uint_32>(picture.width),
               static_cast<png_uint_32>(picture.height), picture.depth,
               colors | (picture.hasAlpha ? PNG_COLOR_MASK_ALPHA : 0), PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, carriedChunks, carriedChunkCount);
  writeMetadata(writer, encoded.metadata);
  png_write_info(png, writer.info);
  if (picture.depth == 16 && std::endian::native == std::endian::little) png_set_swap(png);
  for (int y = 0; y < picture.height; ++y) {
    if (y % 64 == 0 && encoded.aborted()) return;
    png_write_row(png, &picture.bytes[static_cast<std::size_t>(y) * picture.rowBytes()]);
  }
  png_write_end(png, nullptr);
  finishFile(std::move(file));
}

}  // namespace

const Codec pngCodec{
    .format = "png",
    .extensions = {".png"},
    .recognises = [](std::string_view start) { return start.substr(0, 4) == "\x89PNG"; },
    .limits = {.gray = true, .alpha = true, .depth = 16, .side = 1000000},
    .decode = decodePng,
    .encode = encodePng,
};

}  // namespace radiashafts::standin
