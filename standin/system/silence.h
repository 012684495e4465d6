#pragma once

namespace radiashafts::standin {

// Keeps standard error silent for its life: libraries write there on their own, and a user gets the
// program's lines alone.
class SilencedStandardError {
 public:
  SilencedStandardError();
  ~SilencedStandardError();
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;

 private:
  int kept_;
};

}  // namespace radiashafts::standin
