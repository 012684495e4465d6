#pragma once

#include <cstdlib>
#include <iostream>

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

// The seed of random cases: that of the environment, which plays a failure again, or a new one.
inline unsigned testSeed() {
  const char* wanted = std::getenv("RADIASHAFTS_SEED");
  const unsigned seed = wanted != nullptr ? static_cast<unsigned>(std::atoi(wanted)) : 1;
  std::cout << "RADIASHAFTS_SEED=" << seed << '\n';
  return seed;
}

}  // namespace radiashafts::test
