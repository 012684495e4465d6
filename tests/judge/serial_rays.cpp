#include <algorithm>
#include <cmath>

#include "image/power.h"
#include "tests/judge/serial_judge.h"

namespace judge {
namespace {

// In steps: a running sum ends at 1/1024 of its size.
double reachOf(const FloatImage& image, double length) {
  const double diagonal =
      std::sqrt(static_cast<double>(image.width * image.width + image.height * image.height));
  return diagonal * (length * length) * 1000.0 / std::sqrt(640000.0);
}

double decayOf(double reach) {
  const double decay = reach > 0.0 ? radiashafts::power(1.0 / 1024.0, 1.0 / reach) : 0.0;
  return std::max(decay, 0.0001);
}

// ---- Straight rays -----------------------------------------------------------------------------

// One ray on its way: its running sums are the image's channels, and a weight behind them.
struct Ray {
  const FloatImage& image;
  FloatImage& sums;
  double running[5] = {};

  // Reads between two pixels, adds to the running sums, and splats these back the same way.
  void deposit(int x0, int y0, int x1, int y1, double u) {
    const int channels = image.channels;
    const std::size_t from[2] = {image.index(x0, y0), image.index(x1, y1)};
    const std::size_t to[2] = {sums.index(x0, y0), sums.index(x1, y1)};
    const double share[2] = {1.0 - u, u};
    for (int i = 0; i < 2; ++i) {
      for (int k = 0; k < channels; ++k) running[k] += image.samples[from[i] + k] * share[i];
      running[channels] += static_cast<float>(share[i]);
    }
    for (int i = 0; i < 2; ++i) {
      float* sum = &sums.samples[to[i]];
      for (int k = 0; k < channels; ++k) {
        sum[k] = static_cast<float>(share[i] * running[k] + sum[k]);
      }
      sum[channels] = static_cast<float>(share[i] * running[channels]) + sum[channels];
    }
  }
};

// The ray starts at the origin held in the image; its slope comes from the true origin. A walk by
// columns measures from the origin, one by rows from the border pixel.
void castRay(const FloatImage& image, FloatImage& sums, double decay, int ox, int oy, int bx,
             int by) {
  const int dx = bx - ox;
  const int dy = by - oy;
  const bool byColumns = std::abs(dx) > std::abs(dy);
  const int run = byColumns ? dx : dy;
  const int rise = byColumns ? dy : dx;
  const int size = byColumns ? image.width : image.height;
  const int across = byColumns ? image.height : image.width;
  Ray ray{image, sums};
  for (int s = std::clamp(byColumns ? ox : oy, 0, size - 1);; s += run >= 1 ? 1 : -1) {
    for (double& value : ray.running) value *= decay;
    // The product wraps for origins very far outside. A ray of no length has no t.
    const auto distance = static_cast<std::uint32_t>(s - (byColumns ? ox : by));
    const int climbed = static_cast<int>(distance * static_cast<std::uint32_t>(rise));
    const double t = static_cast<double>(climbed) / run + (byColumns ? oy : bx);
    if (std::floor(t) >= 0.0 && std::floor(t) <= across - 1) {
      const int r = static_cast<int>(t);
      const int next = std::min(r + 1, across - 1);
      if (byColumns) ray.deposit(s, r, s, next, t - r);
      if (!byColumns) ray.deposit(r, s, next, s, t - r);
    }
    if (s == (byColumns ? bx : by)) break;
  }
}

}  // namespace

void straightRays(FloatImage& image, int ox, int oy, double length) {
  const int right = image.width - 1;
  const int bottom = image.height - 1;
  const double decay = decayOf(reachOf(image, length));
  FloatImage sums{image.width, image.height, image.channels + 1, {}};
  sums.samples.resize(sums.index(0, image.height));
  const auto cast = [&](int bx, int by) { castRay(image, sums, decay, ox, oy, bx, by); };
  for (int i = 1; oy >= 0 && i <= right; ++i) cast(i, 0);
  for (int i = 1; ox <= right && i <= bottom; ++i) cast(right, i);
  for (int i = 1; oy <= bottom && i <= right; ++i) cast(right - i, bottom);
  for (int i = 1; ox >= 0 && i <= bottom; ++i) cast(0, bottom - i);

  const float* sum = sums.samples.data();
  for (std::size_t i = 0; i < image.samples.size(); i += image.channels, sum += sums.channels) {
    const double weight = sum[image.channels];
    const double inverse = weight != 0.0 ? 1.0 / weight : 0.0;
    for (int k = 0; k < image.channels; ++k) {
      image.samples[i + k] = static_cast<float>(sum[k] * inverse);
    }
  }
}

// ---- Smooth rays -------------------------------------------------------------------------------

namespace {

// Where a step toward the origin meets the nearer row or column: two pixels and the second's share.
struct Crossing {
  int first, second;
  double u;
};

Crossing crossingAt(double t, int size) {
  const int n = static_cast<int>(t);
  const int c = std::clamp(n, 0, size - 1);
  const double u = (t - n) - 0.5;  // from n as it was before the clamp
  if (u > 0.0) return {c, std::min(c + 1, size - 1), u};
  return {c, std::max(c - 1, 0), -u};
}

int stepToward(int distance, int position, int size) {
  if (distance >= 1) return position < size - 1 ? 1 : 0;
  return position > 0 ? -1 : 0;
}

void stepPixel(FloatImage& image, FloatImage& weights, double decay, int dx, int dy, int x, int y) {
  const int sx = stepToward(dx, x, image.width);
  const int sy = stepToward(dy, y, image.height);
  int ax = x + sx, ay = y + sy, bx = ax, by = ay;
  double u = 0.0;
  if (std::abs(dy) > std::abs(dx)) {
    const Crossing at = crossingAt(static_cast<double>(sy * dx) / dy + x + 0.5, image.width);
    ax = at.first, bx = at.second, u = at.u;
  } else {
    const Crossing at = crossingAt(static_cast<double>(sx * dy) / dx + y + 0.5, image.height);
    ay = at.first, by = at.second, u = at.u;
  }
  float& weight = weights.samples[weights.index(x, y)];
  const double nearWeight = weights.samples[weights.index(bx, by)] * u +
                            weights.samples[weights.index(ax, ay)] * (1.0 - u);
  weight = static_cast<float>(nearWeight * decay) + weight;
  const float inverse = 1.0F / weight;
  for (int k = 0; k < image.channels; ++k) {
    const double a = image.samples[image.index(ax, ay) + k];
    const double b = image.samples[image.index(bx, by) + k];
    const double mix = b * u + a * (1.0 - u);
    // The first of several channels multiplies in another order, which shows in the last bit.
    const double light =
        k == 0 && image.channels > 1 ? decay * mix * nearWeight : mix * nearWeight * decay;
    float& p = image.samples[image.index(x, y) + k];
    p = static_cast<float>(light + p) * inverse;
  }
}

}  // namespace

// Ring by ring around the origin, each pixel once: from the middles of the ring's sides to its
// corners.
void smoothRays(FloatImage& image, int ox, int oy, double length) {
  const int w = image.width;
  const int h = image.height;
  const double decay = decayOf(static_cast<int>(reachOf(image, length)));  // whole steps here
  FloatImage weights{w, h, 1, {}};
  weights.samples.assign(weights.index(0, h), 1.0F);
  const auto visit = [&](int x, int y) {
    if (x < 0 || x >= w || y < 0 || y >= h) return;
    stepPixel(image, weights, decay, ox - x, oy - y, x, y);
  };
  const int farthest = std::max({std::abs(ox), std::abs(oy), std::abs(w - ox), std::abs(h - oy)});
  for (int k = 1; k <= farthest; ++k) {
    for (int a = 0; a <= k; ++a) {
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
  }
}

}  // namespace judge
