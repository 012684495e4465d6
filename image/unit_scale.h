#pragma once

namespace radiashafts {

// Factor that takes a value from 0 to 255 to the scale 0 to 1. Results depend on the product, which
// is not always that of a division by 255.
inline constexpr double byteToUnit = 0.00392156862745098;

}  // namespace radiashafts
