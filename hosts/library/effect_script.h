// The effect's values as a recorded script.
#pragma once

#include "parameters/effect_parameters.h"
#include "standin/script.h"

namespace radiashafts::hosts {

// Appends a parameter's values.
void addTo(standin::Script& script, const ParameterFacts& facts, const ParameterNumbers& numbers);

// Replaces a parameter's values.
void setIn(standin::Script& script, const ParameterFacts& facts, const ParameterNumbers& numbers);

// The values of all scriptable parameters.
standin::Script scriptOf(const EffectParameters& effect);

// Sets the values that the script holds.
void apply(const standin::Script& script, EffectParameters& effect);

// Replaces the origin in a script. 0 to 1 inside the picture.
void setOrigin(standin::Script& script, double x, double y);

}  // namespace radiashafts::hosts
