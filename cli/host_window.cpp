#include "cli/host_window.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace radiashafts::cli {
namespace {

template <class Sample>
Sample sampleAt(const std::uint8_t* bytes) {
  Sample sample;
  std::memcpy(&sample, bytes, sizeof sample);
  return sample;
}

std::uint8_t byteOf(const std::uint8_t* sample, int depth) {
  if (depth == 8) return *sample;
  if (depth == 16) {
    return static_cast<std::uint8_t>(std::min(sampleAt<std::uint16_t>(sample) * 255 / 32768, 255));
  }
  const float value = sampleAt<float>(sample);
  return static_cast<std::uint8_t>(std::isnan(value) ? 0.0F : std::clamp(value, 0.0F, 1.0F) * 255);
}

}  // namespace

standin::ShownPicture shownPicture(const standin::Picture& picture,
                                   const standin::ShownPicture& limit) {
  const double scale = std::min({1.0, static_cast<double>(limit.width) / picture.width,
                                 static_cast<double>(limit.height) / picture.height});
  standin::ShownPicture shown;
  shown.width = std::max(static_cast<int>(picture.width * scale), 1);
  shown.height = std::max(static_cast<int>(picture.height * scale), 1);
  const auto stride = (static_cast<std::size_t>(shown.width) * 3 + 3) / 4 * 4;
  shown.pixels.resize(stride * static_cast<std::size_t>(shown.height));
  for (int y = 0; y < shown.height; ++y) {
    const std::uint8_t* row =
        picture.bytes.data() +
        static_cast<std::size_t>(static_cast<std::int64_t>(y) * picture.height / shown.height) *
            picture.rowBytes();
    std::uint8_t* to = &shown.pixels[static_cast<std::size_t>(y) * stride];
    for (int x = 0; x < shown.width; ++x) {
      const std::uint8_t* pixel = row + static_cast<std::size_t>(static_cast<std::int64_t>(x) *
                                                                 picture.width / shown.width) *
                                            picture.pixelBytes();
      for (int channel = 2; channel >= 0; --channel) {
        const auto plane = static_cast<std::size_t>(std::min(channel, picture.colorPlanes - 1));
        *to++ = byteOf(pixel + plane * picture.sampleBytes(), picture.depth);
      }
    }
  }
  return shown;
}

}  // namespace radiashafts::cli
