#pragma once

namespace radiashafts {

// Whether the process is ending rather than the module being unloaded: all other threads are gone
// then, and what they held is never given back.
extern bool processIsEnding;

}  // namespace radiashafts
