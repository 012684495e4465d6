#include "threads/monitor.h"

#include <condition_variable>
#include <mutex>

#include <sched.h>

namespace radiashafts {

struct Monitor::State {
  std::mutex mutex;
  std::condition_variable changed;
};

Monitor::Monitor() : state_(std::make_unique<State>()) {}
Monitor::~Monitor() = default;

void Monitor::sleepUntil(Predicate holds, const void* condition) {
  std::unique_lock lock(state_->mutex);
  while (!holds(condition)) state_->changed.wait(lock);
}

void Monitor::notify() {
  const std::lock_guard lock(state_->mutex);
  state_->changed.notify_all();
}

void Monitor::yield() {
  sched_yield();
}

}  // namespace radiashafts
