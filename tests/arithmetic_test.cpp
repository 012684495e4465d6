// Arithmetic that pictures depend on to the last bit.

#include <bit>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "image/power.h"
#include "tests/support/long_test.h"

namespace radiashafts::test {
namespace {

volatile double opaque = 1.0;  // keeps the compiler from computing ahead

// A product that is rounded before the sum; contracted, the rest of the product
// would survive.
TEST(Arithmetic, ProductsAndSumsAreNotContracted) {
  const double nearOne = opaque + 0x1p-30;
  EXPECT_EQ(nearOne * nearOne - (1.0 + 0x1p-29), 0.0);
}

TEST(Power, AgreesWithAWiderLogarithmToHalfAUnit) {
  std::mt19937_64 random(testSeed(3));
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
      const bool sameBits =
          std::bit_cast<std::uint64_t>(expected) == std::bit_cast<std::uint64_t>(result);
      EXPECT_TRUE(sameBits || (std::isnan(expected) && std::isnan(result)))
          << base << " ^ " << exponent << " = " << result << ", not " << expected;
    }
  }
}

}  // namespace
}  // namespace radiashafts::test
