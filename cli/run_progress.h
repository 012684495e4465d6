// How far the pictures of a call are.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace radiashafts::cli {

// A bar, for one picture.
std::string progressBar(const std::string& label, int percent);

// The pictures of one call, one after the other.
class RunProgress {
 public:
  // The noun says what is counted, as in "frame".
  RunProgress(std::size_t count, std::string noun) : count_(count), noun_(std::move(noun)) {}

  void finishOne();
  // "frame 120 of 2000, 4.1 a second, 7 min 38 s left"; where a picture takes long also how much of
  // it is done.
  std::string text(int percentOfThisOne) const;

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t count_;
  std::string noun_;
  Clock::time_point begin_ = Clock::now();
  std::size_t done_ = 0;
  double seconds_ = 0.0;  // for those that are done
};

}  // namespace radiashafts::cli
