// What a parameter is between its keys.
#pragma once

#include <vector>

#include "parameters/effect_parameters.h"

namespace radiashafts::cli {

struct Key {
  int frame;
  ParameterNumbers numbers;
};

enum class Interpolation { linear, smooth };

// The values at a frame. There is at least one key, and their frames ascend. Before the first key
// and after the last one the nearest key's values hold. Between two keys
//   linear  goes straight from one to the other,
//   smooth  follows a cubic Hermite curve with the slopes of Fritsch and Butland: it rests at the
//           first and the last key and wherever it turns, and stays between its two keys.
// Lists and switches keep a key's value up to the next key.
ParameterNumbers valuesAt(const std::vector<Key>& keys, ParameterKind kind,
                          Interpolation interpolation, int frame);

}  // namespace radiashafts::cli
