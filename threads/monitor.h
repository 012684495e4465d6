#pragma once

#include <chrono>
#include <memory>

namespace radiashafts {

// A mutex with its condition variable, for conditions on atomic variables. On Windows these are the
// system's own, which work within the process: the compiler's wait on handles, which under Wine
// asks another process each time.
class Monitor {
 public:
  Monitor();
  ~Monitor();
  Monitor(const Monitor&) = delete;
  Monitor& operator=(const Monitor&) = delete;

  // Returns once condition() is true. Other threads make it true and then call notify. Backs off in
  // three steps: it spins for about a microsecond, which ends most waits, then yields for some
  // milliseconds, and sleeps only then, because a sleeping thread can take milliseconds to get a
  // processor again.
  template <class Condition>
  void waitUntil(const Condition& condition) {
    for (int i = 0; i < 200; ++i) {
      if (condition()) return;
      __builtin_ia32_pause();
    }
    constexpr std::chrono::milliseconds yieldTime(4);
    for (const auto start = std::chrono::steady_clock::now();
         std::chrono::steady_clock::now() - start < yieldTime;) {
      if (condition()) return;
      yield();
    }
    sleepUntil([](const void* c) { return (*static_cast<const Condition*>(c))(); }, &condition);
  }

  // Wakes all threads in waitUntil, so that they test their conditions again.
  void notify();

  // Gives the processor to another thread that is ready to run, if there is one.
  static void yield();

 private:
  using Predicate = bool (*)(const void* condition);
  void sleepUntil(Predicate holds, const void* condition);

  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts
