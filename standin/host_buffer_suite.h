// The stand-in's memory suites. Every buffer stands between guard bytes.
#pragma once

#include <atomic>
#include <cstdint>

#include "hostapi/suites.h"

namespace radiashafts::standin {

// Whether the guards of all buffers disposed of so far were untouched.
std::atomic<bool>& bufferGuardsIntact();
const hostapi::BufferSuite1* bufferSuite();
const hostapi::HandleSuite2* handleSuite();

}  // namespace radiashafts::standin
