// The two binary resources that describe the plug-in to the host before it is loaded.
#pragma once

#include <cstdint>
#include <vector>

namespace radiashafts::resources {

using Bytes = std::vector<std::uint8_t>;

// The plug-in property list: name, menu category, entry point and supported image modes.
Bytes makePiPL();

// The scripting terminology of the parameters.
Bytes makeAETE();

}  // namespace radiashafts::resources
