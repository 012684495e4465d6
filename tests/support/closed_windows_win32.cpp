#include <windows.h>

#include <atomic>
#include <mutex>
#include <thread>

#include "tests/support/closed_windows.h"

namespace radiashafts::test {
namespace {

std::mutex textsMutex;
std::string boxTexts;
std::atomic<bool> isDone;
std::thread watcher;

BOOL CALLBACK close(HWND window, LPARAM) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  char caption[64] = "";
  char text[512] = "";
  GetWindowTextA(window, caption, sizeof caption);
  const std::string name = caption;
  const bool isOurs = name == "About" || name.starts_with("Radiashafts");
  if (process != GetCurrentProcessId() || !isOurs) return TRUE;
  const HWND label = GetDlgItem(window, 0xFFFF);  // the text of a message box
  if (name == "Radiashafts" && label != nullptr) GetWindowTextA(label, text, sizeof text);
  const std::lock_guard lock(textsMutex);
  if (!boxTexts.ends_with(text)) boxTexts += text;
  return PostMessageA(window, WM_CLOSE, 0, 0);
}

}  // namespace

ClosedWindows::ClosedWindows() {
  boxTexts.clear();
  isDone = false;
  watcher = std::thread([] {
    for (; !isDone; Sleep(20)) EnumWindows(close, 0);
  });
}

ClosedWindows::~ClosedWindows() {
  isDone = true;
  watcher.join();
}

std::string ClosedWindows::texts() {
  const std::lock_guard lock(textsMutex);
  return boxTexts;
}

}  // namespace radiashafts::test
