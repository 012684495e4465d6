#include "hosts/gimp/arguments.h"

#include <array>
#include <cmath>
#include <sstream>

#include "parameters/hyphenated_name.h"

namespace radiashafts::gimp {
namespace {

// "0 to 5 or more".
std::string rangeOf(const radiashafts_parameter& parameter) {
  std::ostringstream text;
  text << parameter.minimum << " to " << parameter.maximum
       << (parameter.has_open_end != 0 ? " or more" : "");
  return text.str();
}

// A range, or the entries of a list with their numbers.
std::string limitsOf(const radiashafts_parameter& parameter) {
  if (parameter.kind != RADIASHAFTS_LIST) return rangeOf(parameter);
  std::string text;
  for (int i = 0; i < parameter.entry_count; ++i) {
    text += (i == 0 ? "" : ", ") + std::to_string(i + 1) + " " + parameter.entries[i];
  }
  return text;
}

// "How bright the rays are (0 to 5 or more, default 2)".
std::string argumentDescription(const radiashafts_parameter& parameter, const std::string& limits) {
  std::string sentence = parameter.description;
  if (sentence.ends_with('.')) sentence.pop_back();
  if (parameter.kind == RADIASHAFTS_COLOR) return sentence;
  std::ostringstream text;
  text << sentence << " (" << limits << ", default " << parameter.defaults[0] << ")";
  return text.str();
}

GimpPDBArgType argumentType(radiashafts_kind kind) {
  switch (kind) {
    case RADIASHAFTS_SWITCH:
    case RADIASHAFTS_LIST:
      return GIMP_PDB_INT32;
    case RADIASHAFTS_COLOR:
      return GIMP_PDB_COLOR;
    default:
      return GIMP_PDB_FLOAT;
  }
}

using Numbers = std::array<double, 3>;

// The parameter's values; moves given to the next parameter's.
Numbers takeNumbers(const radiashafts_parameter& parameter, const GimpParam*& given) {
  switch (argumentType(parameter.kind)) {
    case GIMP_PDB_COLOR: {
      const GimpRGB& color = (given++)->data.d_color;
      return {color.r, color.g, color.b};
    }
    case GIMP_PDB_INT32:
      return {static_cast<double>((given++)->data.d_int32)};
    default: {
      Numbers numbers{};
      for (int i = 0; i < parameter.value_count; ++i) numbers[i] = (given++)->data.d_float;
      return numbers;
    }
  }
}

void checkLimits(const radiashafts_parameter& parameter, const Numbers& numbers) {
  for (int i = 0; i < parameter.value_count; ++i) {
    const double number = numbers[i];
    const bool hasLimits = parameter.kind != RADIASHAFTS_POSITION;
    const bool isBelow = hasLimits && number < parameter.minimum;
    const bool isAbove = hasLimits && parameter.has_open_end == 0 && number > parameter.maximum;
    if (std::isfinite(number) && !isBelow && !isAbove) continue;
    std::ostringstream text;
    text << hyphenatedName(parameter.name) << ": " << number << " is not "
         << (isBelow || isAbove ? rangeOf(parameter) : "a finite number");
    throw Failure(text.str());
  }
}

}  // namespace

std::vector<Argument> arguments() {
  std::vector<Argument> all;
  for (const auto* parameter : parameters()) {
    const GimpPDBArgType type = argumentType(parameter->kind);
    const std::string name = hyphenatedName(parameter->name);
    const auto add = [&](const std::string& suffix, const std::string& limits) {
      all.push_back({type, name + suffix, argumentDescription(*parameter, limits)});
    };
    if (parameter->kind == RADIASHAFTS_POSITION) {
      add("-x", "from 0 left to 1 right");
      add("-y", "from 0 top to 1 bottom");
    } else {
      add("", limitsOf(*parameter));
    }
  }
  return all;
}

void setArguments(const Session& session, const GimpParam* given) {
  for (const auto* parameter : parameters()) {
    const Numbers numbers = takeNumbers(*parameter, given);
    checkLimits(*parameter, numbers);
    check(session, radiashafts_set(session.get(), parameter->name, numbers.data()));
  }
}

}  // namespace radiashafts::gimp
