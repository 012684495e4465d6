#include "standin/codecs/layout.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include <OpenImageIO/imageio.h>

#include "standin/codecs/library_codec.h"

namespace radiashafts::standin {
namespace {

// Replaces each colour value, on the file's scale, by combine(colour, alpha), with alpha from 0
// to 1. Integers are rounded and clamped to full scale. Pixels with alpha 0 are skipped.
template <class Sample, class Combine>
void combineWithAlpha(Picture& picture, double fullScale, const Combine& combine) {
  auto* pixel = reinterpret_cast<Sample*>(picture.bytes.data());
  const std::size_t pixels = picture.sampleCount() / static_cast<std::size_t>(picture.planes);
  for (std::size_t i = 0; i < pixels; ++i, pixel += picture.planes) {
    const double alpha = pixel[picture.colorPlanes] / fullScale;
    if (alpha == 0.0) continue;
    for (int k = 0; k < picture.colorPlanes; ++k) {
      const double value = combine(static_cast<double>(pixel[k]), alpha);
      if constexpr (std::is_integral_v<Sample>) {
        pixel[k] = static_cast<Sample>(std::min(value + 0.5, fullScale));
      } else {
        pixel[k] = static_cast<Sample>(value);
      }
    }
  }
}

template <class Combine>
void combineWithAlpha(Picture& picture, const Combine& combine) {
  switch (picture.depth) {
    case 8:
      return combineWithAlpha<std::uint8_t>(picture, 255.0, combine);
    case 16:
      return combineWithAlpha<std::uint16_t>(picture, 65535.0, combine);
    default:
      return combineWithAlpha<float>(picture, 1.0, combine);
  }
}

// The same size and channels without samples.
Picture withoutSamples(const Picture& picture) {
  return {.width = picture.width,
          .height = picture.height,
          .planes = picture.planes,
          .colorPlanes = picture.colorPlanes,
          .hasAlpha = picture.hasAlpha,
          .depth = picture.depth,
          .bytes = {}};
}

}  // namespace

void divideByAlpha(Picture& picture) {
  combineWithAlpha(picture, [](double color, double alpha) { return color / alpha; });
}

void multiplyByAlpha(Picture& picture) {
  combineWithAlpha(picture, [](double color, double alpha) { return color * alpha; });
}

void dropPlanes(Picture& picture, int kept) {
  const std::size_t from = picture.pixelBytes();
  const std::size_t pixels = picture.bytes.size() / from;
  picture.planes = kept;
  const std::size_t to = picture.pixelBytes();
  for (std::size_t i = 0; i < pixels; ++i) {
    std::memmove(&picture.bytes[i * to], &picture.bytes[i * from], to);
  }
  picture.allocate();
  picture.hasAlpha = picture.hasAlpha && kept > picture.colorPlanes;
}

void makeRgb(Picture& picture) {
  Picture colored = withoutSamples(picture);
  colored.colorPlanes = 3;
  colored.planes += 2;
  colored.allocate();
  const std::size_t sample = picture.sampleBytes();
  const std::size_t rest = picture.pixelBytes() - sample;
  std::uint8_t* to = colored.bytes.data();
  for (std::size_t at = 0; at < picture.bytes.size(); at += picture.pixelBytes()) {
    for (int k = 0; k < 3; ++k, to += sample) std::memcpy(to, &picture.bytes[at], sample);
    std::memcpy(to, &picture.bytes[at] + sample, rest);
    to += rest;
  }
  picture = std::move(colored);
}

void convertDepth(Picture& picture, int depth) {
  const int samples = static_cast<int>(picture.rowBytes() / picture.sampleBytes());
  Picture converted = withoutSamples(picture);
  converted.depth = depth;
  converted.allocate();
  for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
    OIIO::convert_pixel_values(typeOf(picture.depth), &picture.bytes[y * picture.rowBytes()],
                               typeOf(depth), &converted.bytes[y * converted.rowBytes()], samples);
  }
  picture = std::move(converted);
}

}  // namespace radiashafts::standin
