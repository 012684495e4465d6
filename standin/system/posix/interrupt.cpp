#include "standin/system/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace radiashafts::standin {
namespace {

constexpr int signalBase = 128;  // shells report 128 plus the signal for a program ended by it

std::atomic<int> pendingSignal{0};
std::atomic<const char*> exitMessage{nullptr};
int errorDescriptor = STDERR_FILENO;
static_assert(std::atomic<int>::is_always_lock_free &&
              std::atomic<const char*>::is_always_lock_free);

// Called from a signal handler: uses async-signal-safe functions only.
void exitIfInterrupted() {
  const char* const line = exitMessage;
  if (line == nullptr || pendingSignal == 0) return;
  if (write(errorDescriptor, line, std::strlen(line)) < 0) {
    // The failure cannot be reported anywhere.
  }
  _exit(signalBase + pendingSignal);
}

extern "C" void handleSignal(int signal) {
  pendingSignal = signal;
  exitIfInterrupted();
}

}  // namespace

void catchInterrupts() {
  // A copy, because standard error may be redirected by SilencedStandardError when a signal
  // arrives.
  const int copy = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (copy >= 0) errorDescriptor = copy;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
  }
  std::signal(SIGXFSZ, SIG_IGN);
}

int interruptCode() {
  return pendingSignal == 0 ? 0 : signalBase + pendingSignal;
}

ExitOnInterrupt::ExitOnInterrupt(const char* line) {
  exitMessage = line;
  exitIfInterrupted();
}

ExitOnInterrupt::~ExitOnInterrupt() {
  exitMessage = nullptr;
}

}  // namespace radiashafts::standin
