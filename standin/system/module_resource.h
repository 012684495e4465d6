#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace radiashafts::standin {

// Whether modules have resources: true on Windows only.
extern const bool modulesHaveResources;

// Reads a resource from a module file without running its code; none if there is no such resource.
std::optional<std::vector<std::uint8_t>> moduleResource(const std::filesystem::path& module,
                                                        const char* type, int id);

}  // namespace radiashafts::standin
