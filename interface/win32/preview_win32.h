// The interface in the system's own windows: the parameter dialog over the resizable preview.
#pragma once

#include <windows.h>

#include "interface/parameter_editing.h"
#include "interface/preview.h"
#include "interface/preview_pointer.h"
#include "interface/preview_view.h"
#include "interface/preview_windows.h"
#include "interface/win32/dialog_controls.h"
#include "interface/win32/preview_painting.h"

namespace radiashafts {

class pfPreviewWin32 final : public pfPreview, private PreviewWindows {
 public:
  bool Show(EditedFilter* filter, hostapi::FilterRecord* record, WidgetList* widgets) override;
  void RequestRender() override { view_.RequestRender(); }
  bool AlternativeColorSelection(hostapi::FilterRecord* record, double* red, double* green,
                                 double* blue) override;

 private:
  // preview_win32.cpp
  bool openDialogs(WidgetList* widgets);
  void closeDialogs();
  void prepare();
  bool runMessageLoop();

  // parameter_dialog.cpp
  static INT_PTR CALLBACK UIProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l);
  INT_PTR onInterfaceMessage(UINT message, WPARAM w, LPARAM l);
  void onInterfaceOpens();
  void onInterfaceCloses();
  void onCommand(int id, int notification);
  void PaintSwatches(HDC context);

  // preview_dialog.cpp
  static INT_PTR CALLBACK PreviewProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l);
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

  // Shows the pipette in place of the window's own cursor; false when it is not in use.
  bool setCursor();
  // A dialog that goes while the interface is open takes it along, as Cancel.
  void onDestroyed();

  HWND m_hInterface = nullptr;
  HWND m_hPreview = nullptr;
  bool closing_ = false;
  bool bShowHandle = true;
  HCURSOR pickerCursor_ = nullptr;
  bool pipetteShown_ = false;
  DialogControls controls_;
  PreviewPainting painting_;
  PreviewView view_{*this};
  ParameterEditing editing_{*this, view_};
  PreviewPointer pointer_{*this, view_, editing_};
};

}  // namespace radiashafts
