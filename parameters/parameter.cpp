#include "parameters/parameter.h"

#include <cmath>
#include <cstdlib>

namespace radiashafts {

double ReflectInto(double t, std::int32_t n) {
  if (t >= 0.0 && t < n) return t;
  const double turns = std::trunc(t / n);
  const double rest = t - turns * n;
  const bool odd = std::fmod(turns, 2.0) != 0.0;
  double folded = 0.0;
  if (t > 0.0) {
    folded = odd ? n - rest : rest;
  } else {
    folded = odd ? rest + n : -rest;
  }
  return folded == n ? n - 0.0001 : folded;
}

double randomStep() {
  constexpr int steps = 32768;
  return (std::rand() % steps) / 32767.0 - 0.5;
}

}  // namespace radiashafts
