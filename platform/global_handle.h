#pragma once

namespace radiashafts::platform {

// Releases a handle, block and master pointer, where the system can tell that its own global
// allocator made them; leaves any other handle alone.
void freeGlobalHandle(void** handle);

}  // namespace radiashafts::platform
