#pragma once

#include <memory>

namespace radiashafts {

// A thread that waits for something to do. Between two runs none of the module's code is on its
// stack that unloading the module would pull away.
class Worker {
 public:
  using Function = void (*)(void* context);

  Worker();
  ~Worker();  // ends the thread
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  // Makes the thread; false when the system gives none.
  bool start();
  // Lets go of the thread. Does nothing when there is none.
  void stop();
  // A process that was forked off does not have the threads of the one that it came from.
  bool exists() const;

  // Runs the function on the thread. The next run comes after a wait.
  void run(Function function, void* context);
  // Returns when the function has returned. What it wrote is then visible.
  void wait();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts
