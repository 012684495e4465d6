// Presets by the names of their files. A file's name is UTF-8. Failures are a PresetError.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "parameters/effect_parameters.h"

namespace radiashafts::hosts {

// One line that names the file.
struct PresetError : std::runtime_error {
  enum Kind {
    noFile,
    unknownName,  // of a preset
    unusable      // the file cannot be read or written, or is another filter's
  };
  PresetError(Kind failure, const std::string& text) : std::runtime_error(text), kind(failure) {}
  Kind kind;
};

// In the file's order.
std::vector<std::string> presetNamesIn(const std::string& file);

// What a preset of the shipped collection does, in a few words; empty for other names.
std::string_view presetDescription(std::string_view name);

// Sets and validates the values that the preset names; the other ones stay.
void loadPreset(EffectParameters& effect, const std::string& file, const std::string& name);

// Validates all values and writes them to the preset of that name. A missing file is made.
void savePreset(EffectParameters& effect, const std::string& file, const std::string& name);

}  // namespace radiashafts::hosts
