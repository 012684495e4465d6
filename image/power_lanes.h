// Powers for several numbers at once, the same to the bit as one by one.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <limits>

#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/power.h"
#include "image/power_kernel.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

struct NumberLanes {
  using Bits [[gnu::vector_size(sizeof(Lanes))]] = std::uint64_t;
  using Whole = LaneMask;
  static constexpr double magic = 6755399441055744.0;  // 1.5 * 2^52; its last bits count by ones

  // Whole numbers of less than 51 bits.
  static Lanes toReal(Whole value) {
    return reinterpret_cast<Lanes>(value + std::bit_cast<std::int64_t>(magic)) - magic;
  }
  static Whole toWhole(Lanes value) {
    return reinterpret_cast<Whole>(value + magic) - std::bit_cast<std::int64_t>(magic);
  }
  template <class Entry>
  static Lanes lookUp(const std::array<Entry, powerTableSize>& table, Bits index,
                      double Entry::*member) {
    return eachLane([&](int lane) { return table[index[lane]].*member; });
  }
};

inline Lanes powers(Lanes base, Lanes exponent) {
  using Kernel = PowerKernel<Lanes, NumberLanes>;
  const Lanes size = abs(exponent);
  const LaneMask isNormal =
      (base >= std::numeric_limits<double>::min()) & (base <= std::numeric_limits<double>::max());
  const LaneMask isZero = (reinterpret_cast<LaneMask>(base) == 0) & (exponent > 0.0);
  const LaneMask isOrdinary = isNormal & (size > 1e-300) & (size < 1e300);
  const Lanes one = allLanes(1.0);
  const auto log = Kernel::logarithm(choose(isOrdinary, base, one));
  const auto product = Kernel::product(choose(isOrdinary, exponent, one), log);
  // Results close to the ends of the numbers, and the rarer cases, are for the plain form.
  const LaneMask isInside = abs(product.high) < 700.0;
  if (!all((isOrdinary & isInside) | isZero | (exponent == 0.0))) {
    return eachLane([&](int lane) { return power(base[lane], exponent[lane]); });
  }
  const auto [mantissa, shift] = Kernel::exponential(product);
  const Lanes result =
      reinterpret_cast<Lanes>(reinterpret_cast<LaneMask>(mantissa) + (shift << 52));
  return choose(exponent == 0.0, one,
                choose(isZero, Lanes{}, choose(exponent == 1.0, base, result)));
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
