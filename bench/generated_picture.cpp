#include "bench/generated_picture.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace radiashafts::bench {
namespace {

// Brightness waves that differ per channel, so that no two rows are equal.
double horizontalWave(int x, int channel) {
  return 0.22 * std::sin(x * 0.013 + channel);
}

double verticalWave(int y, int channel) {
  return 0.22 * std::cos(y * 0.017 - channel);
}

// Pseudo-random noise. Without it the branches of a render would be predicted almost perfectly,
// which they are not on photographs.
class Grain {
 public:
  double next() {
    state_ = state_ * 1664525 + 1013904223;
    return (state_ >> 8) * 0x1p-24 * 0.04 - 0.02;
  }

 private:
  std::uint32_t state_ = 1;
};

}  // namespace

standin::Picture makePicture(int width, int height, int depth, int colorPlanes, bool alpha) {
  standin::Picture picture;
  picture.width = width;
  picture.height = height;
  picture.depth = depth;
  picture.colorPlanes = colorPlanes;
  picture.hasAlpha = alpha;
  picture.planes = colorPlanes + (alpha ? 1 : 0);
  picture.allocate();
  std::vector<double> row;
  for (int x = 0; x < width; ++x) {
    for (int c = 0; c < picture.planes; ++c) row.push_back(0.5 + horizontalWave(x, c));
  }
  Grain grain;
  std::size_t i = 0;
  for (int y = 0; y < height; ++y) {
    std::array<double, 4> rowOffsets{};
    for (int c = 0; c < picture.planes; ++c) {
      rowOffsets[static_cast<std::size_t>(c)] = verticalWave(y, c);
    }
    for (std::size_t k = 0; k < row.size(); ++k, ++i) {
      const double value =
          row[k] + rowOffsets[k % static_cast<std::size_t>(picture.planes)] + grain.next();
      if (depth == 8) {
        picture.bytes[i] = static_cast<std::uint8_t>(value * 255.0);
      } else if (depth == 16) {
        reinterpret_cast<std::uint16_t*>(picture.bytes.data())[i] =
            static_cast<std::uint16_t>(value * 32768.0);
      } else {
        reinterpret_cast<float*>(picture.bytes.data())[i] = static_cast<float>(value);
      }
    }
  }
  return picture;
}

}  // namespace radiashafts::bench
