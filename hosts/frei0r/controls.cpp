#include "hosts/frei0r/controls.h"

#include <new>
#include <sstream>

namespace radiashafts::hosts::frei0r {
namespace {

ValueType typeOf(radiashafts_kind kind) {
  switch (kind) {
    case RADIASHAFTS_SWITCH:
      return switchValue;
    case RADIASHAFTS_COLOR:
      return colorValue;
    default:
      return numberValue;
  }
}

// "0 straight, 1 smooth".
void describeEntries(const radiashafts_parameter& list, std::ostream& text) {
  text.precision(3);
  for (int i = 0; i < list.entry_count; ++i) {
    text << (i == 0 ? " " : ", ") << i / (list.entry_count - 1.0) << ' ' << list.entries[i];
  }
  text << '.';
}

std::string explanationOf(const Setting& setting) {
  const radiashafts_parameter& parameter = *setting.parameter;
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << parameter.description;
  if (parameter.kind == RADIASHAFTS_LIST) describeEntries(parameter, text);
  if (parameter.kind == RADIASHAFTS_POSITION) {
    text << (setting.axis == 0 ? " 0 is the left edge, 1 the right one."
                               : " 0 is the upper edge, 1 the lower one.");
  }
  if (parameter.kind == RADIASHAFTS_NUMBER) {
    text << " 0 stands for " << parameter.minimum << ", 1 for " << parameter.maximum
         << (parameter.has_open_end != 0 ? ", and more is taken." : ".");
  }
  return text.str();
}

std::vector<Control> makeControls() {
  std::vector<Control> made;
  for (const Setting& setting : allSettings()) {
    made.push_back({setting, typeOf(setting.parameter->kind), explanationOf(setting)});
  }
  return made;
}

double rangeOf(const radiashafts_parameter& parameter) {
  return parameter.maximum - parameter.minimum;
}

}  // namespace

const std::vector<Control>& controls() {
  static const std::vector<Control> all = [] {
    try {
      return makeControls();
    } catch (const std::bad_alloc&) {
      return std::vector<Control>();
    }
  }();
  return all;
}

void takeValue(const Control& control, const void* value, SettingValues& values) {
  if (control.type == colorValue) {
    const auto& color = *static_cast<const Color*>(value);
    values = {color.red, color.green, color.blue};
    return;
  }
  const double number = *static_cast<const double*>(value);
  values[control.axis] = control.type == switchValue
                             ? (number >= 0.5 ? 1.0 : 0.0)
                             : control.parameter->minimum + number * rangeOf(*control.parameter);
}

void giveValue(const Control& control, const SettingValues& values, void* value) {
  if (control.type == colorValue) {
    *static_cast<Color*>(value) = {static_cast<float>(values[0]), static_cast<float>(values[1]),
                                   static_cast<float>(values[2])};
    return;
  }
  *static_cast<double*>(value) =
      (values[control.axis] - control.parameter->minimum) / rangeOf(*control.parameter);
}

}  // namespace radiashafts::hosts::frei0r
