// The two binary resources by which a host knows the plug-in before it runs it.
#pragma once

#include <cstdint>
#include <vector>

namespace radiashafts::resources {

using Bytes = std::vector<std::uint8_t>;

// The plug-in property list: name, menu place, entry point and the pictures it takes.
Bytes makePiPL();

// The scripting terminology of the parameters.
Bytes makeAETE();

}  // namespace radiashafts::resources
