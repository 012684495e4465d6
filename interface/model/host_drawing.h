// Whether a host draws pixels as it is told, or by a format of its own.
#pragma once

#include <cstdint>
#include <vector>

namespace radiashafts {

// A small picture of known colours, as large as the narrowest bitmap of the preview: red, green,
// blue, rows from the top.
inline constexpr int sampleWidth = 32;
inline constexpr int sampleHeight = 16;
std::vector<std::uint8_t> drawingSample();

// Whether what was drawn of it, blue, green, red and rows from the bottom, has every colour in its
// place. Hosts manage colour: another shade will do.
bool showsSample(const std::uint8_t* drawn);

}  // namespace radiashafts
