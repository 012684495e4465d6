#pragma once

namespace radiashafts {

// Logical processors that this process may use, at least 1.
int processorCount();

// Number of the processor that the calling thread runs on now.
int currentProcessor();

// Moves the calling thread to another processor, if it may use one. It may come back later.
void leaveProcessor(int processor);

// Whether processor and system take AVX2 instructions.
inline bool hasAvx2() {
  return __builtin_cpu_supports("avx2") != 0;
}

}  // namespace radiashafts
