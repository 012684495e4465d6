// The stand-in's memory suites. Guard bytes surround every buffer to detect overruns.
#pragma once

#include <atomic>
#include <cstdint>

#include "hostapi/suites.h"

namespace radiashafts::standin {

// False once a buffer with overwritten guard bytes has been freed; reset at the start of each run.
std::atomic<bool>& bufferGuardsIntact();
const hostapi::BufferSuite1* bufferSuite();
const hostapi::HandleSuite2* handleSuite();

// From now on disposed buffers are kept for later ones of their size, as image editors do. Without
// this the system gives fresh pages to each large buffer.
void keepDisposedBuffers();

}  // namespace radiashafts::standin
