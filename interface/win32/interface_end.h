// The end of what the interface shows, and how its procedures and loops come to it.
#pragma once

#include <windows.h>

#include <exception>

#include "interface/win32/visual_style.h"
#include "platform/floating_point.h"

namespace radiashafts {

// No message stands for the end: a host that takes the messages of its thread may lose any. The
// message loop looks here, and so does a render. Of one interface at a time, on its thread.
class InterfaceEnd {
 public:
  // A new interface opens.
  void reset();
  // OK or Cancel, from outside of a render or inside one; only the first call counts.
  void ask(bool confirmed);
  // Cancel, whatever was asked: a window is gone without our doing.
  void windowGone();
  // A procedure threw.
  void fail(std::exception_ptr fault) noexcept;

  bool hasCome() const { return asked_ || gone_ || fault_ != nullptr; }
  // A render that was wanted before the end was asked for is still done.
  bool allowsRender() const { return !gone_ && fault_ == nullptr; }
  bool isConfirmed() const { return confirmed_ && allowsRender(); }
  // Throws what a procedure threw, where one did.
  void rethrow();

 private:
  friend class SystemDialog;
  void wakeLoops() noexcept;

  bool asked_ = false;
  bool confirmed_ = false;
  bool gone_ = false;
  std::exception_ptr fault_;
  int systemDialogs_ = 0;
};

InterfaceEnd& interfaceEnd();

// Stands around a dialog with a message loop of the system's own, which ends with the interface.
// The system runs other programs' extensions in it.
class SystemDialog {
 public:
  SystemDialog();
  ~SystemDialog();
  SystemDialog(const SystemDialog&) = delete;
  SystemDialog& operator=(const SystemDialog&) = delete;
};

// A dialog's procedure as the system calls it: by whichever loop, in whichever visual style and
// floating-point state, and with nothing thrown into the system.
template <INT_PTR (*procedure)(HWND, UINT, WPARAM, LPARAM)>
INT_PTR CALLBACK windowProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l) noexcept {
  const platform::DefaultFloatingPoint state;
  const VisualStyle::Again style;
  try {
    return procedure(dialog, message, w, l);
  } catch (...) {
    interfaceEnd().fail(std::current_exception());
    return FALSE;
  }
}

}  // namespace radiashafts
