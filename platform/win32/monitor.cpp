#include "platform/monitor.h"
#include <windows.h>

namespace radiashafts::platform {

struct Monitor::State {
  SRWLOCK lock = SRWLOCK_INIT;
  CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;
};

Monitor::Monitor() : state_(std::make_unique<State>()) {}
Monitor::~Monitor() = default;

void Monitor::lock() {
  AcquireSRWLockExclusive(&state_->lock);
}

void Monitor::unlock() {
  ReleaseSRWLockExclusive(&state_->lock);
}

void Monitor::waitForChange() {
  SleepConditionVariableSRW(&state_->changed, &state_->lock, INFINITE, 0);
}

void Monitor::announceChange() {
  WakeAllConditionVariable(&state_->changed);
}

void Monitor::announce() {
  const std::lock_guard guard(*this);
  announceChange();
}

void Monitor::letOthersRun() {
  SwitchToThread();
}

}  // namespace radiashafts::platform
