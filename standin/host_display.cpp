#include "standin/host_display.h"

#include <algorithm>
#include <memory>

#include "hostapi/constants.h"
#include "standin/system/drawing.h"

namespace radiashafts::standin {

hostapi::OSErr displayPixels(const hostapi::PSPixelMap* source, const hostapi::VRect* sourceRect,
                             std::int32_t row, std::int32_t column, void* deviceContext) {
  constexpr hostapi::OSErr refused = -50;
  if (source == nullptr || sourceRect == nullptr || deviceContext == nullptr) return refused;
  const hostapi::VRect& bounds = source->bounds;
  const bool inside = sourceRect->left >= bounds.left && sourceRect->top >= bounds.top &&
                      sourceRect->right <= bounds.right && sourceRect->bottom <= bounds.bottom;
  const bool grey = source->imageMode == hostapi::modeGrayScale;
  if (!inside || (!grey && source->imageMode != hostapi::modeRGB)) return refused;
  const int width = sourceRect->right - sourceRect->left;
  const int height = sourceRect->bottom - sourceRect->top;
  if (width <= 0 || height <= 0) return 0;

  const std::int32_t green = grey ? 0 : source->planeBytes;
  const std::int32_t blue = 2 * green;
  const int stride = (width * 3 + 3) / 4 * 4;
  const auto pixels = std::make_unique_for_overwrite<std::uint8_t[]>(
      static_cast<std::size_t>(stride) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    const auto* from =
        static_cast<const std::uint8_t*>(source->baseAddr) +
        static_cast<std::ptrdiff_t>(sourceRect->top - bounds.top + y) * source->rowBytes +
        static_cast<std::ptrdiff_t>(sourceRect->left - bounds.left) * source->colBytes;
    std::uint8_t* to = &pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(stride)];
    for (int x = 0; x < width; ++x, from += source->colBytes) {
      *to++ = from[blue];
      *to++ = from[green];
      *to++ = from[0];
    }
  }
  return standin::drawPixels(deviceContext, column, row, width, height, pixels.get())
             ? hostapi::OSErr{0}
             : refused;
}

}  // namespace radiashafts::standin
