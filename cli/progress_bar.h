#pragma once

#include <cstdint>
#include <string>

namespace radiashafts::cli {

// A bar on standard error. Draws only when that is a terminal and only what changes; clears itself
// at the end of its life.
class ProgressBar {
 public:
  ProgressBar(const std::string& label, bool wanted);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void show(std::int32_t done, std::int32_t total);

 private:
  std::string label_;
  bool visible_;
  int shownPercent_ = -1;
};

}  // namespace radiashafts::cli
