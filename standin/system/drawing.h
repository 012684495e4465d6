#pragma once

#include <cstdint>

namespace radiashafts::standin {

// Copies a block of blue-green-red pixels, rows from the top and each padded to 4 bytes, to (x, y)
// of a device context of the system. False on Linux and on failure.
bool drawPixels(void* deviceContext, int x, int y, int width, int height,
                const std::uint8_t* pixels);

}  // namespace radiashafts::standin
