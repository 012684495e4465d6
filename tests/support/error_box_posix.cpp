// Without windows the box is a line on standard error.

#include <gtest/gtest.h>

#include "tests/support/error_box.h"

namespace radiashafts::test {

struct ErrorBoxes::State {
  bool capturing = true;
};

ErrorBoxes::ErrorBoxes() : state_(std::make_unique<State>()) {
  testing::internal::CaptureStderr();
}

ErrorBoxes::~ErrorBoxes() {
  if (state_->capturing) testing::internal::GetCapturedStderr();
}

std::string ErrorBoxes::texts() {
  state_->capturing = false;
  return testing::internal::GetCapturedStderr();
}

}  // namespace radiashafts::test
