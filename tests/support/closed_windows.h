#pragma once

#include <memory>
#include <string>

namespace radiashafts::test {

// Sees the filter's windows as a user does who wants none: reads its error boxes and presses OK,
// and cancels its dialogs.
class ClosedWindows {
 public:
  ClosedWindows();
  ~ClosedWindows();
  // The texts of the boxes so far.
  std::string texts();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::test
