// The interface in the system's own windows: the parameter dialog over the resizable preview.
#pragma once

#include <windows.h>

#include "interface/model/parameter_editing.h"
#include "interface/model/preset_row.h"
#include "interface/model/preview.h"
#include "interface/model/preview_pointer.h"
#include "interface/model/preview_view.h"
#include "interface/model/preview_windows.h"
#include "interface/win32/dialog_controls.h"
#include "interface/win32/host_window.h"
#include "interface/win32/preview_painting.h"

namespace radiashafts {

class pfPreviewWin32 final : public pfPreview, private PreviewWindows, private PresetControls {
 public:
  bool Show(EditedFilter* filter, hostapi::FilterRecord* record, WidgetList* widgets) override;
  void RequestRender() override { view_.RequestRender(); }
  bool AlternativeColorSelection(hostapi::FilterRecord* record, double* red, double* green,
                                 double* blue) override;

 private:
  // preview_win32.cpp
  class Opening;
  bool openDialogs(WidgetList* widgets);
  void closeDialogs();
  void prepare();
  bool runMessageLoop();

  // parameter_dialog.cpp
  static INT_PTR UIProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l);
  INT_PTR onInterfaceMessage(UINT message, WPARAM w, LPARAM l);
  void onInterfaceOpens();
  void onInterfaceCloses();
  WPARAM droppedPresetsWidth() const;
  void onCommand(int id, int notification);
  void PaintSwatches(HDC context);

  // preview_dialog.cpp
  static INT_PTR PreviewProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l);
  INT_PTR onPreviewMessage(UINT message, WPARAM w, LPARAM l);
  void onPreviewOpens();
  void onPreviewCloses();
  void onSize();
  void onKey(WPARAM key);
  void PaintPreview();

  // PreviewWindows
  Extent frameSize() const override;
  void invalidateFrame() override;
  void paintNow() override;
  void bitmapChanged() override { painting_.forgetBitmap(); }
  void setPercentage(const std::string& text) override;
  void setCaption(const std::string& text) override;
  void enableHistory(bool undo, bool redo) override;
  void captureMouse() override;
  void releaseMouse() override;
  void usePipetteCursor(bool pipette) override;
  std::optional<std::array<std::uint8_t, 3>> screenColor(Point point) override;
  void enableDialogs(bool enabled) override;
  Box controlBox(int id) const override;

  // PresetControls, preset_row.cpp
  int selectedPreset() const override;
  std::optional<std::string> presetName(int index) const override;
  std::string shownPreset() const override;
  void clearPresets() override;
  void addPreset(const std::string& name) override;
  int findPreset(const std::string& name) const override;
  void selectPreset(int index) override;
  void enablePresets(bool choosing, bool saving, bool deleting) override;
  const void* presetWindow() const override;
  std::optional<std::string> choosePresetFile(const std::string& path) override;
  std::string askPresetName(const std::string& proposed) override;
  bool confirm(const char* text, const char* caption) override;
  void complain(const std::string& text, const char* caption) override;

  // A control that is switched off hands the keyboard on to the next one.
  void enableControl(int id, bool enabled);
  // Shows the pipette in place of the window's own cursor; false when it is not in use.
  bool setCursor();
  // A dialog that goes while the interface is open takes it along: its owner may have gone.
  void onDestroyed();

  HWND m_hInterface = nullptr;
  HWND m_hPreview = nullptr;
  HostWindow hostWindow_;
  bool closing_ = false;
  bool releasing_ = false;  // the mouse, by our own will
  bool bShowHandle = true;
  HCURSOR pickerCursor_ = nullptr;
  bool pipetteShown_ = false;
  DialogControls controls_;
  PreviewPainting painting_;
  PreviewView view_{*this};
  ParameterEditing editing_{*this, view_};
  PreviewPointer pointer_{*this, view_, editing_};
  PresetRow presets_{*this};
};

}  // namespace radiashafts
