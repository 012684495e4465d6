// The steps of the preview's zoom.
#pragma once

#include <string>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

struct ViewScale {
  int factor = 1;      // 1: every image pixel, 2: every second one; below 1: steps of enlargement
  int draftLevel = 0;  // coarseness added for a render that has to be quick

  int renderFactor() const;        // by which the host reduces the image
  double viewScale() const;        // pixels of that image per screen pixel
  std::string percentage() const;  // "33.33%"
  int imagePixelsPerStep() const;  // by which the pointer's place is multiplied to tell it
};

// The smallest factor of 1 or more at which the image is smaller than the frame.
int fittingFactor(Extent image, Extent frame);

}  // namespace radiashafts
