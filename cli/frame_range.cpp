#include "cli/frame_range.h"

#include <charconv>
#include <optional>
#include <set>
#include <string_view>

#include <CLI/Error.hpp>

namespace radiashafts::cli {
namespace {

constexpr std::size_t mostFrames = 1'000'000;
constexpr int highestNumber = 999'999'999;

// Digits only.
std::optional<int> numberIn(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isWhole = error == std::errc() && end == text.data() + text.size();
  if (!isWhole || text[0] == '-' || number > highestNumber) return std::nullopt;
  return number;
}

struct Range {
  int first;
  int last;
  int step;
};

// "A", "A-B" or "A-BxSTEP".
Range rangeIn(const std::string& text) {
  const std::size_t cross = text.find('x');
  const std::string ends = text.substr(0, cross);
  const std::size_t dash = ends.find('-');
  const auto first = numberIn(ends.substr(0, dash));
  const auto last = dash == std::string::npos ? first : numberIn(ends.substr(dash + 1));
  const auto step =
      cross == std::string::npos ? std::optional(1) : numberIn(text.substr(cross + 1));
  if (!first || !last || !step || *step == 0) {
    throw CLI::ValidationError("--frames", "'" + text + "' is not A, A-B or A-BxSTEP");
  }
  if (*last < *first) throw CLI::ValidationError("--frames", "'" + text + "' counts down");
  return {*first, *last, *step};
}

}  // namespace

std::vector<int> framesIn(const std::string& text) {
  std::vector<int> frames;
  std::set<int> known;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t comma = std::min(text.find(',', begin), text.size());
    const Range range = rangeIn(text.substr(begin, comma - begin));
    for (int frame = range.first; frame <= range.last; frame += range.step) {
      if (known.insert(frame).second) frames.push_back(frame);
      if (frames.size() > mostFrames) {
        throw CLI::ValidationError("--frames", "'" + text + "' are more than a million frames");
      }
    }
    begin = comma + 1;
  }
  return frames;
}

Chunk chunkIn(const std::string& text) {
  const std::size_t slash = text.find('/');
  if (slash != std::string::npos) {
    const auto number = numberIn(std::string_view(text).substr(0, slash));
    const auto count = numberIn(std::string_view(text).substr(slash + 1));
    if (number && count && *number >= 1 && *number <= *count) {
      return {static_cast<std::size_t>(*number), static_cast<std::size_t>(*count)};
    }
  }
  throw CLI::ValidationError("--chunk", "'" + text + "' is not K/N with K from 1 to N");
}

ItemRange itemsOf(const Chunk& chunk, std::size_t length) {
  const auto boundary = [&](std::size_t chunksBefore) {
    return length * chunksBefore / chunk.count;
  };
  return {boundary(chunk.number - 1), boundary(chunk.number)};
}

}  // namespace radiashafts::cli
