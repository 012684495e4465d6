#pragma once

namespace radiashafts::standin {

// RAII: redirects standard error to the null device, because libraries print their own messages and
// the user should see only the program's.
class SilencedStandardError {
 public:
  SilencedStandardError();
  ~SilencedStandardError();
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;

 private:
  int savedDescriptor_;
};

}  // namespace radiashafts::standin
