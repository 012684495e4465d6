// Arithmetic that pictures depend on to the last bit.

#include <bit>
#include <cmath>

#include <gtest/gtest.h>

#include "image/power.h"

namespace radiashafts::test {
namespace {

// Bits that no library or processor may change.
TEST(Power, HasTheSameBitsEverywhere) {
  std::uint64_t hash = 0xcbf29ce484222325;
  std::uint64_t state = 1;
  for (int i = 0; i < 100000; ++i) {
    state = state * 6364136223846793005 + 1442695040888963407;
    const double base = std::ldexp(static_cast<double>(state >> 11), i % 61 - 83);
    const double exponent = static_cast<double>(i % 97) * 0.07 - 2.0;
    hash = (hash ^ std::bit_cast<std::uint64_t>(power(base, exponent))) * 0x100000001b3;
  }
  EXPECT_EQ(hash, 1815991755961083372ULL);
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
