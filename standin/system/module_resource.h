#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace radiashafts::standin {

// Whether modules of this system carry resources.
extern const bool modulesHaveResources;

// A resource of a module file, read without running the module; none when it is not there.
std::optional<std::vector<std::uint8_t>> moduleResource(const std::filesystem::path& module,
                                                        const char* type, int id);

}  // namespace radiashafts::standin
