#pragma once

#include <filesystem>

namespace radiashafts::platform {

// Whether the file that is there may be changed: nobody has made it read-only, also where the user
// may do anything, and the system lets this process.
bool mayChange(const std::filesystem::path& file);

}  // namespace radiashafts::platform
