#include "bench/generated_picture.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace radiashafts::bench {
namespace {

constexpr int width = 6000;
constexpr int height = 4000;

// Waves of brightness, so that no two rows are alike and every channel moves.
double waveOver(int x, int channel) {
  return 0.25 * std::sin(x * 0.013 + channel);
}

double waveDown(int y, int channel) {
  return 0.25 * std::cos(y * 0.017 - channel);
}

}  // namespace

standin::Picture makePicture(int depth, int colorPlanes, bool alpha) {
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
    for (int c = 0; c < picture.planes; ++c) row.push_back(0.5 + waveOver(x, c));
  }
  std::size_t i = 0;
  for (int y = 0; y < height; ++y) {
    std::array<double, 4> down{};
    for (int c = 0; c < picture.planes; ++c) down[static_cast<std::size_t>(c)] = waveDown(y, c);
    for (std::size_t k = 0; k < row.size(); ++k, ++i) {
      const double value = row[k] + down[k % static_cast<std::size_t>(picture.planes)];
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
