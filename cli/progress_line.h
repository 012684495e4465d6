#pragma once

#include <string>

namespace radiashafts::cli {

// A line on standard error that says how far the work is. It is written only when that is a
// terminal; the destructor clears it.
class ProgressLine {
 public:
  explicit ProgressLine(bool enabled);
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void show(const std::string& text);  // in the place of the text before
  void clear();                        // to be called before anything else is printed
  bool isShown() const { return !shown_.empty(); }

 private:
  bool enabled_;
  std::string shown_;
};

}  // namespace radiashafts::cli
