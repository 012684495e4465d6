// The parameter dialog as resource script, laid out from the parameter table.
#pragma once

#include <string>

namespace radiashafts::resources {

std::string makeParameterDialog();

}  // namespace radiashafts::resources
