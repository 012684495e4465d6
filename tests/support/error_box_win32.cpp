#include <windows.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "tests/support/error_box.h"

namespace radiashafts::test {

struct ErrorBoxes::State {
  std::mutex mutex;
  std::string texts;
  std::atomic<bool> done{false};
  std::thread watcher{[this] {
    for (; !done; Sleep(20)) {
      const HWND box = FindWindowA("#32770", "Radiashafts");
      if (box != nullptr) read(box);
    }
  }};

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

ErrorBoxes::ErrorBoxes() : state_(std::make_unique<State>()) {}

ErrorBoxes::~ErrorBoxes() {
  state_->done = true;
  state_->watcher.join();
}

std::string ErrorBoxes::texts() {
  const std::lock_guard lock(state_->mutex);
  return state_->texts;
}

}  // namespace radiashafts::test
