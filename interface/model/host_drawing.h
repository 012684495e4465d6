// Checks with a sample whether the host's displayPixels draws colours and positions correctly.
#pragma once

#include <cstdint>
#include <vector>

namespace radiashafts {

// A small picture of known colours: 3-byte pixels of red, green, blue, top row first. It is as wide
// as the narrowest bitmap of the preview.
inline constexpr int sampleWidth = 32;
inline constexpr int sampleHeight = 16;
std::vector<std::uint8_t> drawingSample();

// Whether drawn, the sample as blue, green, red with the bottom row first, shows every colour in
// its place. Shades may differ, because hosts apply colour management.
bool showsSample(const std::uint8_t* drawn);

}  // namespace radiashafts
