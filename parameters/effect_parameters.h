// The effect's parameters as objects.
#pragma once

#include <array>

#include "parameters/effect_table.h"
#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

class UndoHistory;

// Names, limits, keys and entries are those of effectTable; the values start at its defaults.
class EffectParameters {
 public:
  EffectParameters();

  // Sets the defaults. The random step's amount is the user's own and stays. With a history each
  // value is recorded first, all as one step.
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

// A parameter's values as numbers, as many as its kind has: a flag is 0 or 1, a list's entry counts
// from 1.
using ParameterNumbers = std::array<double, 3>;
ParameterNumbers NumbersOf(const pfParameter& parameter, const ParameterFacts& facts);
void SetNumbers(pfParameter& parameter, const ParameterFacts& facts,
                const ParameterNumbers& numbers);

}  // namespace radiashafts
