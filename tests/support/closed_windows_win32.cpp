#include <windows.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>

#include "tests/support/closed_windows.h"

namespace radiashafts::test {

struct ClosedWindows::State {
  std::mutex mutex;
  std::string texts;
  std::atomic<bool> done{false};
  std::thread watcher{[this] {
    for (; !done; Sleep(20)) {
      const HWND box = FindWindowA("#32770", "Radiashafts");
      if (box != nullptr) read(box);
      EnumWindows(cancelDialog, 0);
    }
  }};

  static BOOL CALLBACK cancelDialog(HWND window, LPARAM) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    char caption[32] = "";
    GetWindowTextA(window, caption, sizeof caption);
    const bool isDialog =
        std::strncmp(caption, "Radiashafts  V", 14) == 0 || std::strcmp(caption, "About") == 0;
    if (process == GetCurrentProcessId() && isDialog) PostMessageA(window, WM_CLOSE, 0, 0);
    return TRUE;
  }

  void read(HWND box) {
    const HWND label = GetDlgItem(box, 0xFFFF);  // the text of a message box
    char text[512] = "";
    if (label != nullptr) GetWindowTextA(label, text, sizeof text);
    {
      const std::lock_guard lock(mutex);
      texts += text;
    }
    SendMessageA(box, WM_CLOSE, 0, 0);
    while (IsWindow(box) != 0 && !done) Sleep(5);
  }
};

ClosedWindows::ClosedWindows() : state_(std::make_unique<State>()) {}

ClosedWindows::~ClosedWindows() {
  state_->done = true;
  state_->watcher.join();
}

std::string ClosedWindows::texts() {
  const std::lock_guard lock(state_->mutex);
  return state_->texts;
}

}  // namespace radiashafts::test
