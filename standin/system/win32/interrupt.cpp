#include "standin/system/interrupt.h"
#include <windows.h>

#include <atomic>
#include <cstring>

namespace radiashafts::standin {
namespace {

constexpr int interruptedCode = 130;  // as for Ctrl-C on other systems

std::atomic<bool> noted{false};
std::atomic<const char*> lastLine{nullptr};

void endIfWanted() {
  const char* const line = lastLine;
  if (line == nullptr || !noted) return;
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line, static_cast<DWORD>(std::strlen(line)), &written,
            nullptr);
  TerminateProcess(GetCurrentProcess(), interruptedCode);
}

// Runs on a thread of the system's.
BOOL WINAPI note(DWORD event) {
  noted = true;
  endIfWanted();
  // When the console is closed, the process is ended as soon as this returns, or in some seconds.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

void catchInterrupts() {
  SetConsoleCtrlHandler(note, TRUE);
}

int interruptCode() {
  return noted ? interruptedCode : 0;
}

ExitOnInterrupt::ExitOnInterrupt(const char* line) {
  lastLine = line;
  endIfWanted();
}

ExitOnInterrupt::~ExitOnInterrupt() {
  lastLine = nullptr;
}

}  // namespace radiashafts::standin
