// JPEG through libjpeg.

#include <algorithm>
#include <cstdlib>
#include <set>
#include <stdexcept>

#include <jerror.h>
#include <jpeglib.h>

#include "standin/codecs/codec.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

constexpr int markerExif = JPEG_APP0 + 1;  // XMP, too
constexpr int markerProfile = JPEG_APP0 + 2;
constexpr int markerResources = JPEG_APP0 + 13;
constexpr int lastMarker = JPEG_APP0 + 15;
constexpr std::size_t largestMarker = 65533;

constexpr std::string_view exifHeader("Exif\0\0", 6);
constexpr std::string_view xmpHeader("http://ns.adobe.com/xap/1.0/\0", 29);
constexpr std::string_view xmpExtensionHeader("http://ns.adobe.com/xmp/extension/\0", 35);
constexpr std::string_view profileHeader("ICC_PROFILE\0", 12);
constexpr std::string_view resourcesHeader("Photoshop 3.0\0", 14);

// What other segments begin with that only say how the picture is stored, show it as it was, or
// tell where the pictures behind it are.
constexpr std::string_view encodingHeaders[] = {"JFIF",  "JFXX",     "Adobe",
                                                "Ducky", "Adobe_CM", std::string_view("MPF\0", 4)};

// Turns the library's errors into exceptions and counts its warnings.
struct ErrorManager : jpeg_error_mgr {
  ErrorManager() : jpeg_error_mgr() {
    jpeg_std_error(this);
    error_exit = [](j_common_ptr info) {
      char text[JMSG_LENGTH_MAX];
      info->err->format_message(info, text);
      throw std::runtime_error(text);
    };
    emit_message = [](j_common_ptr info, int level) {
      if (info->err->msg_code == JWRN_JPEG_EOF) throw std::runtime_error("the file is truncated");
      if (level < 0) ++info->err->num_warnings;
    };
  }
};

struct Decoder : jpeg_decompress_struct {
  Decoder() : jpeg_decompress_struct() {
    err = &errors;
    jpeg_create_decompress(this);
  }
  ~Decoder() { jpeg_destroy_decompress(this); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;
  ErrorManager errors;
};

struct Encoder : jpeg_compress_struct {
  Encoder() : jpeg_compress_struct() {
    err = &errors;
    jpeg_create_compress(this);
  }
  ~Encoder() { jpeg_destroy_compress(this); }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;
  ErrorManager errors;
};

bool saysOnlyEncoding(std::string_view data) {
  return std::any_of(std::begin(encodingHeaders), std::end(encodingHeaders),
                     [&](std::string_view header) { return data.starts_with(header); });
}

void noteLeftOut(const std::set<int>& markers, FileMetadata& metadata) {
  if (markers.empty()) return;
  std::string names;
  for (const int marker : markers) {
    names += (names.empty() ? "APP" : ", APP") + std::to_string(marker - JPEG_APP0);
  }
  metadata.notes.push_back("what a camera or program has put into the input's segments " + names +
                           " is left out");
}

void readMarkers(Decoder& decoder, FileMetadata& metadata) {
  std::string resources;
  std::set<int> leftOut;
  for (const jpeg_marker_struct* marker = decoder.marker_list; marker != nullptr;
       marker = marker->next) {
    const std::string_view data(reinterpret_cast<const char*>(marker->data), marker->data_length);
    const auto startsWith = [&](int number, std::string_view header) {
      return marker->marker == number && data.substr(0, header.size()) == header;
    };
    if (marker->marker == JPEG_COM) {
      // Nothing tells the encoding; what is more than ASCII is UTF-8 today.
      const bool isAscii = std::all_of(data.begin(), data.end(), [](char c) { return c >= 0; });
      metadata.texts.push_back({commentKeyword, std::string(data), isAscii ? -1 : 1, "", ""});
    } else if (startsWith(markerExif, exifHeader) && metadata.exif.empty()) {
      readExif(data.substr(exifHeader.size()), metadata);
    } else if (startsWith(markerExif, xmpHeader)) {
      metadata.xmp = data.substr(xmpHeader.size());
    } else if (startsWith(markerExif, xmpExtensionHeader)) {
      metadata.xmpExtensions.emplace_back(data);
    } else if (startsWith(markerResources, resourcesHeader)) {
      resources += data.substr(resourcesHeader.size());
    } else if (!startsWith(markerProfile, profileHeader) && !saysOnlyEncoding(data)) {
      leftOut.insert(marker->marker);
    }
  }
  noteLeftOut(leftOut, metadata);
  metadata.resources = splitImageResources(resources);
  JOCTET* profile = nullptr;
  unsigned size = 0;
  if (jpeg_read_icc_profile(&decoder, &profile, &size) == TRUE) {
    metadata.profile.assign(reinterpret_cast<const char*>(profile), size);
    std::free(profile);
  }
  if (decoder.saw_JFIF_marker == TRUE) {
    constexpr Density::Unit units[] = {Density::none, Density::inch, Density::centimetre};
    metadata.density =
        Density{static_cast<double>(decoder.X_density), static_cast<double>(decoder.Y_density),
                units[std::min<int>(decoder.density_unit, 2)]};
  }
}

JpegEncoding encodingOf(const Decoder& decoder) {
  JpegEncoding encoding;
  encoding.progressive = jpeg_has_multiple_scans(const_cast<Decoder*>(&decoder)) == TRUE &&
                         decoder.progressive_mode == TRUE;
  encoding.hasJfifHeader = decoder.saw_JFIF_marker == TRUE;
  for (int i = 0; i < decoder.num_components; ++i) {
    const jpeg_component_info& from = decoder.comp_info[i];
    const JQUANT_TBL* table = decoder.quant_tbl_ptrs[from.quant_tbl_no];
    if (table == nullptr) return {};
    JpegEncoding::Component component{from.h_samp_factor, from.v_samp_factor, {}};
    std::copy(std::begin(table->quantval), std::end(table->quantval),
              component.quantisation.begin());
    encoding.components.push_back(component);
  }
  return encoding;
}

// Whether the file goes on behind its picture, other than with zeros.
bool hasMore(const Decoder& decoder, std::FILE* file) {
  const jpeg_source_mgr& source = *decoder.src;
  std::string rest(reinterpret_cast<const char*>(source.next_input_byte), source.bytes_in_buffer);
  do {
    if (rest.find_first_not_of('\0') != std::string::npos) return true;
    rest.resize(4096);
    rest.resize(std::fread(rest.data(), 1, rest.size(), file));
  } while (!rest.empty());
  return false;
}

DecodedPicture decodeJpeg(const fs::path& path, int) {
  const File file = openFile(path, "rb");
  Decoder decoder;
  DecodedPicture decoded;
  FileMetadata& metadata = *decoded.metadata;
  jpeg_stdio_src(&decoder, file.get());
  jpeg_save_markers(&decoder, JPEG_COM, 0xFFFF);
  for (int marker = markerExif; marker <= lastMarker; ++marker) {
    jpeg_save_markers(&decoder, marker, 0xFFFF);
  }
  jpeg_read_header(&decoder, TRUE);
  checkSides(decoder.image_width, decoder.image_height);
  readMarkers(decoder, metadata);
  decoded.isCmyk = decoder.num_components == 4;
  decoder.out_color_space = decoded.isCmyk                ? JCS_CMYK
                            : decoder.num_components == 1 ? JCS_GRAYSCALE
                                                          : JCS_RGB;
  jpeg_start_decompress(&decoder);
  const bool isPlain = decoder.jpeg_color_space == JCS_YCbCr || decoder.num_components == 1;
  Picture& picture = decoded.picture;
  picture.width = static_cast<int>(decoder.output_width);
  picture.height = static_cast<int>(decoder.output_height);
  picture.planes = picture.colorPlanes = decoder.output_components;
  picture.allocate();
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW row = &picture.bytes[decoder.output_scanline * picture.rowBytes()];
    jpeg_read_scanlines(&decoder, &row, 1);
  }
  // The tables of all scans have been read now.
  if (isPlain) metadata.jpeg = encodingOf(decoder);
  jpeg_finish_decompress(&decoder);
  if (hasMore(decoder, file.get())) {
    metadata.notes.emplace_back(
        "what follows the input's picture, such as a preview, a gain map or a video, is left out");
  }
  // This marker's author stores CMYK as full scale less the ink.
  if (decoded.isCmyk && decoder.saw_Adobe_marker == TRUE) {
    for (std::uint8_t& sample : picture.bytes) sample = static_cast<std::uint8_t>(255 - sample);
  }
  if (decoder.errors.num_warnings > 0) {
    metadata.notes.emplace_back("the input's picture data is damaged");
  }
  return decoded;
}

std::string utf8Of(const PictureText& text) {
  if (text.compression > 0) return text.text;
  std::string utf8;
  for (const char character : text.text) {  // of Latin-1
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x80) {
      utf8 += character;
    } else {
      utf8 += {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
    }
  }
  return utf8;
}

// The input's tables and sampling, or those of the quality that is asked for.
void setQuality(Encoder& encoder, const JpegEncoding* input, const EncodingOptions& options) {
  const bool likeInput =
      input != nullptr && static_cast<int>(input->components.size()) == encoder.num_components;
  constexpr int goodQuality = 95;
  const int quality = options.quality.value_or(goodQuality);
  jpeg_set_quality(&encoder, quality, TRUE);
  // From this quality on colours that are half as fine would show.
  constexpr int fineQuality = 90;
  const int coarse = quality >= fineQuality ? 1 : 2;
  encoder.comp_info[0].h_samp_factor = encoder.comp_info[0].v_samp_factor = coarse;
  if (!likeInput) return;
  std::vector<std::array<std::uint16_t, 64>> tables;
  for (int i = 0; i < encoder.num_components; ++i) {
    const JpegEncoding::Component& component = input->components[static_cast<std::size_t>(i)];
    jpeg_component_info& to = encoder.comp_info[i];
    to.h_samp_factor = component.horizontal;
    to.v_samp_factor = component.vertical;
    if (options.quality) continue;
    const auto found = std::find(tables.begin(), tables.end(), component.quantisation);
    to.quant_tbl_no = static_cast<int>(found - tables.begin());
    if (found != tables.end()) continue;
    tables.push_back(component.quantisation);
    std::array<unsigned, 64> table{};
    std::copy(component.quantisation.begin(), component.quantisation.end(), table.begin());
    jpeg_add_quant_table(&encoder, to.quant_tbl_no, table.data(), 100, FALSE);
  }
  if (input->progressive) jpeg_simple_progression(&encoder);
}

void writeMarkers(Encoder& encoder, const EncodedPicture& encoded) {
  const FileMetadata& metadata = encoded.metadata;
  const auto write = [&](int marker, std::string_view header, std::string_view data,
                         const char* what) {
    if (data.empty()) return;
    const std::string whole = std::string(header) + std::string(data);
    if (whole.size() > largestMarker) {
      encoded.notes.push_back(std::string("the ") + what + " is too large for jpeg, and left out");
      return;
    }
    jpeg_write_marker(&encoder, marker, reinterpret_cast<const JOCTET*>(whole.data()),
                      static_cast<unsigned>(whole.size()));
  };
  if (!metadata.exif.empty()) write(markerExif, exifHeader, metadata.exif.block(), "EXIF data");
  write(markerExif, xmpHeader, metadata.xmp, "XMP data");
  for (const std::string& extension : metadata.xmpExtensions) {
    write(markerExif, "", extension, "extended XMP data");
  }
  const std::string resources = joinImageResources(metadata.resources);
  constexpr std::size_t piece = largestMarker - resourcesHeader.size();
  for (std::size_t at = 0; at < resources.size(); at += piece) {
    write(markerResources, resourcesHeader, std::string_view(resources).substr(at, piece), "");
  }
  if (!metadata.profile.empty()) {
    jpeg_write_icc_profile(&encoder, reinterpret_cast<const JOCTET*>(metadata.profile.data()),
                           static_cast<unsigned>(metadata.profile.size()));
  }
  for (const PictureText& text : metadata.texts) {
    if (text.keyword == commentKeyword) write(JPEG_COM, "", utf8Of(text), "comment");
  }
}

void encodeJpeg(const fs::path& path, const EncodedPicture& encoded) {
  const Picture& picture = encoded.picture;
  const FileMetadata& metadata = encoded.metadata;
  File file = openFile(path, "wb");
  Encoder encoder;
  jpeg_stdio_dest(&encoder, file.get());
  encoder.image_width = static_cast<JDIMENSION>(picture.width);
  encoder.image_height = static_cast<JDIMENSION>(picture.height);
  encoder.input_components = picture.planes;
  encoder.in_color_space = picture.planes == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&encoder);
  setQuality(encoder, metadata.jpeg ? &*metadata.jpeg : nullptr, encoded.options);
  encoder.write_JFIF_header = !metadata.jpeg || metadata.jpeg->hasJfifHeader ? TRUE : FALSE;
  if (metadata.density) {
    const auto rounded = [](double density) {
      return static_cast<UINT16>(std::clamp(density + 0.5, 1.0, 65535.0));
    };
    encoder.density_unit = static_cast<UINT8>(metadata.density->unit);
    encoder.X_density = rounded(metadata.density->x);
    encoder.Y_density = rounded(metadata.density->y);
  }
  jpeg_start_compress(&encoder, TRUE);
  writeMarkers(encoder, encoded);
  while (encoder.next_scanline < encoder.image_height) {
    if (encoder.next_scanline % 64 == 0 && encoded.aborted()) return;
    JSAMPROW row = const_cast<JSAMPROW>(&picture.bytes[encoder.next_scanline * picture.rowBytes()]);
    jpeg_write_scanlines(&encoder, &row, 1);
  }
  jpeg_finish_compress(&encoder);
  finishFile(std::move(file));
}

}  // namespace

const Codec jpegCodec{
    .format = "jpeg",
    .extensions = {".jpg", ".jpeg", ".jpe", ".jif", ".jfif"},
    .recognises = [](std::string_view start) { return start.substr(0, 3) == "\xFF\xD8\xFF"; },
    .limits = {.gray = true, .alpha = false, .depth = 8, .side = 65500},
    .decode = decodeJpeg,
    .encode = encodeJpeg,
};

}  // namespace radiashafts::standin
