// The values that a render works with: plain data, the same type for every instruction set.
#pragma once

#include <array>
#include <cstdint>
#include <type_traits>

#include "filters/selection_parameters.h"
#include "parameters/modes.h"

namespace radiashafts {

struct RenderValues {
  double intensity = 0.0;      // brightness factor of the rays
  double falloffRadius = 0.0;  // reach of the light, in pixels of the full image
  double rayLength = 0.0;      // 0 to 1; 0 means no rays
  double hue = 0.0;            // -1 to 1, as are the next three
  double saturation = 0.0;
  double lightness = 0.0;
  double colorBalance = 0.0;
  double inverseGamma = 1.0;
  double contrast = 0.0;
  RayMode mode = RayMode::straight;  // any value but straight means smooth
  SelectionShowMode show = SelectionShowMode::normal;
  BlendMode blendMode = BlendMode::screen;
  double originX = 0.0;  // of the light, in whole pixels of the view
  double originY = 0.0;
  std::array<double, 3> colorLow{};  // 0 to 1
  std::array<double, 3> colorHigh{};
  SelectionParameters selection;
  double viewScaleX = 1.0;  // image pixels per view pixel
  double viewScaleY = 1.0;
};

static_assert(std::is_trivially_copyable_v<RenderValues>);

}  // namespace radiashafts
