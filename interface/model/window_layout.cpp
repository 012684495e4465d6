#include "interface/model/window_layout.h"

#include <algorithm>

namespace radiashafts {

Box placeOnScreen(const Box& placement, const Box& shown, const Box& monitor, const Box& workArea) {
  if (placement == shown) return placement;
  const int x = workArea.left - monitor.left;
  const int y = workArea.top - monitor.top;
  return {placement.left + x, placement.top + y, placement.right + x, placement.bottom + y};
}

std::optional<int> fittingHeight(int templateHeight, const std::function<bool(int)>& fits) {
  for (int height = templateHeight; height > 0 && 4 * height >= 3 * templateHeight; --height) {
    if (fits(height)) return height;
  }
  return std::nullopt;
}

Box scaled(const Box& box, Extent from, Extent to) {
  const auto across = [&](int x) { return x * to.width / std::max(from.width, 1); };
  const auto down = [&](int y) { return y * to.height / std::max(from.height, 1); };
  return {across(box.left), down(box.top), across(box.right), down(box.bottom)};
}

}  // namespace radiashafts
