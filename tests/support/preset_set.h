// A small collection with a parameter of each class.
#pragma once

#include <sstream>
#include <string>

#include "parameters/parameters.h"
#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts::test {

struct PresetSet {
  PresetSet() {
    const auto add = [this](pfParameter& parameter, const char* name) {
      parameter.SetName(name);
      parameters.Add(&parameter);
    };
    add(place, "Place");
    add(flag, "Flag");
    add(whole, "Whole");
    add(amount, "Amount");
    add(tint, "Tint");
    add(choice, "Choice");
    add(hidden, "Hidden");
    hidden.storedInPreset = false;
    amount.maximum = 300.0;
    amount.useMaximum = true;
    for (const char* entry : {"one", "two", "three"}) choice.AddEntry(entry);
    place.SetValue(0.5, 0.25);
    amount.SetValue(2.0);
    tint.SetValue(1.0, 0.5, 0.0);
    choice.SetValue(2);
  }

  std::string values() const {
    std::ostringstream text;
    text << place.x() << ',' << place.y() << ' ' << flag.value() << ' ' << whole.value() << ' '
         << amount.value() << ' ' << tint.value()[0] << ',' << tint.value()[1] << ','
         << tint.value()[2] << ' ' << choice.value() << ' ' << hidden.value();
    return text.str();
  }

  pfParameterPosition place;
  pfParameterBool flag;
  pfParameterInt whole;
  pfParameterFloat amount;
  pfParameterRGB tint;
  pfParameterList choice;
  pfParameterFloat hidden;
  pfParameters parameters;
};

}  // namespace radiashafts::test
