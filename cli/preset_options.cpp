#include "cli/preset_options.h"

#include <algorithm>
#include <cctype>
#include <iostream>

#include "cli/command_line.h"
#include "cli/help_text.h"
#include "cli/preset_descriptions.h"
#include "cli/printable.h"
#include "cli/suggestion.h"
#include "interface/model/remembered_settings.h"
#include "parameters/preset_file.h"
#include "platform/whole_file.h"
#include "standin/program_file.h"

namespace radiashafts::cli {
namespace {

// The effect's parameters in the container that the preset functions take.
struct EffectCollection {
  EffectCollection() {
    for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  }
  EffectParameters effect;
  pfParameters parameters;
};

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

std::string systemPath(const std::string& file, ExitCode exitCode) {
  const auto path = platform::narrowPath(pathOf(file));
  if (!path) throw Failure{exitCode, file + ": the system's code page cannot say this name"};
  return *path;
}

void checkOwner(pfParameters& parameters, const std::string& file, const std::string& path,
                ExitCode exitCode) {
  std::string owner = effectName;
  if (parameters.IsSettingFileValid(path, owner)) return;
  throw Failure{exitCode,
                file + (owner == effectName ? ": is no file of presets"
                                            : ": its presets belong to the filter " + owner)};
}

// The path of a readable preset file of this filter. Throws a Failure for any other file.
std::string readablePath(pfParameters& parameters, const std::string& file) {
  std::string path = systemPath(file, exitInput);
  const platform::FileState state = platform::readWholeFile(path).state;
  if (state == platform::FileState::absent) throw Failure{exitInput, file + ": no such file"};
  if (state == platform::FileState::refused) throw Failure{exitInput, file + ": cannot be read"};
  checkOwner(parameters, file, path, exitInput);
  return path;
}

// What the collection's preset does, in a few words; empty for a preset added later.
std::string_view descriptionOf(const std::string& name) {
  const std::string start = "\n" + name + "\t";
  const std::size_t line = presetDescriptions.find(start);
  if (line == std::string_view::npos) return {};
  const std::string_view rest = presetDescriptions.substr(line + start.size());
  return rest.substr(0, rest.find('\n'));
}

std::vector<std::string> namesIn(pfParameters& parameters, const std::string& file) {
  std::vector<std::string> names;
  parameters.GetSettingNames(readablePath(parameters, file), names, effectName);
  return names;
}

void list(pfParameters& parameters, const std::string& file) {
  for (const std::string& name : namesIn(parameters, file)) printLine(std::cout, name);
}

// Names have no blanks, so a script finds them in the first column.
void listShipped(pfParameters& parameters) {
  constexpr std::size_t column = 22;
  for (std::string line : namesIn(parameters, shippedFile())) {
    const std::string_view description = descriptionOf(line);
    if (!description.empty()) {
      line.resize(std::max(column, line.size() + 1), ' ');
      line += description;
    }
    printLine(std::cout, line);
  }
}

void load(pfParameters& parameters, const PresetLocation& preset) {
  const std::string path = readablePath(parameters, preset.file);
  if (parameters.LoadSettings(preset.name, path, nullptr)) return;
  const std::string name = presetNameOf(preset.name);
  std::vector<std::string> names;
  parameters.GetSettingNames(path, names, effectName);
  const std::string near = suggestion(name, names);
  throw Failure{exitInput, preset.file + ": has no preset '" + name + "'" +
                               (near.empty() ? "; --list-presets tells what it has" : near)};
}

void save(pfParameters& parameters, const PresetLocation& preset, bool quiet) {
  const std::string path = systemPath(preset.file, exitOutput);
  checkOwner(parameters, preset.file, path, exitOutput);
  parameters.ValidateAll();
  std::string failure;
  // SaveSettings checks the owner again: false when another program has replaced the file since.
  if (!parameters.SaveSettings(preset.name, path, effectName, &failure)) failure = "is in use";
  if (!failure.empty()) throw Failure{exitOutput, preset.file + ": " + failure};
  if (!quiet) printLine(std::cout, preset.file + ": has preset " + presetNameOf(preset.name));
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
  EffectCollection values;
  if (listed_ && listed_->empty()) listShipped(values.parameters);
  if (listed_ && !listed_->empty()) list(values.parameters, *listed_);
  if (loaded_) {
    load(values.parameters,
         parseLocation(*loaded_).value_or(PresetLocation{shippedFile(), *loaded_}));
  }
  if (lastUsed_ && !ReadLastUsedSettings(values.parameters)) {
    throw Failure{exitInput, "--last-used: no values were confirmed in the interface yet"};
  }
  parameters.applyTo(values.effect);
  standin::Script script = loaded_ || lastUsed_ ? scriptOf(values.effect) : parameters.script();
  if (saved_) {
    const auto location = parseLocation(*saved_);
    if (!location) throw Failure{exitUsage, "'" + *saved_ + "' is not FILE:NAME of a preset"};
    if (parameters.originInPixels()) {
      throw Failure{exitUsage, "--origin: a preset cannot keep pixels"};
    }
    save(values.parameters, *location, quiet);
  }
  return script;
}

}  // namespace radiashafts::cli
