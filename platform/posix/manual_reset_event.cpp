#include "platform/manual_reset_event.h"

#include <condition_variable>
#include <mutex>

namespace radiashafts::platform {

struct ManualResetEvent::State {
  std::mutex mutex;
  std::condition_variable changed;
  bool signalled = false;
};

ManualResetEvent::ManualResetEvent() : state_(std::make_unique<State>()) {}
ManualResetEvent::~ManualResetEvent() = default;

void ManualResetEvent::set() {
  const std::lock_guard lock(state_->mutex);
  state_->signalled = true;
  state_->changed.notify_all();
}

void ManualResetEvent::reset() {
  const std::lock_guard lock(state_->mutex);
  state_->signalled = false;
}

void ManualResetEvent::wait() {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait(lock, [this] { return state_->signalled; });
}

}  // namespace radiashafts::platform
