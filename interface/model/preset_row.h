// The preset row of the parameter dialog: the names in one preset file, and what its buttons do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "interface/model/edited_filter.h"

namespace radiashafts {

// The combo box, sorted and without regard to case, and the prompts. Indices count from 0 in the
// combo's own order.
class PresetControls {
 public:
  virtual ~PresetControls() = default;

  virtual int selectedPreset() const = 0;  // -1 for none
  // Empty where the name is too long to be one.
  virtual std::optional<std::string> presetName(int index) const = 0;
  virtual std::string shownPreset() const = 0;  // the text in the combo, at most 255 characters
  virtual void clearPresets() = 0;
  virtual void addPreset(const std::string& name) = 0;
  virtual int findPreset(const std::string& name) const = 0;  // -1 for none
  virtual void selectPreset(int index) = 0;
  virtual void enablePresets(bool choosing, bool saving, bool deleting) = 0;
  virtual const void* presetWindow() const = 0;  // for the log

  // The path of a file that may be new; none on Cancel.
  virtual std::optional<std::string> choosePresetFile(const std::string& path) = 0;
  // Runs the save as dialog, which leaves the name that was agreed on; empty for none.
  virtual std::string askPresetName(const std::string& proposed) = 0;
  virtual bool confirm(const char* text, const char* caption) = 0;
  virtual void complain(const std::string& text, const char* caption) = 0;
};

class PresetRow {
 public:
  explicit PresetRow(PresetControls& controls) : controls_(controls) {}
  PresetRow(const PresetRow&) = delete;
  PresetRow& operator=(const PresetRow&) = delete;

  void open(EditedFilter* filter) { filter_ = filter; }

  const std::string& path() const { return strPresetPath; }
  void setPath(const std::string& path) { strPresetPath = path; }

  // Shows the names of the file, with the selected one kept.
  void UpdateSettingsList();
  void OnChangeSettingFile();
  void OnSelectSetting();  // loads, as one step of the history
  void OnSaveSetting();
  // The neighbour of the deleted preset is selected and loaded. The preview keeps showing the old
  // values until the next change; wanted.
  void OnDeleteSetting();

  // The name as preset files can hold it, if the user agrees to write it; none keeps asking.
  std::optional<std::string> agreeOnName(std::string name);

 private:
  void load(const std::string& name);

  PresetControls& controls_;
  EditedFilter* filter_ = nullptr;
  std::string strPresetPath;  // empty for none
};

}  // namespace radiashafts
