#include "platform/console.h"
#include <windows.h>

namespace radiashafts::platform {
namespace {

HANDLE asHandle(std::uintptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

// Closing the console window or pressing Ctrl-C in it would end the host process.
void disableConsoleExit() {
  SetConsoleCtrlHandler(nullptr, TRUE);
  DeleteMenu(GetSystemMenu(GetConsoleWindow(), FALSE), SC_CLOSE, MF_BYCOMMAND);
}

}  // namespace

// If the host already has a console, that one is used and not closed.
void Console::open(const char* title, int columns, int lines) {
  ownsConsole_ = AllocConsole() != FALSE;
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  if (ownsConsole_) {
    disableConsoleExit();
    SetConsoleTitleA(title);
    SetConsoleScreenBufferSize(output, {static_cast<SHORT>(columns), static_cast<SHORT>(lines)});
  }
  handle_ = reinterpret_cast<std::uintptr_t>(output);
}

void Console::write(const std::string& text) {
  DWORD written = 0;
  WriteConsoleA(asHandle(handle_), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void Console::close() {
  if (handle_ != 0 && ownsConsole_) FreeConsole();
  handle_ = 0;
}

}  // namespace radiashafts::platform
