#include "platform/monitor.h"

#include <condition_variable>
#include <mutex>

#include <sched.h>

namespace radiashafts::platform {

struct Monitor::State {
  std::mutex mutex;
  std::condition_variable changed;
};

Monitor::Monitor() : state_(std::make_unique<State>()) {}
Monitor::~Monitor() = default;

void Monitor::lock() {
  state_->mutex.lock();
}

void Monitor::unlock() {
  state_->mutex.unlock();
}

void Monitor::waitForChange() {
  std::unique_lock lock(state_->mutex, std::adopt_lock);
  state_->changed.wait(lock);
  lock.release();
}

void Monitor::announceChange() {
  state_->changed.notify_all();
}

void Monitor::announce() {
  const std::lock_guard guard(*this);
  announceChange();
}

void Monitor::letOthersRun() {
  sched_yield();
}

}  // namespace radiashafts::platform
