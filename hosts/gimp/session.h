// The library's session and the values of its parameters.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "hosts/settings.h"

namespace radiashafts::gimp {

// One line for the user.
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

using Session = std::unique_ptr<radiashafts_session, hosts::CloseSession>;

// With the default values.
Session openSession();

// Throws a Failure with the session's reason unless the call succeeded.
void check(const Session& session, radiashafts_result result);

using Parameters = std::vector<const radiashafts_parameter*>;

// The table of parameters.
const Parameters& parameters();

// Where the light stands.
const radiashafts_parameter& originParameter();

// The values of all parameters one after another, in the table's order.
using Values = std::vector<double>;
Values valuesOf(const Session& session);

// Leaves the session as it is when the number of values is another one.
void setValues(const Session& session, const Values& values);

// "ray length" as "Ray length".
std::string capitalized(const char* text);

}  // namespace radiashafts::gimp
