#include "cli/key_track.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace radiashafts::cli {
namespace {

// One number of a parameter over its keys.
class Curve {
 public:
  Curve(const std::vector<Key>& keys, std::size_t number) : keys_(keys), number_(number) {}

  double linear(std::size_t from, double share) const {
    return std::lerp(value(from), value(from + 1), share);
  }

  double smooth(std::size_t from, double share) const {
    const double a = value(from), b = value(from + 1);
    const double rest = 1.0 - share;
    const double result =
        rest * rest * (1.0 + 2.0 * share) * a + share * share * (3.0 - 2.0 * share) * b +
        length(from) * share * rest * (rest * slope(from) - share * slope(from + 1));
    return std::clamp(result, std::min(a, b), std::max(a, b));
  }

 private:
  double value(std::size_t key) const { return keys_[key].numbers[number_]; }
  double length(std::size_t from) const {
    return static_cast<double>(keys_[from + 1].frame) - keys_[from].frame;
  }
  double rise(std::size_t from) const { return (value(from + 1) - value(from)) / length(from); }

  // The harmonic mean of the rises on both sides, weighted by their lengths.
  double slope(std::size_t key) const {
    if (key == 0 || key + 1 == keys_.size()) return 0.0;
    const double before = rise(key - 1), after = rise(key);
    if (before * after <= 0.0) return 0.0;
    const double weightBefore = length(key - 1) + 2.0 * length(key);
    const double weightAfter = 2.0 * length(key - 1) + length(key);
    return (weightBefore + weightAfter) / (weightBefore / before + weightAfter / after);
  }

  const std::vector<Key>& keys_;
  std::size_t number_;
};

bool isContinuous(ParameterKind kind) {
  return kind != ParameterKind::boolean && kind != ParameterKind::list;
}

}  // namespace

ParameterNumbers valuesAt(const std::vector<Key>& keys, ParameterKind kind,
                          Interpolation interpolation, int frame) {
  const auto after =
      std::upper_bound(keys.begin(), keys.end(), frame,
                       [](int number, const Key& key) { return number < key.frame; });
  if (after == keys.begin()) return keys.front().numbers;
  const Key& key = *std::prev(after);
  if (after == keys.end() || key.frame == frame || !isContinuous(kind)) return key.numbers;
  const auto from = static_cast<std::size_t>(after - keys.begin()) - 1;
  const double share =
      (static_cast<double>(frame) - key.frame) / (static_cast<double>(after->frame) - key.frame);
  ParameterNumbers numbers{};
  for (std::size_t k = 0; k < static_cast<std::size_t>(valueCount(kind)); ++k) {
    const Curve curve(keys, k);
    numbers[k] = interpolation == Interpolation::smooth ? curve.smooth(from, share)
                                                        : curve.linear(from, share);
  }
  return numbers;
}

}  // namespace radiashafts::cli
