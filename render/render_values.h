// How parameters become the numbers of the formulas.
#pragma once

#include <array>
#include <cstdint>

#include "filters/range_selection.h"
#include "parameters/effect_parameters.h"

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

// The size of what is rendered, and the scale of the full image to it.
struct ViewGeometry {
  std::int32_t width;
  std::int32_t height;
  double scaleX;
  double scaleY;
};

RenderValues renderValuesOf(const EffectParameters& parameters, const ViewGeometry& view);

}  // namespace radiashafts
