// The two smears of the judge, and the numbers they count in.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

namespace judge {

struct FloatImage {
  int width, height, channels;
  std::vector<float> samples;

  std::size_t index(int x, int y) const {
    const auto pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    return pixel * static_cast<std::size_t>(channels);
  }
};

// 32-bit arithmetic that wraps where large pictures or far origins overflow it.
inline int wrap(std::uint32_t value) {
  return static_cast<int>(value);
}
inline std::uint32_t bits(int value) {
  return static_cast<std::uint32_t>(value);
}
inline int wrapSub(int a, int b) {
  return wrap(bits(a) - bits(b));
}
inline int wrapMul(int a, int b) {
  return wrap(bits(a) * bits(b));
}

inline std::int64_t magnitude(int value) {
  return std::abs(static_cast<std::int64_t>(value));
}

// Truncates toward zero; what no int can hold saturates and a NaN gives 0.
inline int truncated(double value) {
  if (std::isnan(value)) return 0;
  if (value <= std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
  if (value >= std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  return static_cast<int>(value);
}

// In place, from an origin in whole pixels.
void straightSmear(FloatImage& image, int originX, int originY, double length);
void smoothSmear(FloatImage& image, int originX, int originY, double length);

}  // namespace judge
