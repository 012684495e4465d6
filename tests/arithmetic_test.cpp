// Arithmetic that pictures depend on to the last bit.

#include <bit>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "image/color.h"
#include "image/pixel.h"
#include "image/power.h"

namespace radiashafts::test {
namespace {

volatile double opaque = 1.0;  // keeps the compiler from computing ahead

// A product that is rounded before the sum; contracted, the rest of the product would survive.
TEST(Arithmetic, ProductsAndSumsAreNotContracted) {
  const double nearOne = opaque + 0x1p-30;
  EXPECT_EQ(nearOne * nearOne - (1.0 + 0x1p-29), 0.0);
}

TEST(Power, AgreesWithAWiderLogarithmToHalfAUnit) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  for (int i = 0; i < 300000; ++i) {
    const double base = i % 4 == 0 ? 1.0 + uniform(random) * 0.01 : std::exp(uniform(random) * 30);
    const double exponent = uniform(random) * (i % 3 == 0 ? 20.0 : 2.5);
    const long double wide =
        std::pow(static_cast<long double>(base), static_cast<long double>(exponent));
    if (wide > 1e300L || wide < 1e-300L) continue;
    const double result = power(base, exponent);
    const double unit = std::nextafter(result, INFINITY) - result;
    ASSERT_LE(std::fabs(static_cast<double>(result - wide)), 0.55 * unit)
        << base << " ^ " << exponent;
  }
}

// Bits that no library or processor may change.
TEST(Power, HasTheSameBitsEverywhere) {
  std::uint64_t hash = 0xcbf29ce484222325;
  std::uint64_t state = 1;
  for (int i = 0; i < 100000; ++i) {
    state = state * 6364136223846793005 + 1442695040888963407;
    const double base = static_cast<double>(state >> 11) * 0x1p-53;
    const double exponent = 0.1 + static_cast<double>(i % 97) * 0.07;
    hash = (hash ^ std::bit_cast<std::uint64_t>(power(base, exponent))) * 0x100000001b3;
  }
  EXPECT_EQ(hash, 13970496052424167363ULL);
}

TEST(Power, FollowsTheLibraryAtTheEdges) {
  for (const double base : {0.0, -0.0, 1.0, -1.0, -8.0, 5e-324, 1e308, double{INFINITY}}) {
    for (const double exponent : {0.0, 1.0, 2.0, -3.0, 0.5, 1e8, -1e8, 1e-320, double{INFINITY}}) {
      const double expected = std::pow(base, exponent);
      const double result = power(base, exponent);
      EXPECT_TRUE(std::isnan(expected) ? std::isnan(result)
                                       : std::bit_cast<std::uint64_t>(expected) ==
                                             std::bit_cast<std::uint64_t>(result))
          << base << " ^ " << exponent << " = " << result << ", not " << expected;
    }
  }
}

TEST(Samples, AreHeldInRangeAndTruncated) {
  using Byte = PixelRGB<LayoutGrayPixel<-1>, std::uint8_t, 0, 0, 255>;
  using Word = PixelRGB<LayoutGrayPixel<-1>, std::uint16_t, 0, 0, 32768>;
  using Float = PixelRGB<LayoutGrayPixel<-1>, float, 0, 0, 1>;
  EXPECT_EQ(toClampedSample<Byte>(199.9999), 199);
  EXPECT_EQ(toClampedSample<Byte>(-3.0), 0);
  EXPECT_EQ(toClampedSample<Byte>(1e30), 255);
  EXPECT_EQ(toClampedSample<Byte>(NAN), 0);
  EXPECT_EQ(toClampedSample<Word>(40000.0), 32768);
  EXPECT_EQ(toSample<std::uint16_t>(40000.0), 40000);
  EXPECT_EQ(toClampedSample<Float>(7.5), 7.5F);
  EXPECT_TRUE(std::isnan(toClampedSample<Float>(NAN)));
  EXPECT_EQ(toInt32(-1e300), -1000000000);
  EXPECT_EQ(toInt32(NAN), 0);
}

Hsl hslOf(double r, double g, double b) {
  return rgbToHsl({allLanes(r), allLanes(g), allLanes(b)});
}

TEST(Color, RedWinsATieAndEqualChannelsHaveNoHue) {
  EXPECT_EQ(hslOf(1.0, 1.0, 0.0).h[0], 1.0);
  EXPECT_EQ(hslOf(1.0, 0.0, 1.0).h[0], 5.0);
  EXPECT_EQ(hslOf(0.0, 1.0, 1.0).h[0], 3.0);
  EXPECT_EQ(hslOf(0.3, 0.3, 0.3).s[0], 0.0);
  const Rgb rounded = hslToRgb({Lanes{}, Lanes{}, allLanes(0.3)});
  EXPECT_EQ(rounded.g[0], static_cast<double>(0.3F));
}

}  // namespace
}  // namespace radiashafts::test
