#include "image/power.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

// base^exponent = exp(exponent * log(base)), with the logarithm carried to about 68 bits in two
// doubles. Both functions reduce their argument by a table and finish with a short series. The
// tables are computed by the compiler in quadruple precision.

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

constexpr int tableBits = 7;
constexpr int tableSize = 1 << tableBits;
constexpr int indexShift = 52 - tableBits;

// The mantissa is taken from here on, so that 1 lies inside a table interval and not on its edge:
// logarithms near 0 need a table entry of exactly 0.
constexpr std::uint64_t mantissaStart = 0x3fe6955500000000;
constexpr std::uint64_t lowHalf = (std::uint64_t{1} << 27) - 1;

struct LogEntry {
  double inverse;  // of the interval's middle, in few bits, so that products with it are exact
  double log;      // minus the logarithm of inverse: in few bits,
  double logTail;  // and the rest
};

constexpr std::array<LogEntry, tableSize> makeLogTable() {
  std::array<LogEntry, tableSize> table{};
  for (int i = 0; i < tableSize; ++i) {
    const std::uint64_t low = mantissaStart + (static_cast<std::uint64_t>(i) << indexShift);
    const std::uint64_t high = low + (std::uint64_t{1} << indexShift);
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

struct ExpEntry {
  std::uint64_t bits;  // of 2^(i / tableSize)
  double tail;         // what the double leaves out, relative to it
};

constexpr std::array<ExpEntry, tableSize> makeExpTable() {
  std::array<ExpEntry, tableSize> table{};
  for (int i = 0; i < tableSize; ++i) {
    const Quad exact = quadExp(quadLn2 * i / tableSize);
    const auto head = static_cast<double>(exact);
    table[i] = {std::bit_cast<std::uint64_t>(head), static_cast<double>((exact - head) / exact)};
  }
  return table;
}

constexpr std::array<LogEntry, tableSize> logTable = makeLogTable();
constexpr std::array<ExpEntry, tableSize> expTable = makeExpTable();

constexpr double ln2High = inDoubleBits(quadLn2, 42);
constexpr auto ln2Low = static_cast<double>(quadLn2 - ln2High);
constexpr double ln2StepHigh = inDoubleBits(quadLn2 / tableSize, 43);
constexpr auto ln2StepLow = static_cast<double>(quadLn2 / tableSize - ln2StepHigh);
constexpr auto stepsPerUnit = static_cast<double>(tableSize / quadLn2);

// The upper 26 bits of a double: products of two such are exact.
double upperHalf(double x) {
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) & ~lowHalf);
}

struct Sum {
  double high, low;
};

// Natural logarithm of a positive normal double.
Sum logarithm(double x) {
  const auto bits = std::bit_cast<std::uint64_t>(x);
  const std::uint64_t offset = bits - mantissaStart;
  const auto exponent = static_cast<double>(static_cast<std::int64_t>(offset) >> 52);
  const LogEntry& entry = logTable[(offset >> indexShift) % tableSize];
  const double z = std::bit_cast<double>(bits - (offset & (std::uint64_t{0xfff} << 52)));

  // r = z * inverse - 1, exactly in two parts.
  const double zHigh = upperHalf(z);
  const double rFirst = zHigh * entry.inverse - 1.0;
  const double rSecond = (z - zHigh) * entry.inverse;
  const double r = rFirst + rSecond;
  const double rTail = (rFirst - r) + rSecond;

  // log(1 + r) = r - r^2 / 2 + r^3 series, the square in two parts.
  const double rHigh = upperHalf(r);
  const double square = 0.5 * rHigh * rHigh;
  const double squareTail = 0.5 * (r - rHigh) * (r + rHigh);
  const double series =
      1.0 / 3 +
      r * (-1.0 / 4 + r * (1.0 / 5 + r * (-1.0 / 6 + r * (1.0 / 7 + r * (-1.0 / 8 + r / 9)))));

  const double base = exponent * ln2High + entry.log;  // exact
  const double first = base + r;
  const double firstTail = (base - first) + r;
  const double second = first - square;
  const double secondTail = (first - second) - square;
  const double low = exponent * ln2Low + entry.logTail + rTail + firstTail + secondTail -
                     squareTail + r * r * r * series;
  const double high = second + low;
  return {high, (second - high) + low};
}

// exp(high + low), for a low part far below the high one.
double exponential(double high, double low) {
  if (high > 710.0) return std::numeric_limits<double>::infinity();
  if (high < -746.0) return 0.0;
  constexpr double roundToInteger = 6755399441055744.0;  // 1.5 * 2^52
  const double steps = (high * stepsPerUnit + roundToInteger) - roundToInteger;
  const double r = ((high - steps * ln2StepHigh) - steps * ln2StepLow) + low;
  const auto k = static_cast<std::int64_t>(steps);
  const ExpEntry& entry = expTable[static_cast<std::uint64_t>(k) % tableSize];
  const std::int64_t exponent = k >> tableBits;

  const double square = r * r;
  const double rest =
      entry.tail + r + square * (1.0 / 2 + r / 6) + square * square * (1.0 / 24 + r / 120);
  if (exponent > -1022 && exponent < 1023) {
    const double scale =
        std::bit_cast<double>(entry.bits + (static_cast<std::uint64_t>(exponent) << 52));
    return scale + scale * rest;
  }
  const double scale = std::bit_cast<double>(entry.bits);
  return std::ldexp(scale + scale * rest, static_cast<int>(exponent));
}

double positivePower(double base, double exponent) {
  Sum log{};
  if (base < std::numeric_limits<double>::min()) {
    constexpr int lift = 54;
    log = logarithm(std::ldexp(base, lift));
    log.high -= lift * ln2High;
    log.low -= lift * ln2Low;
  } else {
    log = logarithm(base);
  }
  const double exponentHigh = upperHalf(exponent);
  const double logHigh = upperHalf(log.high);
  const double high = exponentHigh * logHigh;  // exact
  const double low =
      (exponent - exponentHigh) * logHigh + exponent * (log.high - logHigh + log.low);
  return exponential(high, low);
}

}  // namespace

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
