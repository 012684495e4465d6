#include "interface/win32/host_window.h"

#include "diagnostics/debug_log.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {
namespace {

bool threadAnswers(HWND window) {
  constexpr UINT patience = 500;  // milliseconds
  if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) return true;
  DWORD_PTR result = 0;
  return SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL | SMTO_ABORTIFHUNG, patience,
                             &result) != 0;
}

void CALLBACK enable(PTP_CALLBACK_INSTANCE, void* window) {
  EnableWindow(static_cast<HWND>(window), TRUE);
}

// The window takes input at once; only the message that tells it so waits, in a thread that keeps
// the module loaded.
void enableWithoutWaiting(HWND window) {
  TP_CALLBACK_ENVIRON environment;
  InitializeThreadpoolEnvironment(&environment);
  SetThreadpoolCallbackLibrary(&environment, moduleInstance());
  TrySubmitThreadpoolCallback(enable, window, &environment);
}

}  // namespace

HWND HostWindow::ownerFor(const hostapi::FilterRecord& record) {
  owner_ = nullptr;
  if (record.platformData == nullptr) return nullptr;
  const auto window = static_cast<HWND>(record.platformData->ownerWindow);
  if (IsWindow(window) == FALSE) return nullptr;
  if (!threadAnswers(window)) {
    logLine(severityWarning, warningMarker, "The host's window does not answer");
    return nullptr;
  }
  return owner_ = window;
}

// One of another process is left alone: it would rest for good if this process ended early.
void HostWindow::rest() {
  if (owner_ == nullptr) return;
  const HWND window = GetAncestor(owner_, GA_ROOT);
  DWORD process = 0;
  if (window != nullptr) GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || IsWindowEnabled(window) == FALSE) return;
  if (window != owner_ && !threadAnswers(window)) return;
  resting_ = window;
  EnableWindow(window, FALSE);
}

void HostWindow::wake() {
  if (resting_ != nullptr && IsWindow(resting_) != FALSE) {
    if (threadAnswers(resting_)) {
      EnableWindow(resting_, TRUE);
    } else {
      enableWithoutWaiting(resting_);
    }
  }
  resting_ = nullptr;
}

bool HostWindow::answers() const {
  return owner_ == nullptr || IsWindow(owner_) == FALSE || threadAnswers(owner_);
}

}  // namespace radiashafts
