#pragma once

#include <cstdint>

namespace radiashafts::platform {

// Milliseconds of a clock that never goes back; wraps after 49.7 days. Only differences mean
// anything.
std::uint32_t tickCount();

}  // namespace radiashafts::platform
