#pragma once

#include <filesystem>

namespace radiashafts::platform {

// Whether this process may change the existing file. False for a file marked read-only, even when
// the user is root, who could write to it.
bool mayChange(const std::filesystem::path& file);

}  // namespace radiashafts::platform
