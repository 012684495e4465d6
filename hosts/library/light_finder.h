// Finds the light in a picture.
#pragma once

#include <optional>

#include "standin/picture.h"

namespace radiashafts::hosts {

struct Light {
  double x, y;  // 0 to 1 inside the picture
  int low;      // the darkest HSL lightness that is to shine, 0 to 255
};

// The place that is most likely a light by its brightness, its size, the glow around it and where
// it is in the picture; none where it is more likely another bright thing. What is transparent or
// outside the mask, which may be null, counts for nothing. NaN and infinite samples are harmless.
std::optional<Light> findLight(const standin::Picture& picture, const standin::Mask* mask);

}  // namespace radiashafts::hosts
