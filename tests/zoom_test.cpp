// The zoom filter against a direct average over each footprint.

#include "filters/zoom.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <random>
#include <set>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace radiashafts {
namespace {

using Gray = PixelArray<PixelRGB<LayoutGrayPixel<-1>, std::uint8_t, 0, 0, 255>, 0, 0>;
using Zoom = ZoomFilter<Gray, Gray>;

struct Picture {
  Picture(int w, int h) : width(w), height(h), bytes(static_cast<std::size_t>(w * h), 0xEE) {}
  int at(int x, int y) const { return bytes[static_cast<std::size_t>(y * width + x)]; }
  Gray view() { return tightView<Gray>(width, height, bytes.data()); }
  int width;
  int height;
  std::vector<std::uint8_t> bytes;
};

struct ZoomHost final : HalvorsundHost {
  void* Allocate(std::uint32_t size) override {
    if (outOfMemory) return nullptr;
    ++live;
    return HalvorsundHost::Allocate(size);
  }
  void Free(void* pointer) override {
    --live;
    HalvorsundHost::Free(pointer);
  }
  std::int32_t Progress(std::int32_t done, std::int32_t total, std::int32_t) override {
    const std::lock_guard lock(mutex);
    steps.emplace(done, total);
    return done >= failFrom ? 55 : 0;
  }
  bool outOfMemory = false;
  std::int32_t failFrom = 1 << 30;
  std::atomic<int> live{0};
  std::mutex mutex;
  std::set<std::pair<int, int>> steps;
};

// Where a position outside lies in the source; -1 for nowhere.
int extended(int position, int extent, int extension) {
  if (position >= 0 && position < extent) return position;
  const int period = extension == 2 ? 2 * extent : extent;
  const int phase = ((position % period) + period) % period;
  switch (extension) {
    case 1:
      return position < 0 ? 0 : extent - 1;
    case 2:
      return phase < extent ? phase : 2 * extent - 1 - phase;
    case 3:
      return phase;
    default:
      return -1;
  }
}

struct Line {
  int position;
  double weight;
  bool edge;
};

// Columns (or rows) under a target position, each with the part of it that counts.
std::vector<Line> linesUnder(int position, int target, int source, double scale) {
  const double from = (position - target / 2.0 - 0.5) * scale + source / 2.0;
  const double to = (position + 1 - target / 2.0 - 0.5) * scale + source / 2.0;
  const int first = static_cast<int>(std::floor(from));
  const int last = static_cast<int>(std::floor(to));
  std::vector<Line> lines{{first, 1.0 - (from - first), true}};
  for (int i = first + 1; i <= last; ++i) lines.push_back({i, 1.0, false});
  lines.push_back({last + 1, to - last, true});
  return lines;
}

double directAverage(const Picture& source, const std::vector<Line>& columns,
                     const std::vector<Line>& rows, int extensionX, int extensionY) {
  double sum = 0.0, weight = 0.0;
  for (const Line& row : rows) {
    for (const Line& column : columns) {
      // Corners are read from the source alone; outside it they count and add nothing.
      const bool corner = row.edge && column.edge;
      const int x = extended(column.position, source.width, corner ? 4 : extensionX);
      const int y = extended(row.position, source.height, corner ? 4 : extensionY);
      if (x >= 0 && y >= 0) sum += source.at(x, y) * (column.weight * row.weight);
      weight += column.weight * row.weight;
    }
  }
  return std::clamp(weight == 0.0 ? sum : sum / weight, 0.0, 255.0);
}

void expectDirectAverage(Picture& source, Picture& target, double scaleX, double scaleY,
                         int extensionX, int extensionY) {
  ZoomHost host;
  Zoom zoom(host);
  zoom.source = source.view();
  zoom.target = target.view();
  zoom.scaleX = scaleX;
  zoom.scaleY = scaleY;
  zoom.extensionX = extensionX;
  zoom.extensionY = extensionY;
  ASSERT_EQ(zoom.run(0, 1), 0);
  EXPECT_EQ(host.live, 0);
  for (int y = 0; y < target.height; ++y) {
    const auto rows = linesUnder(y, target.height, source.height, scaleY);
    for (int x = 0; x < target.width; ++x) {
      const auto columns = linesUnder(x, target.width, source.width, scaleX);
      const double expected = directAverage(source, columns, rows, extensionX, extensionY);
      ASSERT_LE(std::abs(target.at(x, y) - std::floor(expected)), 1.0)
          << x << ',' << y << " of " << target.width << 'x' << target.height << " from "
          << source.width << 'x' << source.height << " scales " << scaleX << ' ' << scaleY
          << " extensions " << extensionX << ' ' << extensionY;
    }
  }
}

TEST(ZoomFilter, AveragesUnderEveryExtensionAndScale) {
  std::mt19937 random(11);
  const auto whole = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (const double coarseness : {0.2, 1.0, 5.0}) {  // magnifying, about as large, shrinking
    for (int extensionX = 0; extensionX <= 4; ++extensionX) {
      for (int extensionY = 0; extensionY <= 4; ++extensionY) {
        for (int round = 0; round < 6; ++round) {
          Picture source(round == 0 ? 1 : whole(1, 12), round <= 1 ? 1 : whole(1, 12));
          for (auto& byte : source.bytes) {
            byte = static_cast<std::uint8_t>(std::clamp(whole(-200, 455), 0, 255));
          }
          Picture target(whole(1, 14), whole(1, 14));
          const double scaleX = round == 2 ? coarseness : coarseness * whole(50, 200) / 100.0;
          const double scaleY = round == 2 ? 1.0 : coarseness * whole(50, 200) / 100.0;
          expectDirectAverage(source, target, scaleX, scaleY, extensionX, extensionY);
        }
      }
    }
  }
  Picture large(300, 200), small(20, 10);
  for (std::size_t i = 0; i < large.bytes.size(); ++i) {
    large.bytes[i] = static_cast<std::uint8_t>(i * i >> 3);
  }
  expectDirectAverage(large, small, 15.0, 20.0, 4, 4);
}

TEST(ZoomFilter, OutsideTheSourceIsBlackWithZeroExtensionAndWhiteStaysWhiteInside) {
  Picture source(4, 4), target(16, 16);
  std::fill(source.bytes.begin(), source.bytes.end(), std::uint8_t{255});
  ZoomHost host;
  Zoom zoom(host);
  zoom.source = source.view();
  zoom.target = target.view();
  EXPECT_EQ(zoom.run(0, 1), 0);
  EXPECT_GE(target.at(8, 8), 254);
  for (int i = 0; i < 16; ++i) {
    for (const int outside : {0, 1, 14, 15}) {
      EXPECT_EQ(target.at(i, outside) + target.at(outside, i), 0) << i << ' ' << outside;
    }
  }
}

TEST(ZoomFilter, HandsUpItsHostsStatusAndFreesItsTable) {
  Picture source(3, 5), target(4, 9);
  const Picture untouched = target;
  const auto run = [&](ZoomHost& host) {
    Zoom zoom(host);
    zoom.source = source.view();
    zoom.target = target.view();
    const std::int32_t status = zoom.run(1, 3);
    EXPECT_EQ(host.live, 0);
    return status;
  };
  ZoomHost poor;
  poor.outOfMemory = true;
  EXPECT_EQ(run(poor), poor.OutOfMemoryCode());
  ZoomHost aborted;
  aborted.failFrom = 5 * 2 + 3;  // the fourth row of the table
  EXPECT_EQ(run(aborted), 55);
  EXPECT_EQ(aborted.steps.size(), 4U);
  EXPECT_EQ(target.bytes, untouched.bytes);

  // Table and target each count with the source's height, a taller target past its stage.
  ZoomHost host;
  EXPECT_EQ(run(host), 0);
  std::set<std::pair<int, int>> expected;
  for (int y = 0; y < 5; ++y) expected.emplace(5 * 2 + y, 5 * 2 * 3);
  for (int y = 0; y < 9; ++y) expected.emplace(5 * 3 + y, 5 * 2 * 3);
  EXPECT_EQ(host.steps, expected);
}

}  // namespace
}  // namespace radiashafts
