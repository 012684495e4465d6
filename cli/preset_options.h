// Command-line options for preset files and for the values last confirmed in the dialog.
#pragma once

#include <optional>
#include <string>

#include "cli/parameter_options.h"
#include "standin/script.h"

namespace CLI {
class App;
}  // namespace CLI

namespace radiashafts::cli {

class PresetOptions {
 public:
  // Adds the options to the application. This object must outlive app.parse().
  explicit PresetOptions(CLI::App& app);
  PresetOptions(const PresetOptions&) = delete;
  PresetOptions& operator=(const PresetOptions&) = delete;

  // Whether an option was given that needs no pictures: listing or saving.
  bool canRunWithoutPictures() const { return listed_ || saved_; }

  // Lists and saves presets when requested and returns the values to render with: the preset's or
  // the last used ones, overridden by the parameter options. Throws a Failure.
  standin::Script apply(const ParameterOptions& parameters, bool quiet) const;

 private:
  std::optional<std::string> loaded_;  // FILE:NAME, or NAME of a preset of the program's
  std::optional<std::string> saved_;   // FILE:NAME
  std::optional<std::string> listed_;  // FILE; empty for the program's
  bool lastUsed_ = false;
};

}  // namespace radiashafts::cli
