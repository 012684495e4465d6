#include "platform/console.h"
#include <windows.h>

namespace radiashafts::platform {
namespace {

HANDLE asHandle(std::uintptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

}  // namespace

void Console::open(const char* title, int columns, int lines) {
  AllocConsole();
  SetConsoleTitleA(title);
  const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  SetConsoleScreenBufferSize(output, {static_cast<SHORT>(columns), static_cast<SHORT>(lines)});
  handle_ = reinterpret_cast<std::uintptr_t>(output);
}

void Console::write(const std::string& text) {
  DWORD written = 0;
  WriteConsoleA(asHandle(handle_), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void Console::close() {
  if (handle_ != 0) FreeConsole();
  handle_ = 0;
}

}  // namespace radiashafts::platform
