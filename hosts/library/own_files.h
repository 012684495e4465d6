// The files that belong to this library. They are beside it, as built, or where the installation
// puts them.
#pragma once

#include <filesystem>

namespace radiashafts::hosts {

std::filesystem::path ownModule();   // the filter
std::filesystem::path ownPresets();  // the shipped collection

}  // namespace radiashafts::hosts
