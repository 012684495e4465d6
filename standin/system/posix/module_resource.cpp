#include "standin/system/module_resource.h"

namespace radiashafts::standin {

const bool modulesHaveResources = false;

std::optional<std::vector<std::uint8_t>> moduleResource(const std::filesystem::path&, const char*,
                                                        int) {
  return std::nullopt;
}

}  // namespace radiashafts::standin
