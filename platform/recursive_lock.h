#pragma once

#include <memory>

namespace radiashafts::platform {

// A lock that its own thread may enter again. Works with std::lock_guard. The compiler's own one
// registers every thread of a Windows host with the compiler's runtime, which keeps two handles for
// it when the module is unloaded.
class RecursiveLock {
 public:
  RecursiveLock();
  ~RecursiveLock();
  RecursiveLock(const RecursiveLock&) = delete;
  RecursiveLock& operator=(const RecursiveLock&) = delete;

  void lock();
  void unlock();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::platform
