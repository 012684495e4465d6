#pragma once

#include <windows.h>

namespace radiashafts {

// Sums turns of the mouse wheel: finer wheels than usual send parts of a notch.
class WheelNotches {
 public:
  // The whole notches, up or down, that this turn completes.
  int turn(int delta) {
    turned_ += delta;
    const int notches = turned_ / WHEEL_DELTA;
    turned_ -= notches * WHEEL_DELTA;
    return notches;
  }

 private:
  int turned_ = 0;  // less than a notch
};

}  // namespace radiashafts
