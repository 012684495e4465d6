#pragma once

namespace radiashafts {

// Whether the process is ending, as opposed to the module being unloaded. All other threads have
// been terminated then, and locks that they held stay locked.
extern bool processIsEnding;

}  // namespace radiashafts
