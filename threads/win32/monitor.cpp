#include "threads/monitor.h"
#include <windows.h>

namespace radiashafts {

struct Monitor::State {
  SRWLOCK lock = SRWLOCK_INIT;
  CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;
};

Monitor::Monitor() : state_(std::make_unique<State>()) {}
Monitor::~Monitor() = default;

void Monitor::sleepUntil(Predicate holds, const void* condition) {
  AcquireSRWLockExclusive(&state_->lock);
  while (!holds(condition)) SleepConditionVariableSRW(&state_->changed, &state_->lock, INFINITE, 0);
  ReleaseSRWLockExclusive(&state_->lock);
}

void Monitor::notify() {
  AcquireSRWLockExclusive(&state_->lock);
  WakeAllConditionVariable(&state_->changed);
  ReleaseSRWLockExclusive(&state_->lock);
}

void Monitor::yield() {
  SwitchToThread();
}

}  // namespace radiashafts
