#include "platform/global_handle.h"

namespace radiashafts::platform {

// Linux has no allocator that can tell whether it allocated a handle, so nothing is freed.
void freeGlobalHandle(void**) {}

}  // namespace radiashafts::platform
