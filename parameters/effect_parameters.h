// The effect's parameters as objects.
#pragma once

#include <array>

#include "parameters/effect_table.h"
#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

class UndoHistory;

// Initialised from effectTable: names, limits, keys, entries and default values.
class EffectParameters {
 public:
  EffectParameters();

  // Sets the defaults of the parameters that presets store, which excludes the amount of the random
  // step. When history is not null, the old values are recorded there as one step.
  void Reset(UndoHistory* history);

  pfParameterPosition Origin;
  pfParameterFloat Intensity;
  pfParameterFloat RayLength;
  pfParameterFloat Radius;
  pfParameterFloat Contrast;
  pfParameterFloat GammaCorrection;
  pfParameterFloat ColorBalance;
  pfParameterBool UseImageColor;
  pfParameterFloat Hue;
  pfParameterFloat Saturation;
  pfParameterFloat Lightness;
  pfParameterFloat SelectionLow;
  pfParameterFloat SelectionHigh;
  pfParameterFloat SelectionSoften;
  pfParameterFloat SelectionClimax;
  pfParameterRGB ColorLow;
  pfParameterRGB ColorHigh;
  pfParameterList Mode;
  pfParameterList BlendMode;
  pfParameterList SelectionShow;
  pfParameterFloat Randomize;
  pfParameterBool RandomizeButton;

  // In the table's order.
  const std::array<pfParameter*, effectTable.size()> all{
      &Origin,         &Intensity,       &RayLength,
      &Radius,         &Contrast,        &GammaCorrection,
      &ColorBalance,   &UseImageColor,   &Hue,
      &Saturation,     &Lightness,       &SelectionLow,
      &SelectionHigh,  &SelectionSoften, &SelectionClimax,
      &ColorLow,       &ColorHigh,       &Mode,
      &BlendMode,      &SelectionShow,   &Randomize,
      &RandomizeButton};
};

// A parameter's values as numbers, valueCount of them: a flag is 0 or 1, a list's entry counts from
// 1.
using ParameterNumbers = std::array<double, 3>;
ParameterNumbers NumbersOf(const pfParameter& parameter);
void SetNumbers(pfParameter& parameter, const ParameterNumbers& numbers);

}  // namespace radiashafts
