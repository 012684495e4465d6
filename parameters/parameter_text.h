// What users are told about a parameter.
#pragma once

#include <string>

#include "parameters/effect_table.h"

namespace radiashafts {

// The values that make sense; the names of all entries of a list.
std::string rangeText(const ParameterFacts& facts);

std::string defaultText(const ParameterFacts& facts);

}  // namespace radiashafts
