#pragma once

#include <string_view>

namespace radiashafts::standin {

// RAII: redirects standard error to the null device, because libraries print their own messages and
// the user should see only the program's. Several may live at a time, on any threads.
class SilencedStandardError {
 public:
  SilencedStandardError();
  ~SilencedStandardError();
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;
};

// Standard error as it is when it is not silenced.
void writeError(std::string_view text);
bool errorIsTerminal();

}  // namespace radiashafts::standin
