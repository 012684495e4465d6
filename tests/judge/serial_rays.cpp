#include "tests/judge/serial_rays.h"

#include <algorithm>

#include "image/power.h"
#include "tests/judge/serial_judge.h"

namespace judge {
namespace {

using radiashafts::power;

constexpr double kFalloffBase = 0.0009765625;  // a running sum ends at 1/1024 of its size
constexpr double kLeastDecay = 0.0001;

double diagonal(int width, int height) {
  return std::sqrt(
      static_cast<double>(wrap(bits(wrapMul(width, width)) + bits(wrapMul(height, height)))));
}

// ---- Straight rays -----------------------------------------------------------------------------

struct RayCaster {
  const FloatImage& image;
  FloatImage& sums;  // the image's channels and a weight behind them
  double decay;
  double running[5] = {};  // channels, then the weight

  void fade() {
    for (double& value : running) value *= decay;
  }

  // Reads between two pixels, adds to the running sums, and splats these back the same way.
  void deposit(int x0, int y0, int x1, int y1, double u) {
    const auto channels = static_cast<std::size_t>(image.channels);
    const std::size_t from[2] = {image.index(x0, y0), image.index(x1, y1)};
    const std::size_t to[2] = {sums.index(x0, y0), sums.index(x1, y1)};
    const double share[2] = {1.0 - u, u};
    for (int i = 0; i < 2; ++i) {
      for (std::size_t k = 0; k < channels; ++k) {
        running[k] += static_cast<double>(image.samples[from[i] + k]) * share[i];
      }
      running[channels] += static_cast<double>(static_cast<float>(share[i]));
    }
    for (int i = 0; i < 2; ++i) {
      for (std::size_t k = 0; k < channels; ++k) {
        float& sum = sums.samples[to[i] + k];
        sum = static_cast<float>(share[i] * running[k] + static_cast<double>(sum));
      }
      float& weight = sums.samples[to[i] + channels];
      weight = static_cast<float>(share[i] * running[channels]) + weight;
    }
  }
};

// The ray starts at the origin held in the image; its slope comes from the true origin.
void castRay(const FloatImage& image, FloatImage& sums, double decay, int ox, int oy, int bx,
             int by) {
  const int w = image.width;
  const int h = image.height;
  const int dx = wrapSub(bx, ox);
  const int dy = wrapSub(by, oy);
  const int sx = dx >= 1 ? 1 : -1;
  const int sy = dy >= 1 ? 1 : -1;
  RayCaster caster{image, sums, decay};
  // Leaving the image ends a walk only when the origin is so far off that dx or dy wrapped.
  if (magnitude(dx) > magnitude(dy)) {
    for (int x = std::clamp(ox, 0, w - 1); x >= 0 && x < w; x += sx) {
      caster.fade();
      const double t = static_cast<double>(wrapMul(wrapSub(x, ox), dy)) / static_cast<double>(dx) +
                       static_cast<double>(oy);
      const double floor = std::floor(t);
      if (floor >= 0.0 && floor <= h - 1) {
        const int r = static_cast<int>(floor);
        caster.deposit(x, r, x, std::min(r + 1, h - 1), t - r);
      }
      if (x == bx) break;
    }
  } else {
    for (int y = std::clamp(oy, 0, h - 1); y >= 0 && y < h; y += sy) {
      caster.fade();
      // Not a number for a ray of no length, which then deposits nothing.
      const double t = static_cast<double>(wrapMul(wrapSub(y, by), dx)) / static_cast<double>(dy) +
                       static_cast<double>(bx);
      const double floor = std::floor(t);
      if (floor >= 0.0 && floor <= w - 1) {
        const int r = static_cast<int>(floor);
        caster.deposit(r, y, std::min(r + 1, w - 1), y, t - r);
      }
      if (y == by) break;
    }
  }
}

double straightDecay(int width, int height, double length) {
  const double reach = diagonal(width, height) * (length * length) * 1000.0 / std::sqrt(640000.0);
  if (!(reach > 0.0)) return kLeastDecay;
  const double decay = power(kFalloffBase, 1.0 / reach);
  return decay > kLeastDecay ? decay : kLeastDecay;
}

}  // namespace

void straightSmear(FloatImage& image, int ox, int oy, double length) {
  const int w = image.width;
  const int h = image.height;
  const double decay = straightDecay(w, h, length);
  FloatImage sums{w, h, image.channels + 1, {}};
  sums.samples.assign(sums.index(0, h), 0.0f);

  if (oy >= 0) {
    for (int i = 1; i <= w - 1; ++i) castRay(image, sums, decay, ox, oy, i, 0);
  }
  if (ox < w) {
    for (int i = 1; i <= h - 1; ++i) castRay(image, sums, decay, ox, oy, w - 1, i);
  }
  if (oy < h) {
    for (int i = 1; i <= w - 1; ++i) castRay(image, sums, decay, ox, oy, w - 1 - i, h - 1);
  }
  if (ox >= 0) {
    for (int i = 1; i <= h - 1; ++i) castRay(image, sums, decay, ox, oy, 0, h - 1 - i);
  }

  const auto channels = static_cast<std::size_t>(image.channels);
  for (std::size_t i = 0; i < image.samples.size() / channels; ++i) {
    const float* sum = &sums.samples[i * (channels + 1)];
    const double weight = static_cast<double>(sum[channels]);
    const double inverse = weight != 0.0 ? 1.0 / weight : 0.0;
    for (std::size_t k = 0; k < channels; ++k) {
      image.samples[i * channels + k] = static_cast<float>(static_cast<double>(sum[k]) * inverse);
    }
  }
}

namespace {

// ---- Smooth rays -------------------------------------------------------------------------------

// Unlike that of the straight rays, the reach is a whole number here.
double smoothDecay(int width, int height, double length) {
  const int reach =
      truncated(diagonal(width, height) * (length * length) * 1000.0 / std::sqrt(640000.0));
  const double decay = power(kFalloffBase, 1.0 / static_cast<double>(reach));
  return decay > kLeastDecay ? decay : kLeastDecay;
}

// Where a step toward the origin meets the nearer row or column: two pixels and the second's share.
struct Crossing {
  int first, second;
  double u;
};

Crossing crossingAt(double t, int size) {
  const int n = truncated(t);
  const int c = std::clamp(n, 0, size - 1);
  const double u = (t - static_cast<double>(n)) - 0.5;  // from n as it was before the clamp
  if (u > 0.0) return {c, c < size - 1 ? c + 1 : c, u};
  return {c, c > 0 ? c - 1 : c, -u};
}

int stepToward(int distance, int position, int size) {
  if (distance >= 1) return position < size - 1 ? 1 : 0;
  return position > 0 ? -1 : 0;
}

void stepPixel(FloatImage& image, FloatImage& weights, double decay, int ox, int oy, int x, int y) {
  const int dx = wrapSub(ox, x);
  const int dy = wrapSub(oy, y);
  const int sx = stepToward(dx, x, image.width);
  const int sy = stepToward(dy, y, image.height);
  int ax = x + sx, ay = y + sy, bx = ax, by = ay;
  Crossing at;
  if (magnitude(dy) > magnitude(dx)) {
    const double slope = static_cast<double>(wrapMul(sy, dx)) / static_cast<double>(dy);
    at = crossingAt(slope + static_cast<double>(x) + 0.5, image.width);
    ax = at.first;
    bx = at.second;
  } else {
    const double slope = static_cast<double>(wrapMul(sx, dy)) / static_cast<double>(dx);
    at = crossingAt(slope + static_cast<double>(y) + 0.5, image.height);
    ay = at.first;
    by = at.second;
  }
  const double u = at.u;
  float& weight = weights.samples[weights.index(x, y)];
  const double nearWeight = static_cast<double>(weights.samples[weights.index(bx, by)]) * u +
                            static_cast<double>(weights.samples[weights.index(ax, ay)]) * (1.0 - u);
  const float total = static_cast<float>(nearWeight * decay) + weight;
  const float inverse = 1.0f / total;
  for (int k = 0; k < image.channels; ++k) {
    const auto offset = static_cast<std::size_t>(k);
    const double a = static_cast<double>(image.samples[image.index(ax, ay) + offset]);
    const double b = static_cast<double>(image.samples[image.index(bx, by) + offset]);
    float& p = image.samples[image.index(x, y) + offset];
    const double mix = b * u + a * (1.0 - u);
    // The first of several channels multiplies in another order, which shows in the last bit.
    const double light =
        k == 0 && image.channels > 1 ? decay * mix * nearWeight : mix * nearWeight * decay;
    p = static_cast<float>(light + static_cast<double>(p));
    p = p * inverse;
  }
  weight = total;
}

}  // namespace

void smoothSmear(FloatImage& image, int originX, int originY, double length) {
  const int w = image.width;
  const int h = image.height;
  const double decay = smoothDecay(w, h, length);
  FloatImage weights{w, h, 1, {}};
  weights.samples.assign(weights.index(0, h), 1.0f);

  const std::int64_t ox = originX;
  const std::int64_t oy = originY;
  const auto visit = [&](std::int64_t x, std::int64_t y) {
    if (x < 0 || x >= w || y < 0 || y >= h) return;
    stepPixel(image, weights, decay, originX, originY, static_cast<int>(x), static_cast<int>(y));
  };
  const auto misses = [&](std::int64_t k) {
    return (ox < 0 && ox + k + 1 < 0) || (ox >= w && ox - k - 1 >= w) ||
           (oy < 0 && oy + k + 1 < 0) || (oy >= h && oy - k - 1 >= h);
  };
  const auto encloses = [&](std::int64_t k) {
    return oy - k < 0 && oy + k >= h && ox - k < 0 && ox + k >= w;
  };

  // A ring that encloses the image has no pixel in it, so one test a ring is enough.
  for (std::int64_t k = 1; !encloses(k);) {
    for (std::int64_t a = 0; a <= k; ++a) {
      visit(ox + a, oy - k);
      visit(ox - a, oy + k);
      visit(ox + k, oy + a);
      visit(ox - k, oy - a);
      if (a == 0 || a == k) continue;
      visit(ox - a, oy - k);
      visit(ox + a, oy + k);
      visit(ox + k, oy - a);
      visit(ox - k, oy + a);
    }
    do ++k;
    while (misses(k));
  }
}

void straightRays(std::vector<float>& image, int width, int height, int channels, int originX,
                  int originY, double length) {
  FloatImage work{width, height, channels, image};
  straightSmear(work, originX, originY, length);
  image = work.samples;
}

void smoothRays(std::vector<float>& image, int width, int height, int channels, int originX,
                int originY, double length) {
  FloatImage work{width, height, channels, image};
  smoothSmear(work, originX, originY, length);
  image = work.samples;
}

}  // namespace judge
