#include "parameters/parameter.h"

#include <cmath>
#include <cstdlib>

namespace radiashafts {

double ReflectInto(double t, std::int32_t n) {
  if (t >= 0.0 && t < n) return t;
  const double periods = std::trunc(t / n);
  const double remainder = t - periods * n;
  const bool odd = std::fmod(periods, 2.0) != 0.0;
  double reflected = 0.0;
  if (t > 0.0) {
    reflected = odd ? n - remainder : remainder;
  } else {
    reflected = odd ? remainder + n : -remainder;
  }
  return reflected == n ? n - 0.0001 : reflected;
}

double randomStep() {
  constexpr int steps = 32768;
  return (std::rand() % steps) / 32767.0 - 0.5;
}

}  // namespace radiashafts
