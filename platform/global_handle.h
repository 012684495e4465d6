#pragma once

#include "hostapi/types.h"

namespace radiashafts::platform {

// Releases a handle, block and master pointer, that was made with the system's own allocator
// (GlobalAlloc on Windows, malloc elsewhere). Returns 0, or nilHandleError for a null handle.
std::int16_t freeGlobalHandle(hostapi::Handle handle);

}  // namespace radiashafts::platform
