// The base class of the interface's dialogs: owns the window and forwards its messages.
#pragma once

#include <windows.h>

#include "interface/model/preview_geometry.h"
#include "interface/win32/dialog_font.h"
#include "interface/win32/interface_end.h"
#include "interface/win32/system_colors.h"

namespace radiashafts {

// Gives a dialog the filter's icon; the window class's is not changed, since all dialogs of the
// process share it, the host's too.
void setIcon(HWND dialog);

class Dialog {
 public:
  virtual ~Dialog() = default;
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;

  // Creates the window, hidden, from the module's dialog resource. On failure logs an error with
  // name and returns false.
  bool create(int resource, HWND owner, const char* name);
  void destroy();

  HWND window() const { return window_; }  // null when not created
  // Moves the window into the work area of its monitor, and shrinks one that is larger. Returns
  // whether it was shrunk in height.
  bool moveIntoWorkArea();
  void enable(bool enabled) { EnableWindow(window_, enabled ? TRUE : FALSE); }

 protected:
  Dialog() = default;

  // Returns FALSE when the message was not handled; else TRUE or the message's own return value.
  virtual INT_PTR onMessage(UINT message, WPARAM w, LPARAM l) = 0;
  // Called when another scaling has changed the size of the client area; bySystem where the system
  // has changed the controls too.
  virtual void onScaled(Extent, Extent, bool) {}
  bool isScaling() const { return scaling_; }
  const SystemColors& colors() const { return colors_; }
  // Sets the result of a handled message, for messages that have one.
  void setResult(LONG_PTR result) { SetWindowLongPtrA(window_, DWLP_MSGRESULT, result); }
  // Called on WM_DESTROY. Ends the interface unless destroy was the cause: the host may have
  // destroyed the owner window.
  void onWindowDestroyed() {
    if (!destroying_) interfaceEnd().windowDestroyed();
  }

 private:
  static INT_PTR procedure(HWND dialog, UINT message, WPARAM w, LPARAM l);
  Extent clientSize() const;
  void followScaling(WPARAM w, LPARAM l);
  void followColors(UINT message, WPARAM w, LPARAM l);

  HWND window_ = nullptr;
  bool destroying_ = false;
  bool scaling_ = false;
  DialogFont font_;
  SystemColors colors_;
};

}  // namespace radiashafts
