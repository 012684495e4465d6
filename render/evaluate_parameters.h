// Computes the values of a render from the effect's parameters.
#pragma once

#include <cstdint>

#include "parameters/effect_parameters.h"
#include "render/render_values.h"

namespace radiashafts {

// The size of what is rendered, and the scale of the full image to it.
struct ViewGeometry {
  std::int32_t width;
  std::int32_t height;
  double scaleX;
  double scaleY;
};

RenderValues renderValuesOf(const EffectParameters& parameters, const ViewGeometry& view);

}  // namespace radiashafts
