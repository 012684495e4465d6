#pragma once

#include <memory>

namespace radiashafts::platform {

// An event that stays signalled until it is reset. set() happens before the wait() it ends.
class ManualResetEvent {
 public:
  ManualResetEvent();  // non-signalled
  ~ManualResetEvent();
  ManualResetEvent(const ManualResetEvent&) = delete;
  ManualResetEvent& operator=(const ManualResetEvent&) = delete;

  void set();
  void reset();
  void wait();  // without a timeout

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::platform
