// The parameter dialog with the parameters' controls and the preset row.
#pragma once

#include <windows.h>

#include <string>

#include "interface/model/parameter_editing.h"
#include "interface/model/preview_view.h"
#include "interface/win32/dialog.h"
#include "interface/win32/dialog_controls.h"
#include "interface/win32/dialog_scroll.h"
#include "interface/win32/pipette_cursor.h"
#include "interface/win32/preset_controls.h"
#include "interface/win32/preview_dialog.h"
#include "interface/win32/tooltips.h"
#include "interface/win32/wheel_notches.h"

namespace radiashafts {

class ParameterDialog final : public Dialog {
 public:
  ParameterDialog(PreviewView& view, ParameterEditing& editing, PreviewDialog& preview,
                  const PipetteCursor& pipette)
      : view_(view), editing_(editing), preview_(preview), pipette_(pipette) {}

  PresetRow& presets() { return presets_.row(); }
  ControlPanel& controls() { return controls_; }

  // Scrolls to the control that has the keyboard.
  void showFocus() { scroll_.show(GetFocus()); }
  void setPercentage(const std::string& text);
  void enableHistory(bool undo, bool redo);
  // Keys and the wheel that step the number in an edit. Returns whether the message is one.
  bool takeStep(const MSG& message);

 private:
  INT_PTR onMessage(UINT message, WPARAM w, LPARAM l) override;
  void onScaled(Extent from, Extent to, bool bySystem) override;
  void onOpen();
  void onDestroy();
  WPARAM droppedPresetsWidth() const;
  void onLabel(int id, int notification);
  void onCommand(int id, int notification);
  void PaintSwatch(const DRAWITEMSTRUCT& item);

  PreviewView& view_;
  ParameterEditing& editing_;
  PreviewDialog& preview_;
  const PipetteCursor& pipette_;
  DialogControls controls_;
  PresetControlsWin32 presets_{*this};
  DialogScroll scroll_;
  WheelNotches wheel_;
};

}  // namespace radiashafts
