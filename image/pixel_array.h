// A view of one image: a plain value that never owns the buffer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "image/instruction_set.h"
#include "image/stored_sample.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Strided is 1 for the host's buffers: the pixel stride is read from the view, because pixels may
// have more planes than the pixel type uses, and samples may be unaligned. It is 0 for our own
// buffers, whose pixels are adjacent.
template <class PixelType, int Reserved, int Strided>
struct PixelArray {
  using Pixel = PixelType;
  using Sample = typename Pixel::Sample;
  using Stored = std::conditional_t<Strided != 0, StoredSample<Sample>, Sample>;

  std::int32_t width = 0;        // pixels in a row
  std::int32_t height = 0;       // rows
  std::int32_t rowStride = 0;    // bytes from a row to the next
  std::int32_t pixelStride = 0;  // bytes from a pixel to the next in a row
  std::int32_t frameX = 0;       // the first pixel in the coordinates of the whole frame
  std::int32_t frameY = 0;
  double scale = 1.0;
  std::uint8_t* data = nullptr;
  bool valid = false;          // the view has data; image code tests the pointer
  bool premultiplied = false;  // the colours are multiplied by alpha in the buffer

  std::ptrdiff_t stride() const {
    if constexpr (Strided != 0) return pixelStride;
    return Pixel::bytes;
  }
  std::uint8_t* rowBytes(std::int32_t y) const {
    return data + static_cast<std::ptrdiff_t>(y) * rowStride;
  }
  Stored* at(std::int32_t x, std::int32_t y) const {
    return reinterpret_cast<Stored*>(rowBytes(y) + x * stride());
  }
  // Pixel x of a row like the image's own, from the row's first sample on.
  Stored* pixelOf(Stored* row, std::int32_t x) const {
    return reinterpret_cast<Stored*>(reinterpret_cast<std::uint8_t*>(row) + x * stride());
  }
  bool contains(std::int32_t x, std::int32_t y) const {
    return x >= 0 && y >= 0 && x < width && y < height;
  }
};

// A view without gaps of a buffer that the caller owns.
template <class Image>
Image tightView(std::int32_t width, std::int32_t height, void* buffer) {
  Image view;
  view.width = width;
  view.height = height;
  view.pixelStride = Image::Pixel::bytes;
  view.rowStride = width * Image::Pixel::bytes;
  view.data = static_cast<std::uint8_t*>(buffer);
  view.valid = true;
  view.premultiplied = true;
  return view;
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
