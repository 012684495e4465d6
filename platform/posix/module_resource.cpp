#include "platform/module_resource.h"

namespace radiashafts::platform {

const bool modulesHaveResources = false;

std::optional<std::vector<std::uint8_t>> moduleResource(const std::filesystem::path&, const char*,
                                                        int) {
  return std::nullopt;
}

}  // namespace radiashafts::platform
