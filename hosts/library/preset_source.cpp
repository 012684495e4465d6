#include "hosts/library/preset_source.h"

#include <filesystem>

#include "hosts/library/preset_descriptions.h"
#include "hosts/library/suggestion.h"
#include "parameters/parameters.h"
#include "parameters/preset_file.h"
#include "platform/whole_file.h"

namespace radiashafts::hosts {
namespace {

// The effect's parameters in the container that the preset functions take.
pfParameters collectionOf(EffectParameters& effect) {
  pfParameters parameters;
  for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  return parameters;
}

std::string systemPath(const std::string& file) {
  const std::filesystem::path path(std::u8string(file.begin(), file.end()));
  if (const auto narrow = platform::narrowPath(path)) return *narrow;
  throw PresetError(PresetError::unusable, file + ": the system's code page cannot say this name");
}

void checkOwner(const std::string& file, const std::string& path) {
  std::string owner = effectName;
  if (pfParameters().IsSettingFileValid(path, owner)) return;
  throw PresetError(PresetError::unusable,
                    file + (owner == effectName ? ": is no file of presets"
                                                : ": its presets belong to the filter " + owner));
}

// The path of a readable preset file of this filter.
std::string readablePath(const std::string& file) {
  std::string path = systemPath(file);
  const platform::FileState state = platform::readWholeFile(path).state;
  if (state == platform::FileState::absent) {
    throw PresetError(PresetError::noFile, file + ": no such file");
  }
  if (state == platform::FileState::refused) {
    throw PresetError(PresetError::unusable, file + ": cannot be read");
  }
  checkOwner(file, path);
  return path;
}

}  // namespace

std::vector<std::string> presetNamesIn(const std::string& file) {
  std::vector<std::string> names;
  pfParameters().GetSettingNames(readablePath(file), names, effectName);
  return names;
}

std::string_view presetDescription(std::string_view name) {
  std::string start = "\n";
  start += name;
  start += '\t';
  const std::size_t line = presetDescriptions.find(start);
  if (line == std::string_view::npos) return {};
  const std::string_view rest = presetDescriptions.substr(line + start.size());
  return rest.substr(0, rest.find('\n'));
}

void loadPreset(EffectParameters& effect, const std::string& file, const std::string& name) {
  if (collectionOf(effect).LoadSettings(name, readablePath(file), nullptr)) return;
  const std::string wanted = presetNameOf(name);
  throw PresetError(PresetError::unknownName, file + ": has no preset '" + wanted + "'" +
                                                  suggestion(wanted, presetNamesIn(file)));
}

void savePreset(EffectParameters& effect, const std::string& file, const std::string& name) {
  const std::string path = systemPath(file);
  checkOwner(file, path);
  pfParameters parameters = collectionOf(effect);
  parameters.ValidateAll();
  std::string failure;
  // SaveSettings checks the owner again: false when another program has replaced the file since.
  if (!parameters.SaveSettings(name, path, effectName, &failure)) failure = "is in use";
  if (!failure.empty()) throw PresetError(PresetError::unusable, file + ": " + failure);
}

}  // namespace radiashafts::hosts
