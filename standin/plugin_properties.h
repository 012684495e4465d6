// The plug-in properties that a host reads from the module file before loading it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "standin/picture.h"

namespace radiashafts::standin {

struct PluginProperties {
  std::string name;
  std::string category;
  std::string entryPoint;   // the function's name for 64-bit Windows
  std::uint8_t modes = 0;   // first byte only: bit 7 bitmap, 6 grayscale, 5 indexed, 4 RGB
  std::string enabledWhen;  // an expression that the host evaluates
  bool isFilter = false;
};

// Parses a property list, including its header. Throws std::runtime_error if it is malformed.
PluginProperties parsePluginProperties(const std::vector<std::uint8_t>& resource);

// The name of the module's entry point. Throws std::runtime_error with the reason if a host would
// refuse the plug-in: no property list, not a filter, no entry point.
std::string entryPointOf(const std::filesystem::path& module);

}  // namespace radiashafts::standin
