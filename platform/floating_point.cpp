#include "platform/floating_point.h"

#include <xmmintrin.h>

namespace radiashafts::platform {

// Also clears the pending exception flags: if the host unmasks such an exception, it would be
// raised as soon as the host's state is restored.
void setDefaultFloatingPoint() {
  constexpr std::uint32_t allMasked = 0x1F80;
  _mm_setcsr(allMasked);
  asm volatile("fninit" ::: "memory");
}

DefaultFloatingPoint::DefaultFloatingPoint() : mxcsr_(_mm_getcsr()) {
  asm volatile("fnstenv %0" : "=m"(x87_)::"memory");
  setDefaultFloatingPoint();
}

DefaultFloatingPoint::~DefaultFloatingPoint() {
  asm volatile("fldenv %0" ::"m"(x87_) : "memory");
  _mm_setcsr(mxcsr_);
}

}  // namespace radiashafts::platform
