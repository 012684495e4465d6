// What a host learns of a plug-in from its file, before it loads it.
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
  std::string entryPoint;   // for this kind of processor
  std::uint8_t modes = 0;   // of the first byte: bit 7 bitmap, 6 grayscale, 5 indexed, 4 RGB
  std::string enabledWhen;  // the host's expression
  bool isFilter = false;
};

// Reads a property list with its prelude. Throws std::runtime_error where it is malformed.
PluginProperties parsePluginProperties(const std::vector<std::uint8_t>& resource);

// The name of the module's entry. Throws std::runtime_error with the reason when the plug-in is
// refused: no property list, not a filter, no entry.
std::string entryPointOf(const std::filesystem::path& module);

}  // namespace radiashafts::standin
