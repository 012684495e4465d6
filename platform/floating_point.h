// The floating-point state of a thread: rounding, exceptions and the treatment of denormal numbers.
#pragma once

#include <array>
#include <cstdint>

namespace radiashafts::platform {

// Sets the state of the calling thread that all code here relies on: rounding to nearest,
// exceptions masked, denormal numbers kept, x87 at full precision.
void setDefaultFloatingPoint();

// RAII: sets the default state and restores the thread's previous state in the destructor.
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
