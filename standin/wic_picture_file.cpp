// Picture files through the Windows Imaging Component, and portable float maps, which it does not
// support.

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <memory>
#include <string_view>

#include <objbase.h>
#include <wincodec.h>

#include "standin/partial_file.h"
#include "standin/picture_file.h"
#include "standin/word_scale.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

struct Release {
  template <class Interface>
  void operator()(Interface* object) const {
    object->Release();
  }
};
template <class Interface>
using Com = std::unique_ptr<Interface, Release>;

[[noreturn]] void fail(const fs::path& path, const std::string& cause) {
  throw PictureFileError(path.string() + ": " + cause);
}

void check(HRESULT result, const fs::path& path, const char* step) {
  if (SUCCEEDED(result)) return;
  char code[16];
  std::snprintf(code, sizeof code, "0x%08lx", static_cast<unsigned long>(result));
  fail(path, std::string(step) + " failed with " + code);
}

// Calls a method that creates a COM object and returns the owner of its reference.
template <class Interface, class Make>
Com<Interface> make(const fs::path& path, const char* step, const Make& method) {
  Interface* object = nullptr;
  check(method(&object), path, step);
  return Com<Interface>(object);
}

IWICImagingFactory& factory() {
  static const Com<IWICImagingFactory> instance = [] {
    CO_MTA_USAGE_COOKIE cookie = nullptr;  // kept: threads come and go
    CoIncrementMTAUsage(&cookie);
    return make<IWICImagingFactory>("imaging component", "starting", [](IWICImagingFactory** out) {
      return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                              IID_IWICImagingFactory, reinterpret_cast<void**>(out));
    });
  }();
  return *instance;
}

// The pixel formats that convert to the hosts' layout without loss.
struct StoredFormat {
  const GUID& guid;
  int depth;
  int colorPlanes;
  int samples;  // per stored pixel, including unused ones
  bool alpha;
  bool blueFirst;
};

const StoredFormat storedFormats[] = {
    {GUID_WICPixelFormat8bppGray, 8, 1, 1, false, false},
    {GUID_WICPixelFormat16bppGray, 16, 1, 1, false, false},
    {GUID_WICPixelFormat32bppGrayFloat, 32, 1, 1, false, false},
    {GUID_WICPixelFormat24bppBGR, 8, 3, 3, false, true},
    {GUID_WICPixelFormat24bppRGB, 8, 3, 3, false, false},
    {GUID_WICPixelFormat32bppBGR, 8, 3, 4, false, true},
    {GUID_WICPixelFormat32bppBGRA, 8, 3, 4, true, true},
    {GUID_WICPixelFormat32bppRGBA, 8, 3, 4, true, false},
    {GUID_WICPixelFormat48bppRGB, 16, 3, 3, false, false},
    {GUID_WICPixelFormat64bppRGBA, 16, 3, 4, true, false},
    {GUID_WICPixelFormat96bppRGBFloat, 32, 3, 3, false, false},
    {GUID_WICPixelFormat128bppRGBAFloat, 32, 3, 4, true, false},
};

const StoredFormat* knownFormat(const GUID& guid) {
  const auto* found = std::find_if(std::begin(storedFormats), std::end(storedFormats),
                                   [&](const StoredFormat& f) { return f.guid == guid; });
  return found == std::end(storedFormats) ? nullptr : found;
}

// Copies pixels between the stored order and the hosts' order, in the direction given by toHost.
void copyPixels(const StoredFormat& stored, std::uint8_t* storedPixel, std::uint8_t* hostPixel,
                std::size_t count, bool toHost) {
  const std::size_t sample = static_cast<std::size_t>(stored.depth) / 8;
  const int channels = stored.colorPlanes + (stored.alpha ? 1 : 0);
  for (std::size_t i = 0; i < count; ++i) {
    for (int c = 0; c < channels; ++c) {
      const int at = stored.blueFirst && c < 3 ? 2 - c : c;
      std::uint8_t* s = storedPixel + static_cast<std::size_t>(at) * sample;
      std::uint8_t* h = hostPixel + static_cast<std::size_t>(c) * sample;
      std::memcpy(toHost ? h : s, toHost ? s : h, sample);
    }
    storedPixel += static_cast<std::size_t>(stored.samples) * sample;
    hostPixel += static_cast<std::size_t>(channels) * sample;
  }
}

std::string extensionOf(const fs::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

// ---- Portable float maps: a text header, then rows of floats from the bottom up.

bool isFloatMap(const fs::path& path) {
  return extensionOf(path) == ".pfm";
}

void checkSides(const fs::path& path, std::uint32_t width, std::uint32_t height) {
  const std::uint32_t side = std::max(width, height);
  if (side > static_cast<std::uint32_t>(hostapi::maximumSide)) {
    fail(path, "a side of " + std::to_string(side) + " pixels is above the limit of 32767");
  }
}

Picture readFloatMap(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::string kind;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  double scale = 0.0;
  stream >> kind >> width >> height >> scale;
  stream.get();
  if (!stream || (kind != "PF" && kind != "Pf") || width == 0 || height == 0) {
    fail(path, "not a portable float map");
  }
  if (scale > 0.0) fail(path, "a float map with its bytes in the other order");
  checkSides(path, width, height);
  Picture picture;
  picture.width = static_cast<int>(width);
  picture.height = static_cast<int>(height);
  picture.planes = picture.colorPlanes = kind == "PF" ? 3 : 1;
  picture.depth = 32;
  picture.allocate();
  for (std::size_t y = height; y > 0; --y) {
    stream.read(reinterpret_cast<char*>(&picture.bytes[(y - 1) * picture.rowBytes()]),
                static_cast<std::streamsize>(picture.rowBytes()));
  }
  if (!stream) fail(path, "the file is truncated");
  return picture;
}

void writeFloatMap(const fs::path& path, const fs::path& target, const Picture& picture) {
  std::ofstream stream(path, std::ios::binary);
  stream << (picture.planes == 3 ? "PF" : "Pf") << '\n'
         << picture.width << ' ' << picture.height << "\n-1.0\n";
  for (std::size_t y = static_cast<std::size_t>(picture.height); y > 0; --y) {
    stream.write(reinterpret_cast<const char*>(&picture.bytes[(y - 1) * picture.rowBytes()]),
                 static_cast<std::streamsize>(picture.rowBytes()));
  }
  stream.close();
  if (!stream) fail(target, "cannot be written");
}

// ---- The system's codecs

Com<IWICBitmapFrameDecode> openFrame(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) fail(path, "no such file");
  if (fs::is_directory(path, error)) fail(path, "is a directory");
  const auto decoder = make<IWICBitmapDecoder>(path, "opening", [&](IWICBitmapDecoder** out) {
    return factory().CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ,
                                               WICDecodeMetadataCacheOnDemand, out);
  });
  return make<IWICBitmapFrameDecode>(
      path, "reading", [&](IWICBitmapFrameDecode** out) { return decoder->GetFrame(0, out); });
}

// The frame itself if its pixel format is in the table, else a converter to 8 bits with alpha.
Com<IWICBitmapSource> knownSource(const fs::path& path, Com<IWICBitmapFrameDecode> frame,
                                  const StoredFormat*& format) {
  WICPixelFormatGUID guid;
  check(frame->GetPixelFormat(&guid), path, "reading");
  format = knownFormat(guid);
  if (format != nullptr) return Com<IWICBitmapSource>(frame.release());
  format = knownFormat(GUID_WICPixelFormat32bppBGRA);
  auto converter = make<IWICFormatConverter>(path, "converting", [](IWICFormatConverter** out) {
    return factory().CreateFormatConverter(out);
  });
  check(converter->Initialize(frame.get(), format->guid, WICBitmapDitherTypeNone, nullptr, 0.0,
                              WICBitmapPaletteTypeCustom),
        path, "converting");
  return Com<IWICBitmapSource>(converter.release());
}

Picture readWithCodec(const fs::path& path) {
  const StoredFormat* format = nullptr;
  const auto source = knownSource(path, openFrame(path), format);
  UINT width = 0;
  UINT height = 0;
  check(source->GetSize(&width, &height), path, "reading");
  checkSides(path, width, height);
  Picture picture;
  picture.width = static_cast<int>(width);
  picture.height = static_cast<int>(height);
  picture.colorPlanes = format->colorPlanes;
  picture.hasAlpha = format->alpha;
  picture.planes = picture.colorPlanes + (picture.hasAlpha ? 1 : 0);
  picture.depth = format->depth;
  picture.allocate();

  std::vector<std::uint8_t> row(picture.sampleBytes() * static_cast<std::size_t>(format->samples) *
                                width);
  for (UINT y = 0; y < height; ++y) {
    const WICRect line{0, static_cast<INT>(y), static_cast<INT>(width), 1};
    check(source->CopyPixels(&line, static_cast<UINT>(row.size()), static_cast<UINT>(row.size()),
                             row.data()),
          path, "reading");
    copyPixels(*format, row.data(), &picture.bytes[y * picture.rowBytes()], width, true);
  }
  rescaleWords(picture, hostWord);
  return picture;
}

const GUID* containerOf(const fs::path& path) {
  static const struct {
    std::string_view extension;
    const GUID& container;
  } containers[] = {
      {".png", GUID_ContainerFormatPng},   {".jpg", GUID_ContainerFormatJpeg},
      {".jpeg", GUID_ContainerFormatJpeg}, {".tif", GUID_ContainerFormatTiff},
      {".tiff", GUID_ContainerFormatTiff}, {".bmp", GUID_ContainerFormatBmp},
  };
  const std::string extension = extensionOf(path);
  for (const auto& c : containers) {
    if (c.extension == extension) return &c.container;
  }
  return nullptr;
}

// An encoder that has been started for one file.
struct Encoding {
  Com<IWICBitmapEncoder> encoder;
  Com<IWICBitmapFrameEncode> frame;
  const StoredFormat* format;
};

// Throws PictureFileError if the encoder does not accept the picture's pixel format.
Encoding startEncoding(const fs::path& target, IStream* stream, const Picture& picture) {
  const GUID* container = containerOf(target);
  if (container == nullptr) {
    fail(target, "no picture format that can be written has the extension '" +
                     target.extension().string() + "'");
  }
  Encoding encoding;
  encoding.encoder = make<IWICBitmapEncoder>(target, "encoding", [&](IWICBitmapEncoder** out) {
    return factory().CreateEncoder(*container, nullptr, out);
  });
  check(encoding.encoder->Initialize(stream, WICBitmapEncoderNoCache), target, "encoding");
  IPropertyBag2* options = nullptr;
  encoding.frame = make<IWICBitmapFrameEncode>(
      target, "encoding",
      [&](IWICBitmapFrameEncode** out) { return encoding.encoder->CreateNewFrame(out, &options); });
  if (options != nullptr) options->Release();
  check(encoding.frame->Initialize(nullptr), target, "encoding");
  check(
      encoding.frame->SetSize(static_cast<UINT>(picture.width), static_cast<UINT>(picture.height)),
      target, "encoding");
  for (const StoredFormat& format : storedFormats) {
    if (format.depth != picture.depth || format.colorPlanes != picture.colorPlanes ||
        format.alpha != picture.hasAlpha ||
        format.samples != picture.colorPlanes + (picture.hasAlpha ? 1 : 0)) {
      continue;
    }
    WICPixelFormatGUID offered = format.guid;
    if (SUCCEEDED(encoding.frame->SetPixelFormat(&offered)) && offered == format.guid) {
      encoding.format = &format;
      return encoding;
    }
  }
  fail(target, "the system's codec writes no picture of " + std::to_string(picture.planes) +
                   " channels at " + std::to_string(picture.depth) + " bits");
}

void writeWithCodec(const fs::path& path, const fs::path& target, Picture& picture,
                    const std::function<bool()>& aborted) {
  const auto stream = make<IWICStream>(
      target, "writing", [](IWICStream** out) { return factory().CreateStream(out); });
  check(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE), target, "writing");
  const Encoding encoding = startEncoding(target, stream.get(), picture);
  rescaleWords(picture, fileWord);
  std::vector<std::uint8_t> row(picture.sampleBytes() *
                                static_cast<std::size_t>(encoding.format->samples) *
                                static_cast<std::size_t>(picture.width));
  for (int y = 0; y < picture.height && !aborted(); ++y) {
    copyPixels(*encoding.format, row.data(),
               &picture.bytes[static_cast<std::size_t>(y) * picture.rowBytes()],
               static_cast<std::size_t>(picture.width), false);
    check(encoding.frame->WritePixels(1, static_cast<UINT>(row.size()),
                                      static_cast<UINT>(row.size()), row.data()),
          target, "writing");
  }
  if (aborted()) return;
  check(encoding.frame->Commit(), target, "writing");
  check(encoding.encoder->Commit(), target, "writing");
}

// Reads the file back row by row and throws PictureFileError if it differs from the picture, whose
// samples must still be on the file's scale. Compares only the channels that the codec returns, and
// only the size if depth or colours differ. JPEG is lossy and not compared.
void verify(const fs::path& path, const fs::path& target, const Picture& picture) {
  const GUID* const container = containerOf(target);
  if (container == &GUID_ContainerFormatJpeg) return;
  const StoredFormat* format = nullptr;
  const auto source = knownSource(path, openFrame(path), format);
  UINT width = 0;
  UINT height = 0;
  check(source->GetSize(&width, &height), target, "reading back");
  const auto planes = static_cast<std::size_t>(format->colorPlanes) + (format->alpha ? 1 : 0);
  const bool comparable =
      format->depth == picture.depth && format->colorPlanes == picture.colorPlanes;
  const std::size_t kept =
      std::min(planes, static_cast<std::size_t>(picture.planes)) * picture.sampleBytes();
  std::vector<std::uint8_t> row(static_cast<std::size_t>(format->depth / 8 * format->samples) *
                                width);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(format->depth) / 8 * planes * width);
  bool same =
      width == static_cast<UINT>(picture.width) && height == static_cast<UINT>(picture.height);
  for (UINT y = 0; same && y < height; ++y) {
    const WICRect line{0, static_cast<INT>(y), static_cast<INT>(width), 1};
    check(source->CopyPixels(&line, static_cast<UINT>(row.size()), static_cast<UINT>(row.size()),
                             row.data()),
          target, "reading back");
    if (!comparable) continue;
    copyPixels(*format, row.data(), pixels.data(), width, true);
    const std::uint8_t* expected = &picture.bytes[y * picture.rowBytes()];
    for (std::size_t x = 0; same && x < width; ++x) {
      same = std::memcmp(&pixels[x * planes * picture.sampleBytes()],
                         expected + x * picture.pixelBytes(), kept) == 0;
    }
  }
  if (!same) fail(target, "the written file does not hold the picture");
}

void refuse(const fs::path& path, bool asked) {
  if (asked) fail(path, "the options for formats, profiles and pages work on Linux alone");
}

}  // namespace

PictureFile readPictureFile(const fs::path& path, const ReadingOptions& options) {
  refuse(path, options.page != 0 || options.allPages || !options.profile.empty());
  return {isFloatMap(path) ? readFloatMap(path) : readWithCodec(path),
          nullptr,
          path.extension().string(),
          {}};
}

Mask readMaskFile(const fs::path& path) {
  const Picture picture = readWithCodec(path);
  if (picture.planes != 1 || picture.depth != 8) fail(path, "a mask is an 8-bit grey picture");
  return {picture.width, picture.height, picture.bytes};
}

void checkWritable(const fs::path& path, const PictureFile& file, const EncodingOptions& options) {
  refuse(path, options.quality || options.depth || !options.compression.empty() ||
                   !options.format.empty());
  const Picture& picture = file.picture;
  if (const std::string reason = PartialFile::obstacle(path); !reason.empty()) fail(path, reason);
  if (isFloatMap(path)) {
    if (picture.depth != 32 || picture.hasAlpha) {
      fail(path, "a float map holds floats without alpha");
    }
    return;
  }
  const auto stream = make<IStream>(
      path, "writing", [](IStream** out) { return CreateStreamOnHGlobal(nullptr, TRUE, out); });
  startEncoding(path, stream.get(), picture);
}

WriteResult writePictureFile(const fs::path& path, PictureFile&& file, const EncodingOptions&,
                             const std::function<bool()>& aborted) {
  PartialFile partial(path);
  if (isFloatMap(path)) {
    writeFloatMap(partial.path(), path, file.picture);
  } else {
    writeWithCodec(partial.path(), path, file.picture, aborted);
    if (!aborted()) verify(partial.path(), path, file.picture);
  }
  if (aborted()) return {};
  if (const std::string error = partial.renameToTarget(); !error.empty()) fail(path, error);
  return {true, {}};
}

}  // namespace radiashafts::standin
