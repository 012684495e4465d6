// The interface with Windows dialogs: the preview, and the parameter dialog that it owns.
#pragma once

#include "interface/model/dialog_windows.h"
#include "interface/model/parameter_editing.h"
#include "interface/model/preview.h"
#include "interface/model/preview_pointer.h"
#include "interface/model/preview_view.h"
#include "interface/win32/host_window.h"
#include "interface/win32/parameter_dialog.h"
#include "interface/win32/pipette_cursor.h"
#include "interface/win32/preview_dialog.h"
#include "platform/win32/message_filter.h"

namespace radiashafts {

class pfPreviewWin32 final : public pfPreview,
                             private DialogWindows,
                             private platform::MessageFilter {
 public:
  bool Show(EditedFilter* filter, hostapi::FilterRecord* record, WidgetList* widgets) override;
  void RequestRender() override { view_.RequestRender(); }
  bool AlternativeColorSelection(hostapi::FilterRecord* record, double* red, double* green,
                                 double* blue) override;

 private:
  class OpenInterface;
  bool openDialogs(WidgetList* widgets);
  void closeDialogs();
  void showDialogs();
  bool runMessageLoop();
  bool take(MSG& message) override;
  bool takeKey(const MSG& message);

  Extent frameSize() const override { return preview_.frameSize(); }
  int dotsPerInch() const override { return preview_.dotsPerInch(); }
  void invalidateFrame() override { preview_.invalidateFrame(); }
  void paintNow() override { preview_.paintNow(); }
  void setPercentage(const std::string& text) override { parameters_.setPercentage(text); }
  void setCaption(const std::string& text) override { preview_.setCaption(text); }
  void enableHistory(bool undo, bool redo) override { parameters_.enableHistory(undo, redo); }
  void captureMouse() override { preview_.captureMouse(); }
  void releaseMouse() override { preview_.releaseMouse(); }
  void usePipetteCursor(bool pipette) override { pipette_.use(pipette); }
  std::optional<std::array<std::uint8_t, 3>> screenColor(Point point) override {
    return preview_.screenColor(point);
  }
  void enableDialogs(bool enabled) override;

  HostWindow hostWindow_;
  PipetteCursor pipette_;
  PreviewView view_{*this};
  ParameterEditing editing_{*this, view_};
  PreviewPointer pointer_{*this, view_, editing_};
  PreviewDialog preview_{view_, editing_, pointer_, pipette_};
  ParameterDialog parameters_{view_, editing_, preview_, pipette_};
};

}  // namespace radiashafts
