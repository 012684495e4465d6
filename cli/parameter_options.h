// Command-line options for the effect's parameters, made from the parameter table.
#pragma once

#include <array>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "parameters/effect_parameters.h"
#include "standin/script.h"

namespace radiashafts::cli {

// One option a parameter that scripts can hold, in the table's order.
class ParameterOptions {
 public:
  // Adds the options to the application; this outlives its parsing.
  explicit ParameterOptions(CLI::App& app);
  ParameterOptions(const ParameterOptions&) = delete;
  ParameterOptions& operator=(const ParameterOptions&) = delete;

  // The values that the user gave, as a recorded script.
  standin::Script script() const;
  // Sets the parameters to them.
  void applyTo(EffectParameters& effect) const;

  // Values outside the limits of their parameters, a line each: the filter holds them there.
  std::vector<std::string> notes() const;

 private:
  struct Value {
    bool given = false;
    ParameterNumbers numbers{};
  };
  std::array<Value, effectTable.size()> values_;
};

// A recorded script, an option with its value a line.
void printScript(std::ostream& out, const standin::Script& script);

// All values that scripts hold.
standin::Script scriptOf(const EffectParameters& effect);

// Name, range, default and entries of every option.
void listParameters(std::ostream& out);

}  // namespace radiashafts::cli
