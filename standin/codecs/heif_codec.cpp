// HEIC and AVIF through libheif, which turns pictures upright itself.

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <libheif/heif.h>

#include "standin/codecs/codec.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

template <auto release>
struct Release {
  template <class Object>
  void operator()(Object* object) const {
    release(object);
  }
};
using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Release<heif_image_release>>;
using HeifEncoder = std::unique_ptr<heif_encoder, Release<heif_encoder_release>>;
using Nclx = std::shared_ptr<heif_color_profile_nclx>;

void check(const heif_error& error) {
  if (error.code != heif_error_Ok) throw std::runtime_error(error.message);
}

// Calls a function that makes an object at the address it gets.
template <class Owner, class Make>
Owner make(const Make& function) {
  typename Owner::pointer object = nullptr;
  check(function(&object));
  return Owner(object);
}

Handle pageOf(heif_context* context, int page, FileMetadata& metadata) {
  const int count = heif_context_get_number_of_top_level_images(context);
  metadata.hasNextPage = std::max(page, 1) < count;
  if (page == 0) {
    return make<Handle>([&](heif_image_handle** handle) {
      return heif_context_get_primary_image_handle(context, handle);
    });
  }
  if (page > count) throw std::runtime_error("has no page " + std::to_string(page));
  std::vector<heif_item_id> ids(static_cast<std::size_t>(count));
  heif_context_get_list_of_top_level_image_IDs(context, ids.data(), count);
  return make<Handle>([&](heif_image_handle** handle) {
    return heif_context_get_image_handle(context, ids[static_cast<std::size_t>(page) - 1], handle);
  });
}

std::string metadataBlock(const heif_image_handle* handle, heif_item_id id) {
  std::string bytes(heif_image_handle_get_metadata_size(handle, id), '\0');
  if (heif_image_handle_get_metadata(handle, id, bytes.data()).code != heif_error_Ok) return {};
  return bytes;
}

void readMetadata(const heif_image_handle* handle, FileMetadata& metadata) {
  std::vector<heif_item_id> ids(
      static_cast<std::size_t>(heif_image_handle_get_number_of_metadata_blocks(handle, nullptr)));
  heif_image_handle_get_list_of_metadata_block_IDs(handle, nullptr, ids.data(),
                                                   static_cast<int>(ids.size()));
  for (const heif_item_id id : ids) {
    const std::string_view type = heif_image_handle_get_metadata_type(handle, id);
    const std::string_view content = heif_image_handle_get_metadata_content_type(handle, id);
    std::string bytes = metadataBlock(handle, id);
    constexpr std::size_t offsetSize = 4;  // of the header, which is nearly always 0
    if (type == "Exif" && bytes.size() > offsetSize) {
      std::size_t offset = 0;
      for (std::size_t i = 0; i < offsetSize; ++i) {
        offset = offset << 8 | static_cast<std::uint8_t>(bytes[i]);
      }
      offset = std::min(offset, bytes.size() - offsetSize);
      readExif(std::string_view(bytes).substr(offsetSize + offset), metadata);
      metadata.exif.replaceNumber(tagOrientation, 1);
    } else if (type == "mime" && content == "application/rdf+xml") {
      metadata.xmp = std::move(bytes);
    }
  }
  metadata.profile.resize(heif_image_handle_get_raw_color_profile_size(handle));
  if (!metadata.profile.empty()) {
    check(heif_image_handle_get_raw_color_profile(handle, metadata.profile.data()));
  }
  heif_color_profile_nclx* nclx = nullptr;
  if (heif_image_handle_get_nclx_color_profile(handle, &nclx).code == heif_error_Ok) {
    metadata.nclx = Nclx(nclx, heif_nclx_color_profile_free);
  }
}

// From the file's scale of 10 or 12 bits to words, or back.
void scaleWords(std::uint16_t* samples, std::size_t count, std::uint32_t from, std::uint32_t to) {
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = static_cast<std::uint16_t>((samples[i] * to + from / 2) / from);
  }
}

std::uint32_t fullScale(int bits) {
  return (1U << bits) - 1;
}

DecodedPicture decodeHeif(const fs::path& path, int page) {
  const Context context(heif_context_alloc());
  check(heif_context_read_from_file(context.get(), path.c_str(), nullptr));
  DecodedPicture decoded;
  const Handle handle = pageOf(context.get(), page, *decoded.metadata);
  checkSides(static_cast<unsigned>(heif_image_handle_get_width(handle.get())),
             static_cast<unsigned>(heif_image_handle_get_height(handle.get())));
  const int bits = heif_image_handle_get_luma_bits_per_pixel(handle.get());
  Picture& picture = decoded.picture;
  picture.depth = bits > 8 ? 16 : 8;
  picture.colorPlanes = 3;
  picture.hasAlpha = heif_image_handle_has_alpha_channel(handle.get()) != 0;
  picture.planes = picture.hasAlpha ? 4 : 3;
  const heif_chroma layout = bits > 8 ? picture.hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE
                                                         : heif_chroma_interleaved_RRGGBB_LE
                             : picture.hasAlpha ? heif_chroma_interleaved_RGBA
                                                : heif_chroma_interleaved_RGB;
  const Image image = make<Image>([&](heif_image** out) {
    return heif_decode_image(handle.get(), out, heif_colorspace_RGB, layout, nullptr);
  });
  picture.width = heif_image_get_width(image.get(), heif_channel_interleaved);
  picture.height = heif_image_get_height(image.get(), heif_channel_interleaved);
  picture.allocate();
  int stride = 0;
  const std::uint8_t* from =
      heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
  for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y, from += stride) {
    std::uint8_t* const row = &picture.bytes[y * picture.rowBytes()];
    std::memcpy(row, from, picture.rowBytes());
    if (bits > 8) {
      scaleWords(reinterpret_cast<std::uint16_t*>(row), picture.rowBytes() / 2, fullScale(bits),
                 fullScale(16));
    }
  }
  decoded.isPremultiplied = heif_image_handle_is_premultiplied_alpha(handle.get()) != 0;
  readMetadata(handle.get(), *decoded.metadata);
  decoded.metadata->bits = bits;
  constexpr int filter = LIBHEIF_AUX_IMAGE_FILTER_OMIT_ALPHA;
  if (heif_image_handle_get_number_of_auxiliary_images(handle.get(), filter) > 0) {
    decoded.metadata->notes.emplace_back("the input's depth or gain map is left out");
  }
  return decoded;
}

Image imageOf(const Picture& picture, int bits) {
  const heif_chroma layout = bits > 8 ? picture.hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE
                                                         : heif_chroma_interleaved_RRGGBB_LE
                             : picture.hasAlpha ? heif_chroma_interleaved_RGBA
                                                : heif_chroma_interleaved_RGB;
  Image image = make<Image>([&](heif_image** out) {
    return heif_image_create(picture.width, picture.height, heif_colorspace_RGB, layout, out);
  });
  check(heif_image_add_plane(image.get(), heif_channel_interleaved, picture.width, picture.height,
                             bits));
  int stride = 0;
  std::uint8_t* to = heif_image_get_plane(image.get(), heif_channel_interleaved, &stride);
  for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y, to += stride) {
    std::memcpy(to, &picture.bytes[y * picture.rowBytes()], picture.rowBytes());
    if (bits > 8) {
      scaleWords(reinterpret_cast<std::uint16_t*>(to), picture.rowBytes() / 2, fullScale(16),
                 fullScale(bits));
    }
  }
  return image;
}

// AVIF decoders take all of these, those of HEIC in hardware the default alone, which is 4:2:0.
const char* avifChroma(int bits, int quality) {
  constexpr int tenBits = 10;
  // libheif 1.15 asks for AV1's profile 2, in which 10 bits have to be 4:2:2: the encoder ends the
  // program for any other.
  if (bits == tenBits) return "422";
  constexpr int fineQuality = 90;
  return quality >= fineQuality ? "444" : "420";
}

void encodeHeif(const fs::path& path, const EncodedPicture& encoded) {
  const Picture& picture = encoded.picture;
  const FileMetadata& metadata = encoded.metadata;
  const bool isAvif = encoded.extension == ".avif";
  constexpr int goodQuality = 90;
  const int quality = encoded.options.quality.value_or(goodQuality);
  const Context context(heif_context_alloc());
  const HeifEncoder encoder = make<HeifEncoder>([&](heif_encoder** out) {
    return heif_context_get_encoder_for_format(
        context.get(), isAvif ? heif_compression_AV1 : heif_compression_HEVC, out);
  });
  check(heif_encoder_set_lossy_quality(encoder.get(), quality));
  if (isAvif) {
    check(heif_encoder_set_parameter_string(encoder.get(), "chroma",
                                            avifChroma(encoded.bits, quality)));
  }
  const Image image = imageOf(picture, encoded.bits);
  if (!metadata.profile.empty()) {
    check(heif_image_set_raw_color_profile(image.get(), "prof", metadata.profile.data(),
                                           metadata.profile.size()));
  }
  std::unique_ptr<heif_encoding_options, Release<heif_encoding_options_free>> options(
      heif_encoding_options_alloc());
  if (const Nclx* nclx = std::any_cast<Nclx>(&metadata.nclx)) {
    check(heif_image_set_nclx_color_profile(image.get(), nclx->get()));
    options->output_nclx_profile = nclx->get();
    options->macOS_compatibility_workaround_no_nclx_profile = 0;
    options->save_two_colr_boxes_when_ICC_and_nclx_available = 1;
  }
  const Handle handle = make<Handle>([&](heif_image_handle** out) {
    return heif_context_encode_image(context.get(), image.get(), encoder.get(), options.get(), out);
  });
  if (encoded.aborted()) return;
  if (!metadata.exif.empty()) {
    const std::string exif = metadata.exif.block();
    check(heif_context_add_exif_metadata(context.get(), handle.get(), exif.data(),
                                         static_cast<int>(exif.size())));
  }
  if (!metadata.xmp.empty()) {
    check(heif_context_add_XMP_metadata(context.get(), handle.get(), metadata.xmp.data(),
                                        static_cast<int>(metadata.xmp.size())));
  }
  check(heif_context_write_to_file(context.get(), path.c_str()));
}

bool isHeif(std::string_view start) {
  constexpr std::string_view brands[] = {"heic", "heix", "heim", "heis", "hevc",
                                         "hevx", "mif1", "msf1", "avif", "avis"};
  return start.substr(4, 4) == "ftyp" &&
         std::find(std::begin(brands), std::end(brands), start.substr(8, 4)) != std::end(brands);
}

}  // namespace

const Codec heifCodec{
    .format = "heif",
    .extensions = {".heic", ".heif", ".hif", ".avif"},
    .recognises = isHeif,
    .limits = {.gray = false, .alpha = true, .depth = 16, .side = 65535},
    .decode = decodeHeif,
    .encode = encodeHeif,
};

}  // namespace radiashafts::standin
