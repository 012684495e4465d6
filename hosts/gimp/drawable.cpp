#include "hosts/gimp/drawable.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

namespace radiashafts::gimp {
namespace {

struct Unref {
  // What was written goes to GIMP.
  void operator()(GeglBuffer* buffer) const { g_object_unref(buffer); }
};
using Buffer = std::unique_ptr<GeglBuffer, Unref>;

const char* sampleType(gint32 image) {
  switch (gimp_image_get_precision(image)) {
    case GIMP_PRECISION_U8_GAMMA:
      return " u8";
    case GIMP_PRECISION_U16_GAMMA:
      return " u16";
    default:
      return " float";
  }
}

const Babl* formatOf(gint32 drawable, gint32 image) {
  std::string name = gimp_drawable_is_gray(drawable) ? "Y'" : "R'G'B'";
  // Channels and masks hold plain numbers, which have no curve.
  if (gimp_item_is_channel(drawable)) name = "Y";
  if (gimp_drawable_has_alpha(drawable)) name += "A";
  name += sampleType(image);
  return babl_format(name.c_str());
}

void checkChangeable(gint32 id) {
  if (!gimp_item_is_valid(id) || !gimp_item_is_drawable(id)) {
    throw Failure("there is no drawable " + std::to_string(id));
  }
  gchar* const text = gimp_item_get_name(id);
  const std::string name = "'" + std::string(text) + "'";
  g_free(text);
  if (gimp_item_is_group(id)) throw Failure(name + " is a layer group: choose one of its layers");
  if (gimp_drawable_is_indexed(id)) {
    throw Failure(name + " has indexed colors: turn the image into RGB or grayscale first");
  }
  if (gimp_item_get_lock_content(id)) throw Failure("the pixels of " + name + " are locked");
}

}  // namespace

Picture::Picture(int pictureWidth, int pictureHeight, const Babl* pictureFormat)
    : width(pictureWidth), height(pictureHeight), format(pictureFormat) {
  bytes.resize(static_cast<std::size_t>(rowBytes()) * static_cast<std::size_t>(height));
}

int Picture::rowBytes() const {
  return width * babl_format_get_bytes_per_pixel(format);
}

radiashafts_picture Picture::view() {
  radiashafts_picture view{};
  const int planes = babl_format_get_n_components(format);
  const int pixelBytes = babl_format_get_bytes_per_pixel(format);
  view.width = width;
  view.height = height;
  view.depth = 8 * pixelBytes / planes;
  view.has_alpha = babl_format_has_alpha(format) ? 1 : 0;
  view.colors = planes - view.has_alpha;
  for (int i = 0; i < planes; ++i) view.planes[i] = bytes.data() + i * pixelBytes / planes;
  view.pixel_stride = pixelBytes;
  view.row_stride = rowBytes();
  return view;
}

Drawable::Drawable(gint32 id) : id_(id) {
  checkChangeable(id);
  image_ = gimp_item_get_image(id);
  width_ = gimp_drawable_width(id);
  height_ = gimp_drawable_height(id);
  format_ = formatOf(id, image_);
}

Picture Drawable::wholePicture() const {
  return read(1);
}

Picture Drawable::reducedPicture(int maximumWidth, int maximumHeight) const {
  return read(std::min({1.0, static_cast<double>(maximumWidth) / width_,
                        static_cast<double>(maximumHeight) / height_}));
}

Picture Drawable::read(double scale) const {
  const auto scaled = [scale](int side) {
    return std::max(1, static_cast<int>(std::lround(side * scale)));
  };
  Picture picture(scaled(width_), scaled(height_), format_);
  const Buffer buffer(gimp_drawable_get_buffer(id_));
  const GeglRectangle area{0, 0, picture.width, picture.height};
  gegl_buffer_get(buffer.get(), &area, scale, format_, picture.bytes.data(), picture.rowBytes(),
                  GEGL_ABYSS_CLAMP);
  return picture;
}

std::vector<std::uint8_t> Drawable::reducedSelection(const Picture& reduced) const {
  if (gimp_selection_is_empty(image_)) return {};
  const double scale = static_cast<double>(reduced.width) / width_;
  gint left = 0;
  gint top = 0;
  gimp_drawable_offsets(id_, &left, &top);
  const GeglRectangle area{static_cast<int>(std::lround(left * scale)),
                           static_cast<int>(std::lround(top * scale)), reduced.width,
                           reduced.height};
  std::vector<std::uint8_t> selection(static_cast<std::size_t>(reduced.width) *
                                      static_cast<std::size_t>(reduced.height));
  const Buffer buffer(gimp_drawable_get_buffer(gimp_image_get_selection(image_)));
  gegl_buffer_get(buffer.get(), &area, scale, babl_format("Y u8"), selection.data(), reduced.width,
                  GEGL_ABYSS_NONE);
  return selection;
}

const Babl* Drawable::displayFormat() const {
  GimpColorProfile* profile = gimp_image_get_effective_color_profile(image_);
  if (gimp_color_profile_is_linear(profile)) {  // the samples are not, see wholePicture
    GimpColorProfile* const linear = profile;
    profile = gimp_color_profile_new_srgb_trc_from_color_profile(linear);
    g_object_unref(linear);
  }
  // None, which stands for sRGB, where the profile has no such space.
  const Babl* const space = gimp_color_profile_get_space(
      profile, GIMP_COLOR_RENDERING_INTENT_RELATIVE_COLORIMETRIC, nullptr);
  g_object_unref(profile);
  return babl_format_with_space(babl_format_get_encoding(format_), space);
}

bool Drawable::replace(const Picture& picture) const {
  gint x = 0;
  gint y = 0;
  gint width = 0;
  gint height = 0;
  if (!gimp_drawable_mask_intersect(id_, &x, &y, &width, &height)) return false;
  {
    const Buffer shadow(gimp_drawable_get_shadow_buffer(id_));
    const GeglRectangle area{0, 0, picture.width, picture.height};
    gegl_buffer_set(shadow.get(), &area, 0, format_, picture.bytes.data(), picture.rowBytes());
  }
  gimp_drawable_merge_shadow(id_, TRUE);
  gimp_drawable_update(id_, x, y, width, height);
  return true;
}

}  // namespace radiashafts::gimp
