#pragma once

#include <chrono>
#include <memory>
#include <mutex>

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

  // Returns once the condition holds, which others make true before they announce a change. Without
  // the lock held. Looks closely for a moment, which most waits are over in, and then for some
  // milliseconds before it waits: a thread that sleeps is not back on a processor before the system
  // has got round to it.
  template <class Condition>
  void await(const Condition& condition) {
    for (int look = 0; look < 200; ++look) {
      if (condition()) return;
      __builtin_ia32_pause();
    }
    constexpr std::chrono::milliseconds patience(4);
    for (const auto start = std::chrono::steady_clock::now();
         std::chrono::steady_clock::now() - start < patience;) {
      if (condition()) return;
      letOthersRun();
    }
    const std::lock_guard guard(*this);
    while (!condition()) waitForChange();
  }

  // Announces a change that was made without the lock.
  void announce();

  // Gives the processor to a thread that waits for it, if there is one.
  static void letOthersRun();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::platform
