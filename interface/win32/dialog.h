// A dialog of the interface: its window, and the way of its messages to an object.
#pragma once

#include <windows.h>

#include "interface/win32/interface_end.h"

namespace radiashafts {

class Dialog {
 public:
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;

  // Makes the window from the module's resource, hidden, with the filter's icon; null where the
  // system makes none. name is for the log.
  bool create(int resource, HWND owner, const char* name);
  void destroy();

  HWND window() const { return window_; }  // null when there is none
  void enable(bool enabled) { EnableWindow(window_, enabled ? TRUE : FALSE); }

 protected:
  Dialog() = default;
  ~Dialog() = default;

  // TRUE, or the value that the message asks for, when the message was handled.
  virtual INT_PTR onMessage(UINT message, WPARAM w, LPARAM l) = 0;
  // The result of a handled message, where the system reads one.
  void setResult(LONG_PTR result) { SetWindowLongPtrA(window_, DWLP_MSGRESULT, result); }
  // The window is being destroyed. The interface ends where this was not by destroy: the host may
  // have destroyed the owner.
  void destroyed() {
    if (!destroying_) interfaceEnd().windowGone();
  }

 private:
  static INT_PTR procedure(HWND dialog, UINT message, WPARAM w, LPARAM l);

  HWND window_ = nullptr;
  bool destroying_ = false;
};

}  // namespace radiashafts
