// The parameters of the library as frei0r hosts see them.
#pragma once

#include <string>
#include <vector>

#include "hosts/frei0r/frei0r_interface.h"
#include "hosts/library/radiashafts-host.h"

namespace radiashafts::hosts::frei0r {

// One parameter of the interface. The light's position is two numbers: hosts that move parameters
// with the time do so with numbers and colors only.
struct Control {
  const radiashafts_parameter* parameter;
  int axis;  // of a position: 0 or 1
  ValueType type;
  std::string name;
  std::string explanation;  // with what 0 to 1 stands for
};

// Empty when there was no memory for them.
const std::vector<Control>& controls();

// Between a host's value, of the control's type, and the parameter's values. A number's 0 to 1 are
// the ends of the slider, a list's its first and last entry; what is beyond goes on as it comes.
void takeValue(const Control& control, const void* value, double* values);
void giveValue(const Control& control, const double* values, void* value);

}  // namespace radiashafts::hosts::frei0r
