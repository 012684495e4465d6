// Requests to end the program: Ctrl-C and what stands beside it on the system.
#pragma once

namespace radiashafts::standin {

// From here on requests are noted, but for those that the program was started to ignore. A file
// beyond the user's limit is from here on a failed write, as a full disk is.
void catchInterrupts();

// The exit code that a noted request wants: 128 and the signal's number. 0 without one.
int interruptCode();

// While it lives, a request ends the process at once, with the line on standard error, and so does
// one that is noted already. For work that waits and leaves nothing behind.
class ExitOnInterrupt {
 public:
  explicit ExitOnInterrupt(const char* line);
  ~ExitOnInterrupt();
  ExitOnInterrupt(const ExitOnInterrupt&) = delete;
  ExitOnInterrupt& operator=(const ExitOnInterrupt&) = delete;
};

}  // namespace radiashafts::standin
