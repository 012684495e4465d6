#include "standin/system/interrupt.h"

#include <atomic>

namespace radiashafts::standin {
namespace {

std::atomic<int> pendingCode{0};
std::atomic<const char*> exitMessage{nullptr};
static_assert(std::atomic<int>::is_always_lock_free &&
              std::atomic<const char*>::is_always_lock_free);

// Called from a signal handler: uses async-signal-safe functions only.
void exitIfInterrupted() {
  const char* const line = exitMessage;
  if (line != nullptr && pendingCode != 0) exitAtOnce(line, pendingCode);
}

}  // namespace

void interrupted(int code) {
  pendingCode = code;
  exitIfInterrupted();
}

int interruptCode() {
  return pendingCode;
}

ExitOnInterrupt::ExitOnInterrupt(const char* line) {
  exitMessage = line;
  exitIfInterrupted();
}

ExitOnInterrupt::~ExitOnInterrupt() {
  exitMessage = nullptr;
}

}  // namespace radiashafts::standin
