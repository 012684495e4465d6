#include "interface/win32/interface_end.h"

#include <utility>

#include "interface/model/live_preview.h"

namespace radiashafts {
namespace {

// The exit code that distinguishes our quit message, posted only for loops of the system, from the
// host's.
constexpr int ourQuit = 0x52617973;

}  // namespace

InterfaceEnd& interfaceEnd() {
  static InterfaceEnd end;
  return end;
}

void InterfaceEnd::reset() {
  requested_ = confirmed_ = windowDestroyed_ = false;
  exception_ = nullptr;
  bInterfaceEnded = false;
}

void InterfaceEnd::request(bool confirmed) {
  if (requested_) return;
  requested_ = true;
  confirmed_ = confirmed;
  wakeLoops();
}

void InterfaceEnd::windowDestroyed() {
  windowDestroyed_ = true;
  wakeLoops();
}

void InterfaceEnd::fail(std::exception_ptr exception) noexcept {
  if (exception_ == nullptr) exception_ = std::move(exception);
  wakeLoops();
}

// Posts a message, because the loop may be waiting in GetMessage, which also dispatches messages
// sent by other threads.
void InterfaceEnd::wakeLoops() noexcept {
  bInterfaceEnded = true;
  PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);
  if (systemDialogs_ > 0) PostQuitMessage(ourQuit);
}

void InterfaceEnd::rethrow() {
  if (exception_ != nullptr) std::rethrow_exception(std::exchange(exception_, nullptr));
}

SystemDialog::SystemDialog() {
  ++interfaceEnd().systemDialogs_;
}

// The system's loops post the quit message again for the outer loop; ours is removed here.
SystemDialog::~SystemDialog() {
  platform::setDefaultFloatingPoint();
  InterfaceEnd& end = interfaceEnd();
  if (--end.systemDialogs_ > 0 || !end.isEnding()) return;
  MSG message;
  const BOOL found = PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
  if (found != FALSE && message.wParam != ourQuit) {
    PostQuitMessage(static_cast<int>(message.wParam));
  }
}

}  // namespace radiashafts
