#include "interface/model/host_drawing.h"

#include <algorithm>
#include <array>

namespace radiashafts {
namespace {

using Color = std::array<int, 3>;  // red, green, blue

constexpr int rows = 2;
constexpr int columns = 4;
constexpr Color grey{128, 128, 128};
constexpr Color black{0, 0, 0};
constexpr Color white{255, 255, 255};
constexpr Color patches[rows][columns] = {{{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, white},
                                          {black, grey, white, black}};

const Color& patchAt(int x, int y) {
  return patches[y * rows / sampleHeight][x * columns / sampleWidth];
}

bool isNeutral(const Color& color) {
  return color[0] == color[1] && color[1] == color[2];
}

// How far the channels of a drawn grey may differ, and by how much the channel of a drawn primary
// colour has to exceed the other two.
constexpr int maximumTint = 64;
constexpr int minimumLead = 32;

bool hasHueOf(const Color& patch, const Color& seen) {
  if (isNeutral(patch)) {
    const auto [smallest, largest] = std::minmax_element(seen.begin(), seen.end());
    return *largest - *smallest <= maximumTint;
  }
  for (std::size_t c = 0; c < 3; ++c) {
    if (patch[c] == 0) continue;
    return seen[c] - std::max(seen[(c + 1) % 3], seen[(c + 2) % 3]) >= minimumLead;
  }
  return false;
}

struct Range {
  int smallest = 3 * 255;
  int largest = 0;
  void include(int value) {
    smallest = std::min(smallest, value);
    largest = std::max(largest, value);
  }
};

}  // namespace

std::vector<std::uint8_t> drawingSample() {
  std::vector<std::uint8_t> sample;
  sample.reserve(std::size_t{3} * sampleWidth * sampleHeight);
  for (int y = 0; y < sampleHeight; ++y) {
    for (int x = 0; x < sampleWidth; ++x) {
      for (const int channel : patchAt(x, y)) sample.push_back(static_cast<std::uint8_t>(channel));
    }
  }
  return sample;
}

bool showsSample(const std::uint8_t* drawn) {
  // How far black, grey and white are apart at least, in sums of the channels.
  constexpr int minimumDistance = 3 * 16;
  Range blacks, greys, whites;
  for (int y = sampleHeight - 1; y >= 0; --y) {
    for (int x = 0; x < sampleWidth; ++x, drawn += 3) {
      const Color seen{drawn[2], drawn[1], drawn[0]};
      const Color& patch = patchAt(x, y);
      if (!hasHueOf(patch, seen)) return false;
      Range* const range = patch == black   ? &blacks
                           : patch == grey  ? &greys
                           : patch == white ? &whites
                                            : nullptr;
      if (range != nullptr) range->include(seen[0] + seen[1] + seen[2]);
    }
  }
  return blacks.largest + minimumDistance <= greys.smallest &&
         greys.largest + minimumDistance <= whites.smallest;
}

}  // namespace radiashafts
