// What users are told about a parameter.
#pragma once

#include <string>

#include "parameters/effect_table.h"

namespace radiashafts {

// The headings under which users find the parameters.
inline constexpr char lightGroup[] = "Light";
inline constexpr char colorGroup[] = "Colors of the rays";
inline constexpr char selectionGroup[] = "What shines";
const char* groupOf(const ParameterFacts& facts);

// The values that make sense; the names of all entries of a list.
std::string rangeText(const ParameterFacts& facts);

std::string defaultText(const ParameterFacts& facts);

}  // namespace radiashafts
