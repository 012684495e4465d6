#include "cli/preset_options.h"

#include <algorithm>
#include <cctype>
#include <iostream>

#include <CLI/CLI.hpp>

#include "cli/command_line.h"
#include "cli/help_text.h"
#include "cli/printable.h"
#include "hosts/library/effect_script.h"
#include "hosts/library/preset_source.h"
#include "interface/model/remembered_settings.h"
#include "parameters/preset_file.h"
#include "standin/program_file.h"

namespace radiashafts::cli {
namespace {

struct PresetLocation {
  std::string file;
  std::string name;
};

// Whether the colon follows a drive letter, so it does not separate FILE and NAME.
bool isDrive(const std::string& text, std::size_t colon) {
  const bool rooted = text.find_first_of("/\\", colon) == colon + 1;
  return colon == 1 && rooted && std::isalpha(static_cast<unsigned char>(text[0])) != 0;
}

std::string shippedFile() {
  return standin::programData("radiashafts.cfg").string();
}

std::optional<PresetLocation> parseLocation(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  if (colon == std::string::npos || colon == 0 || colon + 1 == text.size() ||
      isDrive(text, colon)) {
    return std::nullopt;
  }
  return PresetLocation{text.substr(0, colon), text.substr(colon + 1)};
}

void list(const std::string& file) {
  for (const std::string& name : hosts::presetNamesIn(file)) printLine(std::cout, name);
}

// Names have no blanks, so a script finds them in the first column.
void listShipped() {
  constexpr std::size_t column = 22;
  for (std::string line : hosts::presetNamesIn(shippedFile())) {
    const std::string_view description = hosts::presetDescription(line);
    if (!description.empty()) {
      line.resize(std::max(column, line.size() + 1), ' ');
      line += description;
    }
    printLine(std::cout, line);
  }
}

bool readLastUsed(EffectParameters& effect) {
  pfParameters parameters;
  for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  return ReadLastUsedSettings(parameters);
}

// Does the work on a preset file; what goes wrong is told with the exit code.
template <class Work>
void withPresets(ExitCode exitCode, const Work& work) {
  try {
    work();
  } catch (const hosts::PresetError& error) {
    std::string text = error.what();
    const bool isUnlikeAny = error.kind == hosts::PresetError::unknownName && text.back() != '?';
    if (isUnlikeAny) text += "; --list-presets tells what it has";
    throw Failure{exitCode, text};
  }
}

}  // namespace

PresetOptions::PresetOptions(CLI::App& app) {
  const auto add = [&app](const char* name, std::optional<std::string>& value, const char* form,
                          const char* description) {
    return app.add_option(name, value, description)->type_name(form)->group(presetGroup);
  };
  CLI::Option* const preset =
      add("--preset", loaded_, "[FILE:]NAME",
          "Start from this preset, without FILE one of the program's; other options go over it");
  add("--list-presets", listed_, "[FILE]", "Tell the presets in a file, or those of the program")
      ->expected(0, 1);
  add("--save-preset", saved_, "FILE:NAME", "Keep the values of this call as a preset");
  app.add_flag("--last-used", lastUsed_, "Start from the values last confirmed in the interface")
      ->excludes(preset)
      ->group(presetGroup);
}

standin::Script PresetOptions::apply(const ParameterOptions& parameters, bool quiet) const {
  EffectParameters effect;
  withPresets(exitInput, [&] {
    if (listed_ && listed_->empty()) listShipped();
    if (listed_ && !listed_->empty()) list(*listed_);
    if (!loaded_) return;
    const auto preset = parseLocation(*loaded_).value_or(PresetLocation{shippedFile(), *loaded_});
    hosts::loadPreset(effect, preset.file, preset.name);
  });
  if (lastUsed_ && !readLastUsed(effect)) {
    throw Failure{exitInput, "--last-used: no values were confirmed in the interface yet"};
  }
  parameters.applyTo(effect);
  standin::Script script = loaded_ || lastUsed_ ? hosts::scriptOf(effect) : parameters.script();
  if (saved_) {
    const auto preset = parseLocation(*saved_);
    if (!preset) throw Failure{exitUsage, "'" + *saved_ + "' is not FILE:NAME of a preset"};
    if (parameters.originInPixels()) {
      throw Failure{exitUsage, "--origin: a preset cannot keep pixels"};
    }
    withPresets(exitOutput, [&] { hosts::savePreset(effect, preset->file, preset->name); });
    if (!quiet) {
      printLine(std::cout, preset->file + ": has preset " + presetNameOf(preset->name));
    }
  }
  return script;
}

}  // namespace radiashafts::cli
