#include "filters/zoom.h"

#include <vector>

#include <gtest/gtest.h>

namespace radiashafts {
namespace {

using Gray = PixelArray<PixelRGB<LayoutGrayPixel<-1>, std::uint8_t, 0, 0, 255>, 0, 0>;

// The expected number is a hash (FNV-1a) of results of a version that a direct average over each
// footprint confirmed.
TEST(ZoomFilter, ResultsStayTheSameUnderEveryExtensionAndScale) {
  HalvorsundHost host;
  std::uint64_t hash = 0xcbf29ce484222325;
  for (int round = 0; round < 75; ++round) {
    std::vector<std::uint8_t> bytes(std::size_t{7} * 5), result(std::size_t{9} * 6);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i * i * 85);
    ZoomFilter<Gray, Gray> zoom(host);
    zoom.source = tightView<Gray>(7, 5, bytes.data());
    zoom.target = tightView<Gray>(9, 6, result.data());
    zoom.extensionX = round % 5;
    zoom.extensionY = round / 5 % 5;
    const int scale = 1 + round / 25;
    zoom.scaleX = 0.75 * scale;
    zoom.scaleY = 1.25 * scale;
    ASSERT_EQ(zoom.run(0, 1), 0);
    for (const std::uint8_t byte : result) hash = (hash ^ byte) * 0x100000001b3;
  }
  EXPECT_EQ(hash, 12202207887370646478U);
}

}  // namespace
}  // namespace radiashafts
