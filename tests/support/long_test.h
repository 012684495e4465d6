// How long tests run, and from which seeds.
#pragma once

#include <cstdlib>
#include <iostream>

#include <gtest/gtest.h>

namespace radiashafts::test {

// Whether tests run in their long form.
inline bool isLongTest() {
  return std::getenv("RADIASHAFTS_LONG") != nullptr;
}

// A number of rounds in the long form, or a tenth of it in the short one.
inline int roundsOf(int inLongForm) {
  return isLongTest() ? inLongForm : inLongForm / 10;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

// What the environment adds to the seeds of random cases, 0 for none.
inline unsigned seedOfRun() {
  const char* wanted = std::getenv("RADIASHAFTS_SEED");
  return wanted != nullptr ? static_cast<unsigned>(std::atoi(wanted)) : 0;
}

// The seed of a test's random cases, from a number of its own.
inline unsigned testSeed(unsigned own = 1) {
  return own + 1000003 * seedOfRun();
}

// Every failure tells the environment that plays it again.
struct SeedTeller final : testing::EmptyTestEventListener {
  void OnTestPartResult(const testing::TestPartResult& result) override {
    if (result.failed()) std::cout << "with RADIASHAFTS_SEED=" << seedOfRun() << '\n';
  }
};
inline const bool seedIsTold = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new SeedTeller);
  return true;
}();

}  // namespace radiashafts::test
