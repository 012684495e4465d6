#include "interface/win32/host_window.h"

#include "diagnostics/debug_log.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {
namespace {

bool threadResponds(HWND window) {
  constexpr UINT timeout = 500;  // milliseconds
  if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) return true;
  DWORD_PTR result = 0;
  return SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL | SMTO_ABORTIFHUNG, timeout,
                             &result) != 0;
}

void CALLBACK enableInThreadpool(PTP_CALLBACK_INSTANCE, void* window) {
  EnableWindow(static_cast<HWND>(window), TRUE);
}

// Enables the window from a thread-pool thread, which keeps the module loaded. The window accepts
// input at once; only the notification that EnableWindow sends blocks until the window's thread
// responds.
void enableAsync(HWND window) {
  TP_CALLBACK_ENVIRON environment;
  InitializeThreadpoolEnvironment(&environment);
  SetThreadpoolCallbackLibrary(&environment, moduleInstance());
  TrySubmitThreadpoolCallback(enableInThreadpool, window, &environment);
}

}  // namespace

HWND HostWindow::ownerFor(const hostapi::FilterRecord& record) {
  owner_ = nullptr;
  if (record.platformData == nullptr) return nullptr;
  const auto window = static_cast<HWND>(record.platformData->ownerWindow);
  if (IsWindow(window) == FALSE) return nullptr;
  if (!threadResponds(window)) {
    logLine(severityWarning, warningMarker, "The host's window does not answer");
    return nullptr;
  }
  return owner_ = window;
}

// A window of another process is not disabled: it would stay disabled if this process crashed.
void HostWindow::disable() {
  if (owner_ == nullptr) return;
  const HWND window = GetAncestor(owner_, GA_ROOT);
  DWORD process = 0;
  if (window != nullptr) GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || IsWindowEnabled(window) == FALSE) return;
  if (window != owner_ && !threadResponds(window)) return;
  disabled_ = window;
  EnableWindow(window, FALSE);
}

void HostWindow::enable() {
  if (disabled_ != nullptr && IsWindow(disabled_) != FALSE) {
    if (threadResponds(disabled_)) {
      EnableWindow(disabled_, TRUE);
    } else {
      enableAsync(disabled_);
    }
  }
  disabled_ = nullptr;
}

bool HostWindow::isResponding() const {
  return owner_ == nullptr || IsWindow(owner_) == FALSE || threadResponds(owner_);
}

}  // namespace radiashafts
