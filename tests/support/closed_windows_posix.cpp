// Without windows the box is a line on standard error.

#include <gtest/gtest.h>

#include "tests/support/closed_windows.h"

namespace radiashafts::test {

ClosedWindows::ClosedWindows() {
  testing::internal::CaptureStderr();
}

ClosedWindows::~ClosedWindows() {
  testing::internal::GetCapturedStderr();
}

std::string ClosedWindows::texts() {
  const std::string text = testing::internal::GetCapturedStderr();
  testing::internal::CaptureStderr();
  return text;
}

}  // namespace radiashafts::test
