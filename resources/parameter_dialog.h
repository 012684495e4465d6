// Generates the resource script of the parameter dialog from the parameter table.
#pragma once

#include <string>

namespace radiashafts::resources {

std::string makeParameterDialog();

}  // namespace radiashafts::resources
