// Command-line options for the effect's parameters, generated from the parameter table.
#pragma once

#include <array>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "parameters/effect_parameters.h"
#include "standin/script.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace radiashafts::cli {

// Whether users set the parameter: it is in scripts.
bool hasOption(const ParameterFacts& facts);
// "RayLength" becomes "--ray-length".
std::string optionName(const ParameterFacts& facts);

// One line for each of the numbers that the filter clamps, since it is outside the range. They
// begin with the name.
std::vector<std::string> clampingNotes(const std::string& name, const ParameterFacts& facts,
                                       const ParameterNumbers& numbers);

// One option per scriptable parameter, in the table's order.
class ParameterOptions {
 public:
  // Adds the options to the application. This object must outlive app.parse().
  explicit ParameterOptions(CLI::App& app);
  ParameterOptions(const ParameterOptions&) = delete;
  ParameterOptions& operator=(const ParameterOptions&) = delete;

  // The values given on the command line, as a recorded script.
  standin::Script script() const;
  // Sets the parameters that were given on the command line; leaves the others alone.
  void applyTo(EffectParameters& effect) const;

  // Whether the parameter of the effect's table was given on the command line.
  bool isGiven(std::size_t parameter) const;

  // The origin where it was given in pixels, as in "700,200px". It is not among the other values,
  // since it depends on the picture's size.
  const std::optional<std::array<double, 2>>& originInPixels() const { return originInPixels_; }

  // One line for each value outside its range.
  std::vector<std::string> notes() const;

 private:
  struct Value {
    bool given = false;
    ParameterNumbers numbers{};
  };
  std::array<Value, effectTable.size()> values_;
  std::optional<std::array<double, 2>> originInPixels_;
};

// The entries of an option's list, with "|" between them; empty where it has none.
std::string parameterEntries(const CLI::Option& option);

// Prints a recorded script, one option and its value per line.
void printScript(std::ostream& out, const standin::Script& script);
// The same in one line.
std::string optionsOf(const standin::Script& script);

// Prints name, default, range and entries of every option.
void listParameters(std::ostream& out);

}  // namespace radiashafts::cli
