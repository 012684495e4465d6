// Handling of interrupts: SIGINT, SIGTERM and SIGHUP on Linux, console events on Windows.
#pragma once

namespace radiashafts::standin {

// Installs the handlers. Signals that were ignored at program start stay ignored. On Linux SIGXFSZ
// and SIGPIPE are ignored as well: exceeding the file size limit and a closed pipe are write
// errors.
void catchInterrupts();

// The exit code after an interrupt: 128 plus the signal's number. 0 if there was none.
int interruptCode();

// RAII: during its lifetime an interrupt writes the line to standard error and ends the process at
// once; an interrupt that came earlier does so in the constructor. For blocking work that needs no
// cleanup.
class ExitOnInterrupt {
 public:
  explicit ExitOnInterrupt(const char* line);
  ~ExitOnInterrupt();
  ExitOnInterrupt(const ExitOnInterrupt&) = delete;
  ExitOnInterrupt& operator=(const ExitOnInterrupt&) = delete;
};

// Called by the system's handlers, in any context that a signal handler has.
void interrupted(int code);
// Writes the line to standard error and ends the process without cleanup; async-signal-safe.
[[noreturn]] void exitAtOnce(const char* line, int code);

}  // namespace radiashafts::standin
