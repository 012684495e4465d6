// The arithmetic of powers, for one double and for lanes of them alike.
//
// base^exponent = exp(exponent * log(base)), with the logarithm carried to about 68 bits in two
// doubles. Both functions reduce their argument by a table and finish with a short series.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace radiashafts {

inline constexpr int powerTableBits = 7;
inline constexpr int powerTableSize = 1 << powerTableBits;

struct LogEntry {
  double inverse;  // of the interval's middle, in few bits, so that products with it are exact
  double log;      // minus the logarithm of inverse: in few bits,
  double logTail;  // and the rest
};

struct ExpEntry {
  double power;  // 2^(i / powerTableSize)
  double tail;   // what the double leaves out, relative to it
};

// Computed by the compiler in quadruple precision. The high parts of constants have few bits, so
// that products with whole numbers are exact.
struct PowerTables {
  std::array<LogEntry, powerTableSize> log;
  std::array<ExpEntry, powerTableSize> exp;
  double ln2High, ln2Low;
  double ln2StepHigh, ln2StepLow;  // of ln2 / powerTableSize
  double stepsPerUnit;
};
extern const PowerTables powerTables;

// The mantissa is taken from here on, so that 1 lies inside a table interval and not on its edge:
// logarithms near 0 need a table entry of exactly 0.
inline constexpr std::uint64_t mantissaStart = 0x3fe6955500000000;

template <class Real>
struct PowerSum {
  Real high, low;
};

// Real is double or a vector of doubles. Numbers says how: its Bits and Whole are unsigned and
// signed integers of the same size and count, toReal and toWhole convert between Whole and Real,
// and lookUp gives a member of table entries by their indices.
template <class Real, class Numbers>
struct PowerKernel {
  using Bits = typename Numbers::Bits;
  using Whole = typename Numbers::Whole;
  using Sum = PowerSum<Real>;

  // The upper 26 bits of a double: products of two such are exact.
  static Real upperHalf(Real x) {
    constexpr std::uint64_t lowHalf = (std::uint64_t{1} << 27) - 1;
    return std::bit_cast<Real>(std::bit_cast<Bits>(x) & ~lowHalf);
  }

  // Natural logarithm of a positive normal double.
  static Sum logarithm(Real x) {
    constexpr int indexShift = 52 - powerTableBits;
    const PowerTables& tables = powerTables;
    const Bits bits = std::bit_cast<Bits>(x);
    const Bits offset = bits - mantissaStart;
    const Real exponent = Numbers::toReal(std::bit_cast<Whole>(offset) >> 52);
    const Bits index = (offset >> indexShift) % powerTableSize;
    const Real inverse = Numbers::lookUp(tables.log, index, &LogEntry::inverse);
    const Real log = Numbers::lookUp(tables.log, index, &LogEntry::log);
    const Real logTail = Numbers::lookUp(tables.log, index, &LogEntry::logTail);
    const Real z = std::bit_cast<Real>(bits - (offset & (std::uint64_t{0xfff} << 52)));

    // r = z * inverse - 1, exactly in two parts.
    const Real zHigh = upperHalf(z);
    const Real rFirst = zHigh * inverse - 1.0;
    const Real rSecond = (z - zHigh) * inverse;
    const Real r = rFirst + rSecond;
    const Real rTail = (rFirst - r) + rSecond;

    // log(1 + r) = r - r^2 / 2 + r^3 series, the square in two parts.
    const Real rHigh = upperHalf(r);
    const Real square = 0.5 * rHigh * rHigh;
    const Real squareTail = 0.5 * (r - rHigh) * (r + rHigh);
    const Real series =
        1.0 / 3 +
        r * (-1.0 / 4 + r * (1.0 / 5 + r * (-1.0 / 6 + r * (1.0 / 7 + r * (-1.0 / 8 + r / 9.0)))));

    const Real base = exponent * tables.ln2High + log;  // exact
    const Real first = base + r;
    const Real firstTail = (base - first) + r;
    const Real second = first - square;
    const Real secondTail = (first - second) - square;
    const Real low = exponent * tables.ln2Low + logTail + rTail + firstTail + secondTail -
                     squareTail + r * r * r * series;
    const Real high = second + low;
    return {high, (second - high) + low};
  }

  // exponent times the logarithm.
  static Sum product(Real exponent, Sum log) {
    const Real exponentHigh = upperHalf(exponent);
    const Real logHigh = upperHalf(log.high);
    return {exponentHigh * logHigh,  // exact
            (exponent - exponentHigh) * logHigh + exponent * (log.high - logHigh + log.low)};
  }

  // exp(x.high + x.low), for a low part far below the high one: the result without a power of two,
  // and that power's exponent.
  struct Exponential {
    Real mantissa;
    Whole exponent;
  };
  static Exponential exponential(Sum x) {
    constexpr double roundToInteger = 6755399441055744.0;  // 1.5 * 2^52
    const PowerTables& tables = powerTables;
    const Real steps = (x.high * tables.stepsPerUnit + roundToInteger) - roundToInteger;
    const Real r = ((x.high - steps * tables.ln2StepHigh) - steps * tables.ln2StepLow) + x.low;
    const Whole k = Numbers::toWhole(steps);
    const Bits index = std::bit_cast<Bits>(k) % powerTableSize;
    const Real scale = Numbers::lookUp(tables.exp, index, &ExpEntry::power);
    const Real tail = Numbers::lookUp(tables.exp, index, &ExpEntry::tail);

    const Real square = r * r;
    const Real rest =
        tail + r + square * (1.0 / 2 + r / 6.0) + square * square * (1.0 / 24 + r / 120.0);
    return {scale + scale * rest, k >> powerTableBits};
  }
};

}  // namespace radiashafts
