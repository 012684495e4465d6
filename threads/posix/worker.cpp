#include "threads/worker.h"

#include <condition_variable>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include <unistd.h>

namespace radiashafts {

struct Worker::State {
  std::mutex mutex;
  std::condition_variable changed;
  Function function = nullptr;  // not null while a run is wanted or in progress
  void* context = nullptr;
  bool quit = false;
  const pid_t process = getpid();
  std::thread thread;

  void main() {
    std::unique_lock lock(mutex);
    while (true) {
      changed.wait(lock, [this] { return function != nullptr || quit; });
      if (quit) return;
      lock.unlock();
      function(context);
      lock.lock();
      function = nullptr;
      changed.notify_all();
    }
  }
};

Worker::Worker() = default;
Worker::~Worker() {
  stop();
}

bool Worker::start() {
  stop();
  try {
    auto state = std::make_unique<State>();
    state->thread = std::thread(&State::main, state.get());
    state_ = std::move(state);
  } catch (const std::system_error&) {
    return false;
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

bool Worker::exists() const {
  return state_ != nullptr && state_->process == getpid();
}

// The state of a parent process's thread is leaked: its mutex may be locked forever.
void Worker::stop() {
  if (!exists()) {
    static_cast<void>(state_.release());
    return;
  }
  {
    const std::lock_guard lock(state_->mutex);
    state_->quit = true;
    state_->changed.notify_all();
  }
  state_->thread.join();
  state_.reset();
}

void Worker::run(Function function, void* context) {
  const std::lock_guard lock(state_->mutex);
  state_->function = function;
  state_->context = context;
  state_->changed.notify_all();
}

void Worker::wait() {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait(lock, [this] { return state_->function == nullptr; });
}

}  // namespace radiashafts
