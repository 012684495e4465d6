// The zoom steps of the preview.
#pragma once

#include <string>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

struct ViewScale {
  int factor = 1;      // 1: every image pixel, 2: every second one; below 1: enlargement steps
  int draftLevel = 0;  // added to the reduction for a faster render

  int renderFactor() const;        // the factor by which the host reduces the image
  double viewScale() const;        // pixels of the reduced image per screen pixel
  std::string percentage() const;  // "33.33%"
  int imagePixelsPerStep() const;  // whole-image pixels per reduced pixel, for the caption
};

// The smallest factor of 1 or more at which the image is smaller than the frame.
int fittingFactor(Extent image, Extent frame);

}  // namespace radiashafts
