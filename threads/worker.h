#pragma once

#include <memory>

namespace radiashafts {

// A thread that runs a function at a time. Between two runs none of the module's code is on its
// stack, so on Windows the module can be unloaded.
class Worker {
 public:
  using Function = void (*)(void* context);

  Worker();
  ~Worker();  // ends the thread
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // Starts the thread; false when the system refuses.
  bool start();
  // Ends the thread. Does nothing when there is none.
  void stop();
  // False also in a forked process, which does not have its parent's threads.
  bool exists() const;

  // Runs the function on the thread. Call wait before the next run.
  void run(Function function, void* context);
  // Returns when the function has returned; what it wrote is visible then.
  void wait();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts
