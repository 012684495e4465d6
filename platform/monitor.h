#pragma once

#include <memory>

namespace radiashafts::platform {

// A lock, and word of changes to what it guards. Works with std::lock_guard. A thread that waits or
// wakes another does so within the process: the compiler's condition variables take the way through
// handles on Windows, which under Wine is a visit to another process each time.
class Monitor {
 public:
  Monitor();
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  void lock();
  void unlock();
  // Both with the lock held. A wait lets go of the lock meanwhile, and may end without a change.
  void waitForChange();
  void announceChange();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::platform
