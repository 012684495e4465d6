#include "interface/model/preview_pixels.h"

#include <algorithm>
#include <array>
#include <cmath>

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

bool isLargest(std::uint8_t sample) {
  return sample == 255;
}
bool isLargest(std::uint16_t sample) {
  return sample >= 32768;
}
bool isLargest(float sample) {
  return sample >= 1.0F;
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

  int cellOfRow(int y) const {
    return static_cast<int>(static_cast<double>(y) * imageHeight_ / height_) / 16;
  }
  double at(int x, int cellY) const {
    const int cellX = static_cast<int>(static_cast<double>(x) * imageWidth_ / width_) / 16;
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

std::uint8_t opaqueByte(std::uint8_t sample) {
  return sample;
}
std::uint8_t opaqueByte(std::uint16_t sample) {
  return static_cast<std::uint8_t>(std::min(static_cast<int>(color(sample)), 255));
}
std::uint8_t opaqueByte(float sample) {
  return toByte(color(sample));
}

template <class Sample>
std::uint8_t blendedByte(double background, double opacity, Sample sample) {
  return toByte((color(sample) - background) * opacity + background);
}

// Opaque pixels with a byte of 255, which only the largest samples become.
int clippedPixels(const std::uint8_t* row, int width) {
  constexpr int pixels = 16;
  constexpr int bytes = 3 * pixels;  // what three vectors hold
  constexpr int mostBlocks = 255;    // a sum of these fits in a byte
  const auto largest = [](std::uint8_t byte) { return isLargest(byte) ? 1 : 0; };
  int clipped = 0;
  int x = 0;
  // Every third sum is of pixels. The others cost nothing: the compiler adds whole vectors.
  while (x + pixels < width) {
    const int blocks = std::min((width - 1 - x) / pixels, mostBlocks);
    std::array<std::uint8_t, bytes> sums{};
    for (int block = 0; block < blocks; ++block, row += bytes) {
      for (std::size_t i = 0; i < bytes; ++i) {
        sums[i] +=
            static_cast<std::uint8_t>(largest(row[i]) | largest(row[i + 1]) | largest(row[i + 2]));
      }
    }
    for (std::size_t i = 0; i < bytes; i += 3) clipped += sums[i];
    x += blocks * pixels;
  }
  for (; x < width; ++x, row += 3) clipped += largest(row[0]) | largest(row[1]) | largest(row[2]);
  return clipped;
}

template <class Sample>
DrawnPixels drawPixels(const hostapi::FilterRecord& record, const Layout& layout, BitmapOrder order,
                       int bitmapWidth, std::uint8_t* bitmap) {
  const int width = record.outRect.right - record.outRect.left;
  const int height = record.outRect.bottom - record.outRect.top;
  const Checkerboard checkerboard(record, width, height);
  const std::array<int, 3> planes = planesInOrder(layout.colors, order);
  const auto bitmapStride = static_cast<std::ptrdiff_t>(bitmapWidth) * 3;
  DrawnPixels drawn;
  for (int y = 0; y < height; ++y) {
    const auto* pixel = reinterpret_cast<const StoredSample<Sample>*>(
        static_cast<const std::uint8_t*>(record.outData) +
        static_cast<std::ptrdiff_t>(y) * record.outRowBytes);
    const int cellY = checkerboard.cellOfRow(y);
    std::uint8_t* const row =
        bitmap + (order == BitmapOrder::forHost ? y : height - 1 - y) * bitmapStride;
    std::uint8_t* out = row;
    for (int x = 0; x < width; ++x, pixel += record.planes) {
      const auto sampleOf = [&](int plane) { return plane < 0 ? Sample{} : pixel[plane]; };
      if (layout.hasAlpha) {
        const double opacity = alpha(pixel[layout.alphaPlane]);
        const double background = checkerboard.at(x, cellY);
        bool isClipped = false;
        for (const int plane : planes) {
          isClipped |= isLargest(sampleOf(plane));
          *out++ = blendedByte(background, opacity, sampleOf(plane));
        }
        drawn.visible += opacity > 0.0 ? 1 : 0;
        drawn.clipped += opacity > 0.0 && isClipped ? 1 : 0;
      } else {
        for (const int plane : planes) *out++ = opaqueByte(sampleOf(plane));
      }
    }
    if (!layout.hasAlpha) {
      drawn.visible += std::max(width, 0);
      drawn.clipped += clippedPixels(row, width);
    }
  }
  return drawn;
}

}  // namespace

std::optional<DrawnPixels> drawToPreview(const hostapi::FilterRecord& record, BitmapOrder order,
                                         int bitmapWidth, std::uint8_t* bitmap) {
  trace("pfPreviewWin32::DrawToPreview()");
  if (hostapi::largestColorCount(record.imageMode) == 0) {
    logLine(severityError, errorMarker, "Invalid imageMode");
    return std::nullopt;
  }
  const Layout layout = layoutOf(record);
  if (record.outData == nullptr || layout.colors <= 0) return std::nullopt;
  const hostapi::Rect& rect = record.outRect;
  if (rect.right - rect.left > hostapi::maximumSide) return std::nullopt;
  if (rect.bottom - rect.top > hostapi::maximumSide) return std::nullopt;
  switch (record.depth) {
    case 32:
      return drawPixels<float>(record, layout, order, bitmapWidth, bitmap);
    case 16:
      return drawPixels<std::uint16_t>(record, layout, order, bitmapWidth, bitmap);
    case 8:
    case 0:
      return drawPixels<std::uint8_t>(record, layout, order, bitmapWidth, bitmap);
    default:
      return std::nullopt;
  }
}

}  // namespace radiashafts
