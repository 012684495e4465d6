// The smear of the mode "smooth": light spreads outward from the origin ring by ring, in place.
#pragma once

#include <algorithm>
#include <cstdint>

#include "filters/ray_decay.h"
#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/pixel.h"
#include "image/pixel_array.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Each pixel becomes the weighted mean of itself and the pixel one step nearer to the origin, whose
// weight is its accumulated weight times decayFactor. The nearer pixel is already updated, so the
// picture depends on the order of the walk, and everything runs on the calling thread.
template <class Image>
class RadiashaftsSmoothFilter final : public HalvorsundFilter {
 public:
  using HalvorsundFilter::HalvorsundFilter;

  Image image;
  double length = 0.0;       // 0 to 1
  std::int32_t originX = 0;  // in frame coordinates, at most 1e9 from 0
  std::int32_t originY = 0;

  std::int32_t run(std::int32_t stage, std::int32_t stages) override {
    const std::int32_t w = image.width;
    const std::int32_t h = image.height;
    ox_ = originX - image.frameX;
    oy_ = originY - image.frameY;
    // A whole number of steps, so short lengths change in coarse steps.
    const std::int32_t steps = toInt32(raySteps(w, h, length * length));
    decayFactor_ = decayFactorFor(steps);

    const HostBuffer weights(*host, w, h, sizeof(float));
    if (!weights) return host->OutOfMemoryCode();
    weightPlane_ = weights.floats();
    std::fill_n(weightPlane_, static_cast<std::ptrdiff_t>(w) * h, 1.0F);

    for (std::int32_t k = 1; !ringSurroundsImage(k);) {
      walkRing(k);
      k = nextRing(k);
      const std::int32_t status = host->Progress(stage, stages, 0);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

 private:
  using Pixel = typename Image::Pixel;

  bool ringSurroundsImage(std::int32_t k) const {
    return oy_ - k < 0 && oy_ + k >= image.height && ox_ - k < 0 && ox_ + k >= image.width;
  }

  // The next ring that can touch the image; one ring that is wholly outside may be walked too.
  std::int32_t nextRing(std::int32_t k) const {
    return std::max({k + 1, -ox_ - 1, ox_ - image.width, -oy_ - 1, oy_ - image.height});
  }

  // The square of pixels k away from the origin, each visited once: from the middle of its four
  // sides (a = 0) to the corners (a = k).
  void walkRing(std::int32_t k) {
    const std::int32_t top = oy_ - k;
    const std::int32_t bottom = oy_ + k;
    const std::int32_t right = ox_ + k;
    const std::int32_t left = ox_ - k;
    const auto [first, last] = visiblePart(k);
    std::int32_t a = first;
    if (a == 0) {
      visit<Step::row>(ox_, top);
      visit<Step::row>(ox_, bottom);
      visit<Step::column>(right, oy_);
      visit<Step::column>(left, oy_);
      a = 1;
    }
    for (; a <= std::min(last, k - 1); ++a) {
      visit<Step::row>(ox_ + a, top);
      visit<Step::row>(ox_ - a, bottom);
      visit<Step::column>(right, oy_ + a);
      visit<Step::column>(left, oy_ - a);
      visit<Step::row>(ox_ - a, top);
      visit<Step::row>(ox_ + a, bottom);
      visit<Step::column>(right, oy_ - a);
      visit<Step::column>(left, oy_ + a);
    }
    if (last == k) {
      visit<Step::column>(right, top);
      visit<Step::column>(left, bottom);
      visit<Step::column>(right, bottom);
      visit<Step::column>(left, top);
    }
  }

  struct Span {
    std::int32_t first, last;  // inclusive; empty when last is below first
  };

  // The values of a for which some point of the ring can lie in the image.
  Span visiblePart(std::int32_t k) const {
    Span span{k + 1, -1};
    const auto include = [&](std::int32_t line, std::int32_t lines, std::int32_t middle,
                             std::int32_t extent) {
      if (line < 0 || line >= lines) return;
      // Points lie at middle + a and middle - a; both or one side may reach into 0 to extent - 1.
      const std::int32_t farthest = std::max(middle, extent - 1 - middle);
      const std::int32_t nearest = std::max({0, -middle, middle - (extent - 1)});
      span.first = std::min(span.first, nearest);
      span.last = std::max(span.last, std::min(farthest, k));
    };
    include(oy_ - k, image.height, ox_, image.width);
    include(oy_ + k, image.height, ox_, image.width);
    include(ox_ - k, image.width, oy_, image.height);
    include(ox_ + k, image.width, oy_, image.height);
    return span;
  }

  enum class Step { row, column };

  template <Step step>
  void visit(std::int32_t x, std::int32_t y) {
    if (image.contains(x, y)) stepPixel<step>(x, y);
  }

  float* weightAt(std::int32_t x, std::int32_t y) const {
    return weightPlane_ + static_cast<std::ptrdiff_t>(y) * image.width + x;
  }

  // The direction towards the origin, 0 where that would leave the image.
  static std::int32_t directionTo(std::int32_t distance, std::int32_t position,
                                  std::int32_t extent) {
    if (distance >= 1) return position < extent - 1 ? 1 : 0;
    return position > 0 ? -1 : 0;
  }

  // Where the line to the origin crosses the nearer row or column, between two of its pixels.
  struct Crossing {
    std::int32_t nearest;
    std::int32_t neighbor;
    double neighborShare;
  };

  // Past the far edge the nearest pixel is clamped to the last one, but the share is that of the
  // unclamped position, so the pixel before gets more weight. This is intended.
  static Crossing crossingAt(double position, std::int32_t extent) {
    const auto whole = static_cast<std::int32_t>(position);
    const std::int32_t nearest = std::clamp(whole, 0, extent - 1);
    const double offset = (position - whole) - 0.5;
    if (offset > 0.0) return {nearest, nearest < extent - 1 ? nearest + 1 : nearest, offset};
    return {nearest, nearest > 0 ? nearest - 1 : nearest, -offset};
  }

  template <Step step>
  void stepPixel(std::int32_t x, std::int32_t y) {
    const std::int32_t dx = ox_ - x;
    const std::int32_t dy = oy_ - y;
    if constexpr (step == Step::row) {
      const std::int32_t sy = directionTo(dy, y, image.height);
      const Crossing crossing =
          crossingAt(static_cast<double>(sy * dx) / dy + x + 0.5, image.width);
      mix(x, y, crossing.nearest, y + sy, crossing.neighbor, y + sy, crossing.neighborShare);
    } else {
      const std::int32_t sx = directionTo(dx, x, image.width);
      const Crossing crossing =
          crossingAt(static_cast<double>(sx * dy) / dx + y + 0.5, image.height);
      mix(x, y, x + sx, crossing.nearest, x + sx, crossing.neighbor, crossing.neighborShare);
    }
  }

  void mix(std::int32_t x, std::int32_t y, std::int32_t ax, std::int32_t ay, std::int32_t bx,
           std::int32_t by, double u) {
    const double v = 1.0 - u;
    const float* a = image.at(ax, ay);
    const float* b = image.at(bx, by);
    float* p = image.at(x, y);
    float* weight = weightAt(x, y);

    const double gathered = *weightAt(bx, by) * u + *weightAt(ax, ay) * v;
    const float total = static_cast<float>(gathered * decayFactor_) + *weight;
    const float inverse = 1.0F / total;
    *weight = total;
    for (int c = 0; c < Pixel::channels; ++c) {
      const double mixed = b[c] * u + a[c] * v;
      // The first of several channels multiplies in another order, which changes its last bit. This
      // is intended.
      const double spread = c == 0 && Pixel::channels > 1 ? decayFactor_ * mixed * gathered
                                                          : mixed * gathered * decayFactor_;
      p[c] = static_cast<float>(spread + p[c]) * inverse;
    }
  }

  std::int32_t ox_ = 0;  // the origin in the image's own pixel grid; may lie outside
  std::int32_t oy_ = 0;
  double decayFactor_ = 0.0;
  float* weightPlane_ = nullptr;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
