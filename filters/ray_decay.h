// The decay of rays, for both ray filters.
#pragma once

#include <cmath>
#include <cstdint>

#include "image/instruction_set.h"
#include "image/power.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Steps in which a ray decays to 1/1024, for a picture of width x height and a squared length. A
// picture with a diagonal of 800 pixels has 1000 steps at full length.
inline double raySteps(std::int32_t width, std::int32_t height, double squaredLength) {
  const std::int32_t squaredDiagonal = width * width + height * height;  // no side is above 32767
  return std::sqrt(static_cast<double>(squaredDiagonal)) * squaredLength * 1000.0 /
         std::sqrt(640000.0);
}

// The decay factor of one step, at least 0.0001.
inline double decayFactorFor(double steps) {
  constexpr double smallest = 0.0001;
  constexpr double faded = 0.0009765625;  // 1/1024
  const double factor = steps > 0.0 ? power(faded, 1.0 / steps) : 0.0;
  return factor > smallest ? factor : smallest;
}

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
