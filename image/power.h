// Powers that are the same on every system and processor. The systems' math libraries differ in the
// last bit, and so would the pictures.
#pragma once

namespace radiashafts {

// base to the exponent, within 0.55 units in the last place. The cases without a finite positive
// base follow the C library's rules.
double power(double base, double exponent);

// The same for single precision, rounded once from a double.
inline float powerSingle(float base, float exponent) {
  return static_cast<float>(power(static_cast<double>(base), static_cast<double>(exponent)));
}

}  // namespace radiashafts
