#pragma once

#include <string>

namespace radiashafts::test {

// Sees the filter's windows as a user does who wants none, as long as it lives: reads its error
// boxes and presses OK, and cancels its dialogs. One at a time.
class ClosedWindows {
 public:
  ClosedWindows();
  ~ClosedWindows();
  ClosedWindows(const ClosedWindows&) = delete;
  ClosedWindows& operator=(const ClosedWindows&) = delete;
  std::string texts();  // of the boxes so far
};

}  // namespace radiashafts::test
