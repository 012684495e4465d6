#include "image/power.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "image/power_kernel.h"

namespace radiashafts {
namespace {

__extension__ using Quad = __float128;

constexpr double inDoubleBits(Quad value, int fractionBits) {
  const Quad scale = static_cast<Quad>(std::uint64_t{1} << fractionBits);
  const Quad scaled = value * scale + (value < 0 ? Quad(-0.5) : Quad(0.5));
  return static_cast<double>(static_cast<Quad>(static_cast<std::int64_t>(scaled)) / scale);
}

// 2 atanh((x - 1) / (x + 1)), for x near 1.
constexpr Quad quadLog(Quad x) {
  const Quad t = (x - 1) / (x + 1);
  const Quad square = t * t;
  Quad term = t;
  Quad sum = 0;
  for (int n = 1; n < 80; n += 2) {
    sum += term / n;
    term *= square;
  }
  return 2 * sum;
}

constexpr Quad quadExp(Quad x) {
  Quad term = 1;
  Quad sum = 0;
  for (int n = 1; n < 40; ++n) {
    sum += term;
    term *= x / n;
  }
  return sum;
}

constexpr Quad quadLn2 = 2 * quadLog(Quad(1.41421356237309514547)) -
                         quadLog(Quad(1.41421356237309514547) * Quad(1.41421356237309514547) / 2);

constexpr int tableSize = powerTableSize;

constexpr std::array<LogEntry, tableSize> makeLogTable() {
  std::array<LogEntry, tableSize> table{};
  for (int i = 0; i < tableSize; ++i) {
    const std::uint64_t low =
        mantissaStart + (static_cast<std::uint64_t>(i) << (52 - powerTableBits));
    const std::uint64_t high = low + (std::uint64_t{1} << (52 - powerTableBits));
    const double from = std::bit_cast<double>(low);
    const double to = std::bit_cast<double>(high);
    const bool holdsOne = from <= 1.0 && 1.0 < to;
    const double inverse = holdsOne ? 1.0 : inDoubleBits(Quad(2) / (Quad(from) + Quad(to)), 12);
    const Quad log = -quadLog(inverse);
    const double head = inDoubleBits(log, 42);
    table[i] = {inverse, head, static_cast<double>(log - head)};
  }
  return table;
}

constexpr std::array<ExpEntry, tableSize> makeExpTable() {
  std::array<ExpEntry, tableSize> table{};
  for (int i = 0; i < tableSize; ++i) {
    const Quad exact = quadExp(quadLn2 * i / tableSize);
    const auto head = static_cast<double>(exact);
    table[i] = {head, static_cast<double>((exact - head) / exact)};
  }
  return table;
}

constexpr double ln2High = inDoubleBits(quadLn2, 42);
constexpr double ln2StepHigh = inDoubleBits(quadLn2 / tableSize, 43);

struct OneNumber {
  using Bits = std::uint64_t;
  using Whole = std::int64_t;
  static double toReal(Whole value) { return static_cast<double>(value); }
  static Whole toWhole(double value) { return static_cast<Whole>(value); }
  template <class Entry>
  static double lookUp(const std::array<Entry, powerTableSize>& table, Bits index,
                       double Entry::*member) {
    return table[index].*member;
  }
};
using Kernel = PowerKernel<double, OneNumber>;

double exponential(Kernel::Sum x) {
  if (x.high > 710.0) return std::numeric_limits<double>::infinity();
  if (x.high < -746.0) return 0.0;
  const auto [mantissa, exponent] = Kernel::exponential(x);
  return std::ldexp(mantissa, static_cast<int>(exponent));
}

double positivePower(double base, double exponent) {
  if (base >= std::numeric_limits<double>::min()) {
    return exponential(Kernel::product(exponent, Kernel::logarithm(base)));
  }
  constexpr int lift = 54;
  Kernel::Sum log = Kernel::logarithm(std::ldexp(base, lift));
  log.high -= lift * powerTables.ln2High;
  log.low -= lift * powerTables.ln2Low;
  return exponential(Kernel::product(exponent, log));
}

}  // namespace

constexpr PowerTables makePowerTables() {
  return {.log = makeLogTable(),
          .exp = makeExpTable(),
          .ln2High = ln2High,
          .ln2Low = static_cast<double>(quadLn2 - ln2High),
          .ln2StepHigh = ln2StepHigh,
          .ln2StepLow = static_cast<double>(quadLn2 / tableSize - ln2StepHigh),
          .stepsPerUnit = static_cast<double>(tableSize / quadLn2)};
}
constinit const PowerTables powerTables = makePowerTables();

double power(double base, double exponent) {
  if (exponent == 1.0) return base;
  const bool ordinary = std::isfinite(base) && base != 0.0 && std::fabs(exponent) < 1e300 &&
                        std::fabs(exponent) > 1e-300;
  if (!ordinary) return std::pow(base, exponent);
  if (base > 0.0) return positivePower(base, exponent);
  if (exponent != std::floor(exponent)) return std::numeric_limits<double>::quiet_NaN();
  const double magnitude = positivePower(-base, exponent);
  return std::fmod(exponent, 2.0) == 0.0 ? magnitude : -magnitude;
}

}  // namespace radiashafts
