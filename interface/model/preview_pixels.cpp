#include "interface/model/preview_pixels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "image/stored_sample.h"

namespace radiashafts {
namespace {

struct Layout {
  int colors = 0;  // colour planes shown; 0 when the picture cannot be shown
  bool hasAlpha = false;
  int alphaPlane = 0;
};

Layout layoutOf(const hostapi::FilterRecord& record) {
  Layout layout;
  layout.alphaPlane = record.inLayerPlanes;
  if (record.inTransparencyMask >= 1) {
    layout.colors = record.inLayerPlanes;
    layout.hasAlpha = record.inLayerPlanes >= 0 && record.planes >= record.inLayerPlanes + 1;
  } else {
    layout.colors = record.inLayerPlanes != 0 ? record.inLayerPlanes : record.inNonLayerPlanes;
  }
  if (layout.colors <= 0) layout.colors = record.planes;
  layout.colors =
      std::min({layout.colors, hostapi::largestColorCount(record.imageMode), int{record.planes}});
  return layout;
}

// A colour sample on the bitmap's scale of 0 to 255.
double color(std::uint8_t sample) {
  return sample;
}
double color(std::uint16_t sample) {
  return sample * 0.007782101167315175;
}
double color(float sample) {
  return std::min(sample * 255.0, 255.0);
}

// An alpha sample on the scale of 0 to 1.
double alpha(std::uint8_t sample) {
  return sample * 0.003921569;
}
// 1 / 35768 although full opacity is 32768, so some of the background remains visible. This is
// intended: previews must stay the same, byte for byte.
double alpha(std::uint16_t sample) {
  return sample * 2.7957951241333034e-05;
}
double alpha(float sample) {
  return sample;
}

std::uint8_t toByte(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
}

// The background of transparent pixels. Its cells are 16 by 16 pixels of the whole image.
class Checkerboard {
 public:
  Checkerboard(const hostapi::FilterRecord& record, int width, int height)
      : imageWidth_(record.imageSize.h),
        imageHeight_(record.imageSize.v),
        width_(width),
        height_(height) {}

  double at(int x, int y) const {
    const int cellX = static_cast<int>(static_cast<double>(x) * imageWidth_ / width_) / 16;
    const int cellY = static_cast<int>(static_cast<double>(y) * imageHeight_ / height_) / 16;
    return (cellX & 1) + (cellY & 1) == 1 ? 255.0 : 208.0;
  }

 private:
  int imageWidth_, imageHeight_, width_, height_;
};

// The source plane of each byte of a bitmap pixel; -1 is black. With two channels the order is the
// same for host and system: second channel, first channel, black.
std::array<int, 3> planesInOrder(int colors, BitmapOrder order) {
  if (colors == 1) return {0, 0, 0};
  if (colors == 2) return {1, 0, -1};
  return order == BitmapOrder::forHost ? std::array{0, 1, 2} : std::array{2, 1, 0};
}

template <class Sample>
std::uint8_t opaqueByte(Sample sample) {
  if constexpr (std::is_same_v<Sample, std::uint8_t>) return sample;
  return toByte(color(sample));
}

template <class Sample>
std::uint8_t blendedByte(double background, double opacity, Sample sample) {
  return toByte((color(sample) - background) * opacity + background);
}

template <class Sample>
void drawPixels(const hostapi::FilterRecord& record, const Layout& layout, BitmapOrder order,
                int bitmapWidth, std::uint8_t* bitmap) {
  const int width = record.outRect.right - record.outRect.left;
  const int height = record.outRect.bottom - record.outRect.top;
  const Checkerboard checkerboard(record, width, height);
  const std::array<int, 3> planes = planesInOrder(layout.colors, order);
  const auto bitmapStride = static_cast<std::ptrdiff_t>(bitmapWidth) * 3;
  for (int y = 0; y < height; ++y) {
    const auto* pixel = reinterpret_cast<const StoredSample<Sample>*>(
        static_cast<const std::uint8_t*>(record.outData) +
        static_cast<std::ptrdiff_t>(y) * record.outRowBytes);
    std::uint8_t* out =
        bitmap + (order == BitmapOrder::forHost ? y : height - 1 - y) * bitmapStride;
    for (int x = 0; x < width; ++x, pixel += record.planes) {
      const auto sampleOf = [&](int plane) { return plane < 0 ? Sample{} : pixel[plane]; };
      if (layout.hasAlpha) {
        const double opacity = alpha(pixel[layout.alphaPlane]);
        const double background = checkerboard.at(x, y);
        for (const int plane : planes) *out++ = blendedByte(background, opacity, sampleOf(plane));
      } else {
        for (const int plane : planes) *out++ = opaqueByte(sampleOf(plane));
      }
    }
  }
}

}  // namespace

bool drawToPreview(const hostapi::FilterRecord& record, BitmapOrder order, int bitmapWidth,
                   std::uint8_t* bitmap) {
  trace("pfPreviewWin32::DrawToPreview()");
  if (hostapi::largestColorCount(record.imageMode) == 0) {
    logLine(severityError, errorMarker, "Invalid imageMode");
    return false;
  }
  const Layout layout = layoutOf(record);
  if (record.outData == nullptr || layout.colors <= 0) return false;
  const hostapi::Rect& rect = record.outRect;
  if (rect.right - rect.left > hostapi::maximumSide) return false;
  if (rect.bottom - rect.top > hostapi::maximumSide) return false;
  switch (record.depth) {
    case 32:
      drawPixels<float>(record, layout, order, bitmapWidth, bitmap);
      return true;
    case 16:
      drawPixels<std::uint16_t>(record, layout, order, bitmapWidth, bitmap);
      return true;
    case 8:
    case 0:
      drawPixels<std::uint8_t>(record, layout, order, bitmapWidth, bitmap);
      return true;
    default:
      return false;
  }
}

}  // namespace radiashafts
