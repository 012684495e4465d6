// File names of sequences.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace radiashafts::cli {

// A file name in which "%d", "%04d" or "####" stands for the number of a frame, and "%%" for a
// percent sign.
class FramePattern {
 public:
  // None where nothing in the text stands for a number. Throws a CLI::Error where several do.
  static std::optional<FramePattern> in(const std::string& text);

  std::string name(int frame) const { return head_ + number(frame) + tail_; }
  // The numbers for which there is a file, in ascending order. Throws a CLI::Error where a folder
  // has the number.
  std::vector<int> framesOnDisk() const;

 private:
  FramePattern() = default;
  std::string number(int frame) const;

  std::string head_, tail_;
  std::size_t digits_ = 0;  // at least; zeros come first
};

}  // namespace radiashafts::cli
