// Command-line options for preset files and for the values that the interface remembers.
#pragma once

#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/parameter_options.h"
#include "standin/script.h"

namespace radiashafts::cli {

class PresetOptions {
 public:
  // Adds the options to the application; this outlives its parsing.
  explicit PresetOptions(CLI::App& app);
  PresetOptions(const PresetOptions&) = delete;
  PresetOptions& operator=(const PresetOptions&) = delete;

  // Whether they ask for something that can be done without pictures.
  bool needNoPictures() const { return listed_ || saved_; }

  // Lists and saves where that is wanted, and returns the values to render with: the preset's or
  // the last used ones, with those over them that the options give. Throws a Failure.
  standin::Script apply(const ParameterOptions& parameters, bool quiet) const;

 private:
  std::optional<std::string> loaded_;  // FILE:NAME
  std::optional<std::string> saved_;   // FILE:NAME
  std::optional<std::string> listed_;  // FILE
  bool lastUsed_ = false;
};

}  // namespace radiashafts::cli
