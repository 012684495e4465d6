// The parameters as arguments of a procedure.
#pragma once

#include <string>
#include <vector>

#include <libgimp/gimp.h>

#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

struct Argument {
  GimpPDBArgType type;
  std::string name;
  std::string description;
};

// One for each parameter, two for a position.
std::vector<Argument> arguments();

// Sets the values that a script has given. Throws a Failure that names the argument whose value is
// outside its limits.
void setArguments(const Session& session, const GimpParam* given);

}  // namespace radiashafts::gimp
