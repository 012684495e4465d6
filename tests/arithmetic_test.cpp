// Arithmetic that pictures depend on to the last bit.

#include <bit>
#include <cmath>

#include <gtest/gtest.h>

#include "image/power_lanes.h"

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
    const double result =
        i % 2 == 0 ? power(base, exponent) : powers(allLanes(base), allLanes(exponent))[0];
    hash = (hash ^ std::bit_cast<std::uint64_t>(result)) * 0x100000001b3;
  }
  EXPECT_EQ(hash, 1815991755961083372ULL);
}

TEST(Power, FollowsTheLibraryAtTheEdges) {
  const auto same = [](double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) ||
           (std::isnan(a) && std::isnan(b));
  };
  const Lanes ordinary = eachLane([](int lane) { return 0.3 + lane; });
  for (const double base : {0.0, -0.0, 1.0, -1.0, -8.0, 5e-324, 1e308, double{INFINITY}}) {
    for (const double exponent : {0.0, 1.0, 2.0, -3.0, 0.5, 1e8, -1e8, 1e-320, double{INFINITY}}) {
      const double result = power(base, exponent);
      EXPECT_TRUE(same(result, std::pow(base, exponent))) << base << " ^ " << exponent;
      Lanes bases = ordinary;
      bases[1] = base;
      const Lanes results = powers(bases, allLanes(exponent));
      EXPECT_TRUE(same(results[1], result)) << base << " ^ " << exponent;
      EXPECT_TRUE(same(results[0], power(bases[0], exponent))) << base << " ^ " << exponent;
    }
  }
}

}  // namespace
}  // namespace radiashafts::test
