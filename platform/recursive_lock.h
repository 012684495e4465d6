#pragma once

#include <memory>

namespace radiashafts::platform {

// A recursive mutex, usable with std::lock_guard. On Windows std::recursive_mutex is not used: the
// compiler's thread runtime leaks two handles per host thread when the module is unloaded.
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
