#include "standin/system/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace radiashafts::standin {
namespace {

constexpr int signalBase = 128;  // of the exit codes that shells give to ended programs

std::atomic<int> noted{0};
std::atomic<const char*> lastLine{nullptr};
int errors = STDERR_FILENO;
static_assert(std::atomic<int>::is_always_lock_free &&
              std::atomic<const char*>::is_always_lock_free);

// Calls what signal handlers may call.
void endIfWanted() {
  const char* const line = lastLine;
  if (line == nullptr || noted == 0) return;
  if (write(errors, line, std::strlen(line)) < 0) {
    // Nobody is left to be told.
  }
  _exit(signalBase + noted);
}

extern "C" void note(int signal) {
  noted = signal;
  endIfWanted();
}

}  // namespace

void catchInterrupts() {
  // Standard error may be silenced when a request comes.
  const int kept = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (kept >= 0) errors = kept;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = note;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
  }
  std::signal(SIGXFSZ, SIG_IGN);
}

int interruptCode() {
  return noted == 0 ? 0 : signalBase + noted;
}

ExitOnInterrupt::ExitOnInterrupt(const char* line) {
  lastLine = line;
  endIfWanted();
}

ExitOnInterrupt::~ExitOnInterrupt() {
  lastLine = nullptr;
}

}  // namespace radiashafts::standin
