// The library's parameters for hosts that know no positions: the light's place is two numbers.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "hosts/library/radiashafts-host.h"
#include "parameters/hyphenated_name.h"

namespace radiashafts::hosts {

struct Setting {
  const radiashafts_parameter* parameter;
  std::size_t axis;  // of a position: 0 or 1
  std::string name;  // as on the command line; a position's ends in -x or -y
};

inline std::vector<Setting> allSettings() {
  std::vector<Setting> settings;
  for (int i = 0; i < radiashafts_parameter_count(); ++i) {
    const radiashafts_parameter* parameter = radiashafts_parameter_at(i);
    const std::string name = hyphenatedName(parameter->name);
    if (parameter->kind == RADIASHAFTS_POSITION) {
      settings.push_back({parameter, 0, name + "-x"});
      settings.push_back({parameter, 1, name + "-y"});
    } else {
      settings.push_back({parameter, 0, name});
    }
  }
  return settings;
}

using SettingValues = std::array<double, 3>;

inline SettingValues valuesOf(radiashafts_session* session, const Setting& setting) {
  SettingValues values{};
  radiashafts_get(session, setting.parameter->name, values.data());
  return values;
}

struct CloseSession {
  void operator()(radiashafts_session* session) const { radiashafts_close(session); }
};

}  // namespace radiashafts::hosts
