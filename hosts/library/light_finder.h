// Finds the light in a picture.
#pragma once

#include <optional>

#include "standin/picture.h"

namespace radiashafts::hosts {

struct Light {
  double x, y;  // 0 to 1 inside the picture
  int low;      // the darkest HSL lightness that is to shine, 0 to 255
};

// The place that is brighter than its surroundings and than most of the picture, and has a glow or
// is in the dark; none where there is no such place. What is transparent or outside the mask, which
// may be null, counts for nothing. NaN and infinite samples are harmless.
std::optional<Light> findLight(const standin::Picture& picture, const standin::Mask* mask);

}  // namespace radiashafts::hosts
