#include "platform/worker.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

namespace radiashafts::platform {

struct Worker::State {
  std::mutex mutex;
  std::condition_variable changed;
  Function function = nullptr;  // not null while there is something to do
  void* context = nullptr;
  bool quit = false;
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
  auto state = std::make_unique<State>();
  try {
    state->thread = std::thread(&State::main, state.get());
  } catch (const std::system_error&) {
    return false;
  }
  state_ = std::move(state);
  return true;
}

void Worker::stop() {
  if (state_ == nullptr) return;
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

}  // namespace radiashafts::platform
