#pragma once

#include <memory>
#include <string>

namespace radiashafts::test {

// Sees the filter's error boxes as a user does: reads them and presses OK.
class ErrorBoxes {
 public:
  ErrorBoxes();
  ~ErrorBoxes();
  // The texts shown so far.
  std::string texts();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::test
