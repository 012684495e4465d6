#include "standin/system/interrupt.h"
#include <windows.h>

#include <cstring>

namespace radiashafts::standin {
namespace {

constexpr int interruptedCode = 130;  // as after SIGINT on Linux

// Runs on a separate thread that the system creates.
BOOL WINAPI handleConsoleEvent(DWORD event) {
  interrupted(interruptedCode);
  // After a close, logoff or shutdown event the system ends the process when this returns or after
  // a few seconds. Not returning gives the main thread that time to clean up.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void catchInterrupts() {
  SetConsoleCtrlHandler(handleConsoleEvent, TRUE);
}

void exitAtOnce(const char* line, int code) {
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line, static_cast<DWORD>(std::strlen(line)), &written,
            nullptr);
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(code));
  Sleep(INFINITE);  // does not return
  __builtin_unreachable();
}

}  // namespace radiashafts::standin
