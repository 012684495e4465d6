// What the controls of the parameter dialog do: changes with their undo records, the history's
// buttons, colour swatches and the pipette.
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

  // A control says that it changed. Asks for a render where one is needed, and records the step
  // where wanted; false when nothing needs a render.
  bool OnControlChange(int id, bool withUndo);
  // A slider moved, or came to rest. One drag makes one step of the history.
  void OnScroll(int id, bool atRest);
  void OnEditKillFocus(int id);
  void Undo();
  void Redo();
  void Reset();

  // The mouse in the parameter dialog: the left button on a swatch opens a colour chooser, the
  // right one, released there, picks up the pipette.
  void OnInterfaceLeftDown(Point point);
  void OnInterfaceLeftUp();
  void OnSwatchRightUp(Point point);

  bool pipetteActive() const { return pickedColor_ != nullptr; }
  void pipetteTakes(const std::array<std::uint8_t, 3>& color);
  void dropPipette();

  // The position parameter that the preview's handle shows; null for none.
  pfParameterPosition* FindOriginParameter() const;

  struct Swatch {
    int id;
    std::array<int, 3> color;  // 0 to 255
  };
  // The swatches to paint. On a grey picture their parameters become grey for good.
  std::vector<Swatch> swatches();

 private:
  pfParameterRGB* FindSwatchParameter(Point point) const;
  void record(pfParameter& parameter);

  DialogWindows& windows_;
  PreviewView& view_;
  WidgetList* widgets_ = nullptr;
  pfParameterRGB* pickedColor_ = nullptr;
  bool scrolling_ = false;
};

}  // namespace radiashafts
