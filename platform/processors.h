#pragma once

namespace radiashafts::platform {

// Logical processors that this process may use, at least 1.
int processorCount();

// Whether processor and system take AVX2 instructions.
inline bool hasAvx2() {
  return __builtin_cpu_supports("avx2") != 0;
}

}  // namespace radiashafts::platform
