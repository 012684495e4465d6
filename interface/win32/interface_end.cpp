#include "interface/win32/interface_end.h"

#include <utility>

#include "interface/model/live_preview.h"

namespace radiashafts {
namespace {

// Tells our quit message, which only loops of the system get, from the host's.
constexpr int ourQuit = 0x52617973;

}  // namespace

InterfaceEnd& interfaceEnd() {
  static InterfaceEnd end;
  return end;
}

void InterfaceEnd::reset() {
  asked_ = confirmed_ = gone_ = false;
  fault_ = nullptr;
  bInterfaceEnded = false;
}

void InterfaceEnd::ask(bool confirmed) {
  if (asked_) return;
  asked_ = true;
  confirmed_ = confirmed;
  wakeLoops();
}

void InterfaceEnd::windowGone() {
  gone_ = true;
  wakeLoops();
}

void InterfaceEnd::fail(std::exception_ptr fault) noexcept {
  if (fault_ == nullptr) fault_ = std::move(fault);
  wakeLoops();
}

// A loop that waits for messages may be what called: another thread's message is handled in there.
void InterfaceEnd::wakeLoops() noexcept {
  bInterfaceEnded = true;
  PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
  if (systemDialogs_ > 0) PostQuitMessage(ourQuit);
}

void InterfaceEnd::rethrow() {
  if (fault_ != nullptr) std::rethrow_exception(std::exchange(fault_, nullptr));
}

SystemDialog::SystemDialog() {
  ++interfaceEnd().systemDialogs_;
}

// The system's loops hand the quit message on to the loop around them.
SystemDialog::~SystemDialog() {
  platform::setDefaultFloatingPoint();
  InterfaceEnd& end = interfaceEnd();
  if (--end.systemDialogs_ > 0 || !end.hasCome()) return;
  MSG message;
  const BOOL found = PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
  if (found != FALSE && message.wParam != ourQuit) {
    PostQuitMessage(static_cast<int>(message.wParam));
  }
}

}  // namespace radiashafts
