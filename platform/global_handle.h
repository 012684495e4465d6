#pragma once

namespace radiashafts::platform {

// Frees a handle, both block and master pointer, if the system's global allocator allocated them;
// leaves any other handle alone.
void freeGlobalHandle(void** handle);

}  // namespace radiashafts::platform
