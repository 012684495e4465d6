// The parameters of the selection: plain data, the same type for every instruction set.
#pragma once

#include <type_traits>

namespace radiashafts {

// One axis, in the scale 0 to 1. climax moves the curve's apex from the start of the range (-1) to
// its end (+1); soften is the exponent of the curve, 0 for a hard edge.
struct SelectionAxis {
  double low = 0.0;
  double high = 1.0;
  double climax = 1.0;
  double soften = 0.0;
};

struct SelectionParameters {
  bool selectionOnly = false;   // write the selection itself, not the picture times it
  bool selectionActive = true;  // false: copy, without any test
  SelectionAxis hue;
  SelectionAxis saturation;
  SelectionAxis lightness;
  double hueOffset = 0.0;  // added to both ends of the range
  double saturationOffset = 0.0;
  double lightnessOffset = 0.0;
};

static_assert(std::is_trivially_copyable_v<SelectionParameters>);

}  // namespace radiashafts
