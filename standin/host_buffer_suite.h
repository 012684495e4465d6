// The stand-in's memory suites. Every buffer stands between guard bytes.
#pragma once

#include <atomic>
#include <cstdint>

#include "hostapi/suites.h"

namespace radiashafts::standin {

struct MemoryState {
  std::atomic<int> allocations{0};       // so far
  std::atomic<int> failAt{0};            // the number of the allocation that fails, 0 for none
  std::atomic<int> live{0};              // not yet disposed of
  std::atomic<bool> guardsIntact{true};  // of all buffers disposed of so far
};

MemoryState& memoryState();
const hostapi::BufferSuite1* bufferSuite();
const hostapi::HandleSuite2* handleSuite();

}  // namespace radiashafts::standin
