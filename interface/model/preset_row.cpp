#include "interface/model/preset_row.h"

#include <algorithm>

#include "diagnostics/debug_log.h"

namespace radiashafts {

void PresetRow::UpdateSettingsList() {
  trace("pfPreviewWin32::UpdateSettingsList()");
  const LogIndent indent;
  const int selected = controls_.selectedPreset();
  const std::string previous = selected < 0 ? "" : controls_.presetName(selected).value_or("");
  controls_.clearPresets();
  std::vector<std::string> names;
  if (!filter_->parameters.GetSettingNames(strPresetPath, names, filter_->GetFilterName())) {
    strPresetPath.clear();
  }
  trace("m_hInterface(0x", controls_.presetWindow(), ")");
  trace(names.empty() ? "disabled delete" : "enabled delete");
  const bool hasFile = !strPresetPath.empty();
  trace(hasFile ? "enabled save and combo" : "disabled save and combo");
  controls_.enablePresets(hasFile, hasFile, !names.empty());
  for (const std::string& name : names) {
    trace("about to add string: ", name);
    controls_.addPreset(name);
  }
  if (previous.empty()) return;
  trace("select setting: ", previous);
  if (const int index = controls_.findPreset(previous); index >= 0) controls_.selectPreset(index);
}

void PresetRow::OnChangeSettingFile() {
  trace("pfPreviewWin32::OnChangeSettingFile()");
  const LogIndent indent;
  const std::optional<std::string> path = controls_.choosePresetFile(strPresetPath);
  if (!path) return;
  trace("Selected File(", *path, ")");
  std::string owner = filter_->GetFilterName();
  if (filter_->parameters.IsSettingFileValid(*path, owner)) {
    strPresetPath = *path;
    UpdateSettingsList();
  } else if (owner == filter_->GetFilterName()) {
    controls_.showError("The file you selected is no valid Settingsfile.", "Error");
  } else {
    controls_.showError("The selected settings file belongs to the Filter: " + owner, "Error");
  }
}

void PresetRow::load(const std::string& name) {
  filter_->parameters.LoadSettings(name, strPresetPath, &filter_->undoHistory);
}

void PresetRow::OnSelectSetting() {
  const int selected = controls_.selectedPreset();
  if (selected < 0) return;
  const std::optional<std::string> name = controls_.presetName(selected);
  if (!name) return;
  load(*name);
  UpdateSettingsList();
}

void PresetRow::OnSaveSetting() {
  const std::string name = controls_.askPresetName(controls_.shownPreset());
  if (name.empty()) return;
  std::string failure;
  filter_->parameters.SaveSettings(name, strPresetPath, filter_->GetFilterName(), &failure);
  if (!failure.empty()) {
    controls_.showError("The preset could not be saved in " + strPresetPath + ": " + failure,
                        "Error");
  }
  UpdateSettingsList();
  if (const int index = controls_.findPreset(name); index >= 0) controls_.selectPreset(index);
}

std::optional<std::string> PresetRow::confirmName(std::string name) {
  std::replace(name.begin(), name.end(), ' ', '_');
  const bool accepted =
      controls_.findPreset(name) < 0 ||
      controls_.confirm("There already is a preset with that name.\nOverwrite it? ",
                        "Overwrite Setting?");
  return accepted ? std::optional(std::move(name)) : std::nullopt;
}

void PresetRow::OnDeleteSetting() {
  const int selected = controls_.selectedPreset();
  if (selected < 0) return;
  if (!controls_.confirm("Really delete this preset?", "Delete Preset?")) return;
  const std::string name = controls_.shownPreset();
  controls_.selectPreset(selected == 0 ? 1 : selected - 1);
  filter_->parameters.DeleteSettings(name, strPresetPath);
  UpdateSettingsList();
  load(controls_.shownPreset());
  filter_->parameters.UpdateAllWidgets();
}

}  // namespace radiashafts
