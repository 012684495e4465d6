// Without windows the box is a line on standard error.

#include <gtest/gtest.h>

#include "tests/support/closed_windows.h"

namespace radiashafts::test {

struct ClosedWindows::State {
  bool capturing = true;
};

ClosedWindows::ClosedWindows() : state_(std::make_unique<State>()) {
  testing::internal::CaptureStderr();
}

ClosedWindows::~ClosedWindows() {
  if (state_->capturing) testing::internal::GetCapturedStderr();
}

std::string ClosedWindows::texts() {
  state_->capturing = false;
  return testing::internal::GetCapturedStderr();
}

}  // namespace radiashafts::test
