// The request to close the interface, and its delivery to message loops and renders.
#pragma once

#include <windows.h>

#include <exception>

#include "interface/win32/visual_style.h"
#include "platform/floating_point.h"

namespace radiashafts {

// The end is a flag and not a message, because a host that reads its thread's messages may lose
// any. The message loop checks this object, and a running render checks bInterfaceEnded. There is
// one interface at a time; only its thread uses this object.
class InterfaceEnd {
 public:
  // Called when an interface opens.
  void reset();
  // OK or Cancel, also during a render. Only the first call has an effect.
  void request(bool confirmed);
  // A window was destroyed by others. Counts as Cancel, even after OK.
  void windowDestroyed();
  // A window procedure threw an exception.
  void fail(std::exception_ptr exception) noexcept;

  bool isEnding() const { return requested_ || windowDestroyed_ || exception_ != nullptr; }
  // A render that is still pending at OK or Cancel is executed.
  bool allowsRender() const { return !windowDestroyed_ && exception_ == nullptr; }
  bool isConfirmed() const { return confirmed_ && allowsRender(); }
  // Rethrows the exception of a procedure, if there was one.
  void rethrow();

 private:
  friend class SystemDialog;
  void wakeLoops() noexcept;

  bool requested_ = false;
  bool confirmed_ = false;
  bool windowDestroyed_ = false;
  std::exception_ptr exception_;
  int systemDialogs_ = 0;  // open ones, which may be nested
};

InterfaceEnd& interfaceEnd();

// RAII: surrounds a modal dialog with the system's own message loop, so that the interface's end
// also closes it. Sets the floating-point state afterwards, because the system runs other programs'
// extensions in the loop.
class SystemDialog {
 public:
  SystemDialog();
  ~SystemDialog();
  SystemDialog(const SystemDialog&) = delete;
  SystemDialog& operator=(const SystemDialog&) = delete;
};

// The procedure that is passed to the system. Any message loop may call it, so it sets the visual
// style and the floating-point state. It catches exceptions, because none may reach the system.
template <INT_PTR (*procedure)(HWND, UINT, WPARAM, LPARAM)>
INT_PTR CALLBACK windowProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l) noexcept {
  const platform::DefaultFloatingPoint state;
  const VisualStyle::Reactivation style;
  try {
    return procedure(dialog, message, w, l);
  } catch (...) {
    interfaceEnd().fail(std::current_exception());
    return FALSE;
  }
}

}  // namespace radiashafts
