#include "standin/orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace radiashafts::standin {
namespace {

// Where the row and column of an upright picture begin in the stored one.
struct Sides {
  bool fromRight;
  bool fromBottom;
  bool swapped;
};

constexpr Sides sidesOf(int orientation) {
  return {
      .fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8,
      .fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7,
      .swapped = swapsSides(orientation)};
}

}  // namespace

void turnUpright(Picture& picture, int orientation) {
  if (orientation < 2 || orientation > 8) return;
  const Sides sides = sidesOf(orientation);
  const auto pixel = static_cast<std::ptrdiff_t>(picture.pixelBytes());
  const auto row = static_cast<std::ptrdiff_t>(picture.rowBytes());
  std::ptrdiff_t alongRow = sides.fromRight ? -pixel : pixel;
  std::ptrdiff_t alongColumn = sides.fromBottom ? -row : row;
  const std::uint8_t* const begin = picture.bytes.data() + (sides.fromRight ? row - pixel : 0) +
                                    (sides.fromBottom ? row * (picture.height - 1) : 0);
  if (sides.swapped) {
    std::swap(picture.width, picture.height);
    std::swap(alongRow, alongColumn);
  }
  std::vector<std::uint8_t> upright(picture.bytes.size());
  // In squares that fit into the cache, since a row may be a column of the stored picture.
  constexpr int side = 64;
  for (int top = 0; top < picture.height; top += side) {
    for (int left = 0; left < picture.width; left += side) {
      const int right = std::min(left + side, picture.width);
      for (int y = top; y < std::min(top + side, picture.height); ++y) {
        const std::uint8_t* from = begin + y * alongColumn + left * alongRow;
        std::uint8_t* to = &upright[static_cast<std::size_t>(y) * picture.rowBytes() +
                                    static_cast<std::size_t>(left) * picture.pixelBytes()];
        for (int x = left; x < right; ++x, from += alongRow, to += pixel) {
          std::memcpy(to, from, picture.pixelBytes());
        }
      }
    }
  }
  picture.bytes = std::move(upright);
}

}  // namespace radiashafts::standin
