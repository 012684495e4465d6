#include "standin/system/interrupt.h"

#include <csignal>
#include <cstring>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace radiashafts::standin {
namespace {

constexpr int signalBase = 128;  // shells report 128 plus the signal for a program ended by it

int errorDescriptor = STDERR_FILENO;

extern "C" void handleSignal(int signal) {
  interrupted(signalBase + signal);
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
  std::signal(SIGPIPE, SIG_IGN);
}

void exitAtOnce(const char* line, int code) {
  if (write(errorDescriptor, line, std::strlen(line)) < 0) {
    // The failure cannot be reported anywhere.
  }
  _exit(code);
}

}  // namespace radiashafts::standin
