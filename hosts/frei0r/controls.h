// The library's parameters as frei0r hosts see them.
#pragma once

#include <string>
#include <vector>

#include "hosts/frei0r/frei0r_interface.h"
#include "hosts/settings.h"

namespace radiashafts::hosts::frei0r {

// The interface has positions too, but not all hosts move those with the time.
struct Control : Setting {
  ValueType type;
  std::string explanation;  // with what 0 to 1 stands for
};

// Empty when there was no memory for them.
const std::vector<Control>& controls();

// Between a host's value, of the control's type, and the parameter's values. A number's 0 to 1 are
// the ends of the slider, a list's its first and last entry; what is beyond goes on as it comes.
void takeValue(const Control& control, const void* value, SettingValues& values);
void giveValue(const Control& control, const SettingValues& values, void* value);

}  // namespace radiashafts::hosts::frei0r
