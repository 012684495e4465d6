#include "cli/frame_pattern.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <regex>
#include <string_view>
#include <utility>

#include <CLI/Error.hpp>

#include "cli/job_list.h"

namespace radiashafts::cli {

namespace fs = std::filesystem;

std::optional<FramePattern> FramePattern::in(const std::string& text) {
  // "%d" before a letter is the beginning of a word.
  static const std::regex special("%%|%0([1-9][0-9]?)d|%d(?![A-Za-z])|##+");
  std::optional<FramePattern> pattern;
  std::string plain;
  auto at = text.begin();
  for (std::sregex_iterator found(text.begin(), text.end(), special), end; found != end; ++found) {
    const std::smatch& match = *found;
    plain.append(at, match[0].first);
    at = match[0].second;
    if (match.str() == "%%") {
      plain += '%';
      continue;
    }
    if (pattern) {
      throw CLI::ValidationError("'" + text + "' has more than one place for a frame's number");
    }
    pattern = FramePattern();
    pattern->head_ = std::exchange(plain, "");
    if (match.str()[0] == '#') pattern->digits_ = static_cast<std::size_t>(match.length());
    if (match[1].matched) pattern->digits_ = std::stoul(match[1]);
  }
  if (pattern) pattern->tail_ = plain.append(at, text.end());
  return pattern;
}

std::string FramePattern::number(int frame) const {
  std::string digits = std::to_string(frame);
  if (digits.size() < digits_) digits.insert(0, digits_ - digits.size(), '0');
  return digits;
}

std::vector<int> FramePattern::framesOnDisk() const {
  const fs::path head = pathOf(head_);
  if (pathOf(tail_).has_parent_path()) {
    throw CLI::ValidationError("'" + name(1) +
                               "' has the frame's number in a folder; --frames is "
                               "needed");
  }
  const fs::path folder = head.has_parent_path() ? head.parent_path() : ".";
  const std::string before = utf8(head.filename());
  std::vector<int> frames;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    const std::string file = utf8(entry.path().filename());
    if (file.size() <= before.size() + tail_.size() || !file.starts_with(before) ||
        !file.ends_with(tail_)) {
      continue;
    }
    const std::string_view digits =
        std::string_view(file).substr(before.size(), file.size() - before.size() - tail_.size());
    int frame = -1;
    std::from_chars(digits.data(), digits.data() + digits.size(), frame);
    if (frame >= 0 && number(frame) == digits) frames.push_back(frame);
  }
  std::sort(frames.begin(), frames.end());
  return frames;
}

}  // namespace radiashafts::cli
