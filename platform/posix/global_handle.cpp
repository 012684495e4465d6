#include "platform/global_handle.h"

namespace radiashafts::platform {

// There is no global allocator here that could say whether a handle is its own.
void freeGlobalHandle(void**) {}

}  // namespace radiashafts::platform
