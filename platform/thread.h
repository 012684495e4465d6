#pragma once

#include <cstdint>

namespace radiashafts::platform {

// A thread of the system. The owner sees to it that the function has returned, or is about to,
// before it calls close().
class Thread {
 public:
  using Function = void (*)(void* context);

  Thread() = default;
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  // False when the system gives no thread.
  bool start(Function function, void* context);
  bool started() const { return handle_ != 0; }
  // Gives the thread's resources back. Does nothing when no thread was started.
  void close();

 private:
  std::uintptr_t handle_ = 0;
};

}  // namespace radiashafts::platform
