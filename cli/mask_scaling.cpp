#include "cli/mask_scaling.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace radiashafts::cli {
namespace {

// The weights of the samples from first on, for one sample of the scaled line.
struct Weights {
  std::size_t first;
  std::vector<float> values;  // their sum is 1
};

std::vector<Weights> triangles(int from, int to) {
  const double scale = static_cast<double>(from) / to;
  const double halfWidth = std::max(scale, 1.0);
  std::vector<Weights> lines;
  for (int i = 0; i < to; ++i) {
    const double center = (i + 0.5) * scale - 0.5;
    const int first = std::max(static_cast<int>(std::ceil(center - halfWidth)), 0);
    const int last = std::min(static_cast<int>(std::floor(center + halfWidth)), from - 1);
    Weights weights{static_cast<std::size_t>(first), {}};
    double sum = 0.0;
    for (int k = first; k <= last; ++k) sum += 1.0 - std::abs(k - center) / halfWidth;
    for (int k = first; k <= last; ++k) {
      weights.values.push_back(static_cast<float>((1.0 - std::abs(k - center) / halfWidth) / sum));
    }
    lines.push_back(std::move(weights));
  }
  return lines;
}

}  // namespace

standin::Mask scaledMask(const standin::Mask& mask, int width, int height) {
  const auto oldWidth = static_cast<std::size_t>(mask.width);
  const auto newWidth = static_cast<std::size_t>(width);
  const std::vector<Weights> columns = triangles(mask.width, width);
  standin::Mask scaled{width, height, {}};
  scaled.bytes.reserve(newWidth * static_cast<std::size_t>(height));
  std::vector<float> row(oldWidth);
  for (const Weights& rows : triangles(mask.height, height)) {
    std::fill(row.begin(), row.end(), 0.0F);
    for (std::size_t k = 0; k < rows.values.size(); ++k) {
      const std::uint8_t* const from = &mask.bytes[(rows.first + k) * oldWidth];
      for (std::size_t x = 0; x < oldWidth; ++x) row[x] += rows.values[k] * from[x];
    }
    for (const Weights& column : columns) {
      float value = 0.5F;
      for (std::size_t k = 0; k < column.values.size(); ++k) {
        value += column.values[k] * row[column.first + k];
      }
      scaled.bytes.push_back(static_cast<std::uint8_t>(std::min(value, 255.0F)));
    }
  }
  return scaled;
}

}  // namespace radiashafts::cli
