#include "standin/system/interrupt.h"
#include <windows.h>

#include <atomic>
#include <cstring>

namespace radiashafts::standin {
namespace {

constexpr int interruptedCode = 130;  // as after SIGINT on Linux

std::atomic<bool> interrupted{false};
std::atomic<const char*> exitMessage{nullptr};

void exitIfInterrupted() {
  const char* const line = exitMessage;
  if (line == nullptr || !interrupted) return;
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line, static_cast<DWORD>(std::strlen(line)), &written,
            nullptr);
  TerminateProcess(GetCurrentProcess(), interruptedCode);
}

// Runs on a separate thread that the system creates.
BOOL WINAPI handleConsoleEvent(DWORD event) {
  interrupted = true;
  exitIfInterrupted();
  // After a close, logoff or shutdown event the system ends the process when this returns or after
  // a few seconds. Not returning gives the main thread that time to clean up.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void catchInterrupts() {
  SetConsoleCtrlHandler(handleConsoleEvent, TRUE);
}

int interruptCode() {
  return interrupted ? interruptedCode : 0;
}

ExitOnInterrupt::ExitOnInterrupt(const char* line) {
  exitMessage = line;
  exitIfInterrupted();
}

ExitOnInterrupt::~ExitOnInterrupt() {
  exitMessage = nullptr;
}

}  // namespace radiashafts::standin
