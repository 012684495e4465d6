// The controls of an open parameter dialog.
#pragma once

#include <windows.h>

#include "interface/model/control_panel.h"
#include "interface/model/remembered_settings.h"

namespace radiashafts {

// RAII: the device context for a WM_PAINT message.
class PaintContext {
 public:
  explicit PaintContext(HWND window) : window_(window), context_(BeginPaint(window, &paint_)) {}
  ~PaintContext() { EndPaint(window_, &paint_); }
  PaintContext(const PaintContext&) = delete;
  PaintContext& operator=(const PaintContext&) = delete;

  HDC get() const { return context_; }

 private:
  HWND window_;
  PAINTSTRUCT paint_;
  HDC context_;
};

class DialogControls final : public ControlPanel {
 public:
  void attach(HWND dialog, Extent imageSize) {
    dialog_ = dialog;
    imageSize_ = imageSize;
  }

  Extent imageSize() const override { return imageSize_; }
  bool hasFocus(int id) const override;
  void enable(int id, bool enabled) override;
  void show(int id, bool visible) override;
  void invalidate(int id) override;
  std::string text(int id) const override;
  void setText(int id, const std::string& text) override;
  void setSliderRange(int id, int minimum, int maximum, int page) override;
  int sliderPosition(int id) const override;
  void setSliderPosition(int id, int position, bool redraw) override;
  bool isIndeterminate(int id) const override;
  bool isChecked(int id) const override;
  void setChecked(int id, bool checked) override;
  int selectedEntry(int id) const override;
  void setEntries(int id, const std::vector<std::string>& entries, int selected) override;

 private:
  LRESULT send(int id, UINT message, WPARAM w = 0, LPARAM l = 0) const {
    return SendDlgItemMessageA(dialog_, id, message, w, l);
  }

  HWND dialog_ = nullptr;
  Extent imageSize_;
};

// The current metrics of the system's monitors.
ScreenMetrics screenMetrics();

// The rectangle of a control, hidden or not, in its dialog's client area.
RECT controlRect(HWND dialog, int id);
RECT rectInDialog(HWND dialog, HWND control);

bool isClass(HWND control, const char* name);  // a name of at most 15 characters
bool isEdit(HWND control);

// Whether a WM_KEYDOWN with this parameter is not the repetition of a key that is held.
bool isFirstPress(LPARAM parameter);

// The number of the control that a label stands before; 0 if the window is no label.
int labelledControl(HWND window);

// Enables or disables a control. If the control had the focus when disabled, the next one gets it.
void enableControl(HWND dialog, int id, bool enabled);

}  // namespace radiashafts
