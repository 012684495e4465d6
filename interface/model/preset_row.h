// The preset row of the parameter dialog: the names in one preset file, and its buttons.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "interface/model/edited_filter.h"

namespace radiashafts {

// The interface to the combo box, which sorts and compares names ignoring case, and to the prompts.
// Indices count from 0 in the order of the combo box.
class PresetControls {
 public:
  virtual ~PresetControls() = default;

  virtual int selectedPreset() const = 0;  // -1 for none
  // None when the name is too long.
  virtual std::optional<std::string> presetName(int index) const = 0;
  virtual std::string shownPreset() const = 0;  // the text in the combo box, at most 255 characters
  virtual void clearPresets() = 0;
  virtual void addPreset(const std::string& name) = 0;
  virtual int findPreset(const std::string& name) const = 0;  // -1 for none
  virtual void selectPreset(int index) = 0;
  virtual void enablePresets(bool choosing, bool saving, bool deleting) = 0;
  virtual const void* presetWindow() const = 0;  // for the log

  // The chosen path, of a file that need not exist; none on Cancel.
  virtual std::optional<std::string> choosePresetFile(const std::string& path) = 0;
  // Runs the "save as" dialog. Returns the name that confirmName accepted; empty on Cancel.
  virtual std::string askPresetName(const std::string& proposed) = 0;
  virtual bool confirm(const char* text, const char* caption) = 0;
  virtual void showError(const std::string& text, const char* caption) = 0;
};

class PresetRow {
 public:
  explicit PresetRow(PresetControls& controls) : controls_(controls) {}
  PresetRow(const PresetRow&) = delete;
  PresetRow& operator=(const PresetRow&) = delete;

  void open(EditedFilter* filter) { filter_ = filter; }

  const std::string& path() const { return strPresetPath; }
  void setPath(const std::string& path) { strPresetPath = path; }

  // Fills the combo box with the names in the file and keeps the selection.
  void UpdateSettingsList();
  void OnChangeSettingFile();
  void OnSelectSetting();  // loads the preset as one undo step
  void OnSaveSetting();
  // Selects and loads the preset next to the deleted one. No render is requested, so the preview
  // shows the old values until the next change. This is intended: dialog tests depend on it.
  void OnDeleteSetting();

  // The name with blanks replaced by "_". None when it exists and the user refuses to overwrite it;
  // the caller then prompts again.
  std::optional<std::string> confirmName(std::string name);

 private:
  void load(const std::string& name);

  PresetControls& controls_;
  EditedFilter* filter_ = nullptr;
  std::string strPresetPath;  // empty for none
};

}  // namespace radiashafts
