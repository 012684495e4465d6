// Files that are replaced by renaming a complete one onto them.
#pragma once

#include <filesystem>

namespace radiashafts::platform {

// Whether this process may change the existing file. False for a file marked read-only, even when
// the user is root, who could write to it.
bool mayChange(const std::filesystem::path& file);

// The file behind symbolic links, so that it is replaced and not the link. A link to nothing is
// returned as it is.
std::filesystem::path fileBehindLinks(const std::filesystem::path& path);

}  // namespace radiashafts::platform
