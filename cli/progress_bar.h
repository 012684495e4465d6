#pragma once

#include <cstdint>
#include <string>

namespace radiashafts::cli {

// A progress bar on standard error. Draws only when that is a terminal and the percentage has
// changed; the destructor clears the line.
class ProgressBar {
 public:
  ProgressBar(const std::string& label, bool enabled);
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
