// The Windows controls and prompts of the preset row.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "interface/model/preset_row.h"
#include "interface/win32/dialog.h"

namespace radiashafts {

class PresetControlsWin32 final : private PresetControls {
 public:
  // The dialog contains the controls and owns this object.
  explicit PresetControlsWin32(const Dialog& dialog) : dialog_(dialog) {}

  PresetRow& row() { return row_; }

 private:
  int selectedPreset() const override;
  std::optional<std::string> presetName(int index) const override;
  std::string shownPreset() const override;
  void clearPresets() override;
  void addPreset(const std::string& name) override;
  int findPreset(const std::string& name) const override;
  void selectPreset(int index) override;
  void enablePresets(bool choosing, bool saving, bool deleting) override;
  const void* presetWindow() const override { return dialog_.window(); }
  std::optional<std::string> choosePresetFile(const std::string& path) override;
  std::string askPresetName(const std::string& proposed) override;
  bool confirm(const char* text, const char* caption) override;
  void showError(const std::string& text, const char* caption) override;

  LRESULT send(UINT message, WPARAM w = 0, LPARAM l = 0) const;

  const Dialog& dialog_;
  PresetRow row_{*this};
};

}  // namespace radiashafts
