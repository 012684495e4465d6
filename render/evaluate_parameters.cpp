#include "render/evaluate_parameters.h"

#include <algorithm>
#include <cmath>

#include "image/pixel.h"
#include "image/unit_scale.h"

namespace radiashafts {
namespace {

// The effect selects by lightness only; hue and saturation keep their defaults.
SelectionParameters selectionOf(const EffectParameters& parameters, SelectionShowMode show) {
  SelectionParameters selection;
  selection.selectionOnly =
      show == SelectionShowMode::selectionOnly ||
      (show == SelectionShowMode::normal && !parameters.UseImageColor.value());
  selection.lightness = {parameters.SelectionLow.value() * byteToUnit,
                         parameters.SelectionHigh.value() * byteToUnit,
                         parameters.SelectionClimax.value(), parameters.SelectionSoften.value()};
  const SelectionAxis& axis = selection.lightness;
  selection.selectionActive =
      !(axis.low == 0.0 && axis.high == 1.0 && axis.climax == 0.0 && axis.soften == 0.0);
  return selection;
}

}  // namespace

RenderValues renderValuesOf(const EffectParameters& parameters, const ViewGeometry& view) {
  RenderValues values;
  values.intensity = parameters.Intensity.value();
  // The parameter times the diagonal of the full image, at any preview size.
  const double squaredHeight = view.height * view.height;
  const double squaredWidth = view.width * view.width;
  values.falloffRadius =
      parameters.Radius.value() * std::sqrt(view.scaleY * view.scaleY * squaredHeight +
                                            view.scaleX * view.scaleX * squaredWidth);
  values.rayLength = parameters.RayLength.value();
  values.hue = parameters.Hue.value();
  values.saturation = parameters.Saturation.value();
  values.lightness = parameters.Lightness.value();
  values.colorBalance = parameters.ColorBalance.value();
  values.inverseGamma = 1.0 / std::max(0.001, parameters.GammaCorrection.value());
  values.contrast = parameters.Contrast.value();
  values.mode = static_cast<RayMode>(parameters.Mode.value());
  values.show = static_cast<SelectionShowMode>(parameters.SelectionShow.value());
  values.blendMode = static_cast<BlendMode>(parameters.BlendMode.value());
  values.originX = toInt32(view.width * parameters.Origin.x());
  values.originY = toInt32(view.height * parameters.Origin.y());
  values.colorLow = parameters.ColorLow.value();
  values.colorHigh = parameters.ColorHigh.value();
  values.selection = selectionOf(parameters, values.show);
  values.viewScaleX = view.scaleX;
  values.viewScaleY = view.scaleY;
  return values;
}

}  // namespace radiashafts
