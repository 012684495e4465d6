// Handles input in the parameter dialog: parameter changes with undo records, undo, redo, reset,
// colour swatches and the pipette.
#pragma once

#include <array>
#include <cstdint>

#include "interface/model/dialog_windows.h"
#include "interface/model/preview_view.h"
#include "interface/model/widgets.h"

namespace radiashafts {

class ParameterEditing {
 public:
  ParameterEditing(DialogWindows& windows, PreviewView& view) : windows_(windows), view_(view) {}
  ParameterEditing(const ParameterEditing&) = delete;
  ParameterEditing& operator=(const ParameterEditing&) = delete;

  void open(WidgetList* widgets, ControlPanel* panel);
  void close();

  // Called when a control has changed. Applies the change, requests a render if it needs one, and
  // then records an undo step if withUndo is set. Returns whether a render is needed.
  bool OnControlChange(int id, bool withUndo);
  // A slider moved, or was released (atRest). A drag makes one undo step.
  void OnScroll(int id, bool atRest);
  // A key or the wheel steps the number in an edit. A key that is held makes one undo step.
  void OnStep(int id, int steps, bool isNewStep);
  void OnEditKillFocus(int id);
  // Brings back the default of the parameter that has the control.
  void ResetParameter(int id);
  void Undo();
  void Redo();
  void Reset();

  // Opens a colour chooser for a swatch; other controls are ignored.
  void OpenColorChooser(int id);
  // Activates the pipette for a swatch; other controls deactivate it.
  void ActivatePipette(int id);

  bool pipetteActive() const { return pipetteTarget_ != nullptr; }
  void applyPipetteColor(const std::array<std::uint8_t, 3>& color);
  void deactivatePipette();

  // The position parameter that the handle in the preview shows; null for none.
  pfParameterPosition* FindOriginParameter() const;

  struct Swatch {
    int id;
    std::array<int, 3> color;  // 0 to 255
  };
  // The swatches to paint. On a grey picture this also changes their parameters to grey.
  std::vector<Swatch> swatches();

 private:
  void showRestored();
  pfParameterUIControls* FindWidget(int id) const;
  pfParameterRGB* FindSwatchParameter(int id) const;
  template <class Change>
  bool change(pfParameterUIControls& widget, bool withUndo, const Change& change);
  void record(pfParameter& parameter);

  DialogWindows& windows_;
  PreviewView& view_;
  WidgetList* widgets_ = nullptr;
  pfParameterRGB* pipetteTarget_ = nullptr;
  int scrolledSlider_ = 0;  // the slider that is dragged; 0 for none
};

}  // namespace radiashafts
