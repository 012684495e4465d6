// The zoom filter against a direct average over each footprint.

#include "filters/zoom.h"

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace radiashafts {
namespace {

using Gray = PixelArray<PixelRGB<LayoutGrayPixel<-1>, std::uint8_t, 0, 0, 255>, 0, 0>;

Gray pictureIn(std::vector<std::uint8_t>& bytes, int width, int height) {
  bytes.assign(static_cast<std::size_t>(width) * height, 0xEE);
  return tightView<Gray>(width, height, bytes.data());
}

// Where a position lies in the extended source; -1 for nowhere.
int extended(int position, int extent, int extension) {
  if (position >= 0 && position < extent) return position;
  const int period = extension == 2 ? 2 * extent : extent;
  const int phase = ((position % period) + period) % period;
  if (extension == 1) return position < 0 ? 0 : extent - 1;
  if (extension == 2) return phase < extent ? phase : 2 * extent - 1 - phase;
  return extension == 3 ? phase : -1;
}

// Columns (or rows) under a target position: where, what part of it counts, whether at the edge.
using Lines = std::vector<std::tuple<int, double, bool>>;
Lines linesUnder(int position, int target, int source, double scale) {
  const double from = (position - target / 2.0 - 0.5) * scale + source / 2.0;
  const double to = (position + 1 - target / 2.0 - 0.5) * scale + source / 2.0;
  const int first = static_cast<int>(std::floor(from)), last = static_cast<int>(std::floor(to));
  Lines lines{{first, 1.0 - (from - first), true}, {last + 1, to - last, true}};
  for (int i = first + 1; i <= last; ++i) lines.push_back({i, 1.0, false});
  return lines;
}

// Corners are read from the source alone; outside it they count and add nothing.
double directAverage(const Gray& source, const Lines& columns, const Lines& rows, int extensionX,
                     int extensionY) {
  double sum = 0.0, weight = 0.0;
  for (const auto& [row, height, edgeRow] : rows) {
    for (const auto& [column, width, edgeColumn] : columns) {
      const bool corner = edgeRow && edgeColumn;
      const int x = extended(column, source.width, corner ? 4 : extensionX);
      const int y = extended(row, source.height, corner ? 4 : extensionY);
      if (x >= 0 && y >= 0) sum += *source.at(x, y) * (width * height);
      weight += width * height;
    }
  }
  return sum / weight;
}

TEST(ZoomFilter, AveragesUnderEveryExtensionAndScale) {
  std::mt19937 random(11);
  const auto whole = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  HalvorsundHost host;
  for (int round = 0; round < 1000; ++round) {
    std::vector<std::uint8_t> bytes, resampled;
    const Gray source = pictureIn(bytes, whole(1, 12), whole(1, 12));
    const Gray target = pictureIn(resampled, whole(1, 14), whole(1, 14));
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(whole(0, 3) * 85);
    ZoomFilter<Gray, Gray> zoom(host);
    zoom.source = source;
    zoom.target = target;
    zoom.scaleX = whole(1, 20) / 4.0;  // magnifying, shrinking and as large
    zoom.scaleY = whole(1, 500) / 100.0;
    zoom.extensionX = whole(0, 4);
    zoom.extensionY = whole(0, 4);
    ASSERT_EQ(zoom.run(0, 1), 0);
    for (int y = 0; y < target.height; ++y) {
      const auto rows = linesUnder(y, target.height, source.height, zoom.scaleY);
      for (int x = 0; x < target.width; ++x) {
        const auto columns = linesUnder(x, target.width, source.width, zoom.scaleX);
        const double expected =
            directAverage(source, columns, rows, zoom.extensionX, zoom.extensionY);
        ASSERT_NEAR(*target.at(x, y), std::floor(expected), expected == 0.0 ? 0.0 : 1.0) << round;
      }
    }
  }
}

}  // namespace
}  // namespace radiashafts
