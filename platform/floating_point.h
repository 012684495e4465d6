// The floating-point state of a thread: rounding, exceptions, and what becomes of denormal numbers.
#pragma once

#include <array>
#include <cstdint>

namespace radiashafts::platform {

// Gives the calling thread the state that all arithmetic here is written for: rounding to nearest,
// no exceptions, denormal numbers kept, the x87 unit at its full precision.
void setDefaultFloatingPoint();

// Sets the default state for its life and then gives the thread back the state that it had.
class DefaultFloatingPoint {
 public:
  DefaultFloatingPoint();
  ~DefaultFloatingPoint();
  DefaultFloatingPoint(const DefaultFloatingPoint&) = delete;
  DefaultFloatingPoint& operator=(const DefaultFloatingPoint&) = delete;

 private:
  std::uint32_t mxcsr_;
  std::array<std::uint32_t, 7> x87_;  // control, status, tags and the last operation
};

}  // namespace radiashafts::platform
