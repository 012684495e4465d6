// Numbers of frames and parts of a long list, as options tell them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace radiashafts::cli {

// "1-2000", "1-99x2" for every second one from 1 on, "7", or several of these with commas between
// them: in this order, each number once. Throws a CLI::Error.
std::vector<int> framesIn(const std::string& text);

// The K-th of N parts, K from 1 on, as in "3/8".
struct Chunk {
  std::size_t number;
  std::size_t count;
};
// Throws a CLI::Error.
Chunk chunkIn(const std::string& text);

// Which items of a list of this length are in the chunk. The chunks' lengths differ by 1 at most.
struct ItemRange {
  std::size_t begin;
  std::size_t end;
};
ItemRange itemsOf(const Chunk& chunk, std::size_t length);

}  // namespace radiashafts::cli
