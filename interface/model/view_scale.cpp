#include "interface/model/view_scale.h"

#include <algorithm>

#include "parameters/number_text.h"

namespace radiashafts {

int ViewScale::renderFactor() const {
  return std::max(factor, 1) + draftLevel;
}

double ViewScale::viewScale() const {
  if (factor < 1) return 1.5 / (2 - factor) / (draftLevel + 1);
  return static_cast<double>(factor) / (draftLevel + factor);
}

std::string ViewScale::percentage() const {
  return numberText(factor < 1 ? (2 - factor) * 66.66666666666666 : 100.0 / factor, 4) + '%';
}

int ViewScale::imagePixelsPerStep() const {
  return factor > 0 || draftLevel != 0 ? factor + draftLevel : 1;
}

int fittingFactor(Extent image, Extent frame) {
  return std::max(image.width / std::max(frame.width, 1),
                  image.height / std::max(frame.height, 1)) +
         1;
}

}  // namespace radiashafts
