#pragma once

namespace radiashafts::platform {

// Logical processors that this process may use, at least 1.
int processorCount();

}  // namespace radiashafts::platform
