// The smear of the mode "smooth": light spreads outward from the origin ring by ring, in place.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "filters/ray_decay.h"
#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/pixel.h"
#include "image/pixel_array.h"
#include "threads/pipeline.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Each pixel becomes the weighted mean of itself and the pixel one step nearer to the origin, whose
// weight is its accumulated weight times decayFactor. The nearer pixel is already updated.
//
// The picture is bit for bit that of one thread walking ring after ring, each from the middles of
// its sides to its corners. Except in the nearest rings, every pixel is read only after its own
// update, so any order that keeps to that will do. A half of one side of all rings is cut into
// strips that run outward. A pixel depends on its own strip, on the one next to it toward the axis
// through the origin, and on corners; so the strips are the stages of a pipeline through which
// chunks of rings go.
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
    stage_ = stage;
    stages_ = stages;

    const std::int32_t status = walkNearRings();
    return status == host->NoErrorCode() ? walkFarRings() : status;
  }

 private:
  using Pixel = typename Image::Pixel;
  static constexpr int channels = Pixel::channels;

  static constexpr std::int32_t ringsInChunk = 64;
  static constexpr std::int32_t columnsInStrip = 512;
  static constexpr std::int32_t rowsInStrip = 64;

  // A pixel of a top or bottom side steps to the nearer row, one of a left or right side and a
  // corner to the nearer column.
  enum class Step { row, column };

  // The rings in which a pixel may read another one of its ring: the first ring, or the first two
  // that touch the image when the origin is outside. They are walked on this thread.
  std::int32_t walkNearRings() {
    const std::int32_t distance =
        std::max({0, -ox_, ox_ - (image.width - 1), -oy_, oy_ - (image.height - 1)});
    nearRings_ = distance + 1;
    clearWeights(nearRings_ + 1);
    for (std::int32_t k = std::max(1, distance); k <= nearRings_; ++k) {
      walkRing(k);
      const std::int32_t status = report(0);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

  // Sets to 1 what is read before a pixel has been updated: weights up to ring k.
  void clearWeights(std::int32_t k) const {
    const std::int32_t left = std::max(0, ox_ - k);
    const std::int32_t right = std::min(image.width - 1, ox_ + k);
    for (std::int32_t y = std::max(0, oy_ - k); y <= std::min(image.height - 1, oy_ + k); ++y) {
      if (left <= right) std::fill_n(weightAt(left, y), right - left + 1, 1.0F);
    }
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
  void stepPixel(std::int32_t x, std::int32_t y) const {
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
           std::int32_t by, double u) const {
    const double v = 1.0 - u;
    const float* a = image.at(ax, ay);
    const float* b = image.at(bx, by);
    float* p = image.at(x, y);

    const double gathered = *weightAt(bx, by) * u + *weightAt(ax, ay) * v;
    const float total = static_cast<float>(gathered * decayFactor_) + 1.0F;
    const float inverse = 1.0F / total;
    *weightAt(x, y) = total;
    for (int c = 0; c < channels; ++c) {
      const double mixed = b[c] * u + a[c] * v;
      // The first of several channels multiplies in another order, which changes its last bit. This
      // is intended.
      const double spread = c == 0 && channels > 1 ? decayFactor_ * mixed * gathered
                                                   : mixed * gathered * decayFactor_;
      p[c] = static_cast<float>(spread + p[c]) * inverse;
    }
  }

  // One half of a side of all rings. Its pixel a lies at the origin plus turn * a along the side,
  // and in ring k at the origin plus side * k across it. Pixel 0, on the axis, belongs to the half
  // that turns backward.
  struct HalfSide {
    Step step;
    std::int32_t side;       // -1 top or left, 1 bottom or right
    std::int32_t turn;       // -1 backward, 1 forward
    std::int32_t first = 0;  // pixels inside the image; none when last is below first
    std::int32_t last = -1;
    std::int32_t lastRing = 0;  // inside the image
  };

  struct Strip {
    const HalfSide* half;
    std::int32_t first, last;  // pixels
  };

  HalfSide halfSide(Step step, std::int32_t side, std::int32_t turn) const {
    const bool isRow = step == Step::row;
    const std::int32_t along = isRow ? ox_ : oy_;
    const std::int32_t extent = isRow ? image.width : image.height;
    const std::int32_t across = isRow ? oy_ : ox_;
    const std::int32_t lines = isRow ? image.height : image.width;

    HalfSide half{step, side, turn};
    half.lastRing = side < 0 ? across : lines - 1 - across;
    if (half.lastRing <= nearRings_) return half;
    half.first = turn < 0 ? std::max(0, along - (extent - 1)) : std::max(1, -along);
    half.last = std::min(half.lastRing, turn < 0 ? along : extent - 1 - along);
    return half;
  }

  static std::int32_t stripLength(const HalfSide& half) {
    return half.step == Step::row ? columnsInStrip : rowsInStrip;
  }

  std::int32_t walkFarRings() {
    constexpr Step row = Step::row;
    constexpr Step column = Step::column;
    const std::array<HalfSide, 2> top{halfSide(row, -1, -1), halfSide(row, -1, 1)};
    const std::array<HalfSide, 4> leftAndRight{halfSide(column, -1, -1), halfSide(column, 1, -1),
                                               halfSide(column, -1, 1), halfSide(column, 1, 1)};
    const std::array<HalfSide, 2> bottom{halfSide(row, 1, -1), halfSide(row, 1, 1)};
    const std::span<const HalfSide> groups[] = {top, leftAndRight, bottom};

    std::int32_t count = 0;
    lastRing_ = nearRings_;
    for (const std::span<const HalfSide> group : groups) {
      for (const HalfSide& half : group) {
        if (half.last < half.first) continue;
        count += (half.last - half.first) / stripLength(half) + 1;
        lastRing_ = std::max(lastRing_, half.lastRing);
      }
    }
    if (count == 0) return host->NoErrorCode();
    const HostBuffer strips(*host, count, 1, sizeof(Strip));
    const HostBuffer predecessors(*host, count, 1, sizeof(Pipeline::Predecessors));
    if (!strips || !predecessors) return host->OutOfMemoryCode();
    strips_ = static_cast<Strip*>(strips.data());
    stripCount_ = 0;
    auto* const before = static_cast<Pipeline::Predecessors*>(predecessors.data());
    for (const std::span<const HalfSide> group : groups) addStrips(group, before);

    const auto walk = [](void* context, std::int32_t strip, std::int32_t chunk,
                         std::int32_t threadIndex) {
      return static_cast<RadiashaftsSmoothFilter*>(context)->walkChunk(strip, chunk, threadIndex);
    };
    const std::int32_t chunks = (lastRing_ - nearRings_ + ringsInChunk - 1) / ringsInChunk;
    Pipeline pipeline(count, chunks, {this, walk}, before);
    const std::int32_t status = host->RunIterations(count, pipeline.stageCallback());
    return status != host->NoErrorCode() ? status : pipeline.status();
  }

  // Adds the strips of the halves by turns: threads that work on different halves seldom wait.
  void addStrips(std::span<const HalfSide> halves, Pipeline::Predecessors* predecessors) {
    bool added = true;
    for (std::int32_t i = 0; added; ++i) {
      added = false;
      for (const HalfSide& half : halves) {
        const std::int32_t first = half.first + i * stripLength(half);
        if (first > half.last) continue;
        const Strip strip{&half, first, std::min(half.last, first + stripLength(half) - 1)};
        predecessors[stripCount_] = {neighborOf(strip), cornersOf(strip)};
        strips_[stripCount_++] = strip;
        added = true;
      }
    }
  }

  // Number of the strip next to a strip toward the axis or across it; -1 for none.
  std::int32_t neighborOf(const Strip& strip) const {
    const HalfSide& half = *strip.half;
    if (strip.first > half.first) {
      return stripWith(half.step, half.side, half.turn, strip.first - 1);
    }
    return half.turn > 0 && half.first == 1 ? stripWith(half.step, half.side, -1, 0) : -1;
  }

  // Number of the strip with the corners that a strip reads. Top corners read the pixel beside them
  // in their row and belong to the top, the bottom corners to the left and right.
  std::int32_t cornersOf(const Strip& strip) const {
    const HalfSide& half = *strip.half;
    if (half.step == Step::row) {
      return half.side < 0 ? -1 : stripWith(Step::column, half.turn, 1, strip.last);
    }
    return half.turn < 0 ? stripWith(Step::row, -1, half.side, strip.last) : -1;
  }

  // Number of the strip with pixel a, or the last before it, of a half that has been added.
  std::int32_t stripWith(Step step, std::int32_t side, std::int32_t turn, std::int32_t a) const {
    const auto matches = [&](const Strip& strip) {
      const HalfSide& half = *strip.half;
      return half.step == step && half.side == side && half.turn == turn && strip.first <= a;
    };
    std::int32_t i = stripCount_ - 1;
    while (i >= 0 && !matches(strips_[i])) --i;
    return i;
  }

  std::int32_t walkChunk(std::int32_t number, std::int32_t chunk, std::int32_t threadIndex) {
    const Strip& strip = strips_[number];
    const std::int32_t firstRing = nearRings_ + 1 + chunk * ringsInChunk;
    const std::int32_t count = std::min(ringsInChunk, lastRing_ - firstRing + 1);
    const Span rings{firstRing, std::min(firstRing + count - 1, strip.half->lastRing)};
    if (strip.half->step == Step::row) {
      walkRows(strip, rings);
    } else {
      walkColumns(strip, rings);
    }
    // Each strip reports its share of the rings.
    const std::int32_t reported = count * number / stripCount_;
    for (std::int32_t i = reported; i < count * (number + 1) / stripCount_; ++i) {
      const std::int32_t status = report(threadIndex);
      if (status != host->NoErrorCode()) return status;
    }
    return host->NoErrorCode();
  }

  // Among the pixels of a half the first may read the second one: on the axis, and past the far
  // edge. So these two are stepped together, ring by ring. Behind them no position is clamped, and
  // the line to the origin crosses between the pixel straight across the side and the one before
  // that.
  static constexpr std::int32_t nearAxis = 2;

  static std::int32_t aloneIn(const Strip& strip) {
    return strip.first == strip.half->first ? nearAxis : 0;
  }

  void walkRows(const Strip& strip, Span rings) const {
    const HalfSide& half = *strip.half;
    for (std::int32_t k = std::max(rings.first, strip.first); k <= rings.last; ++k) {
      const std::int32_t y = oy_ + half.side * k;
      const std::int32_t end = std::min(strip.last + 1, k);
      const auto stepTo = [&](std::int32_t a, std::int32_t to) {
        for (; a < to; ++a) stepPixel<Step::row>(ox_ + half.turn * a, y);
        return a;
      };
      std::int32_t a = stepTo(strip.first, std::min(end, strip.first + aloneIn(strip)));
      const std::int32_t bundles = (end - a) / laneCount;
      const std::int32_t x = ox_ + half.turn * a;
      stepBundlesOfRow(half, k, half.turn > 0 ? x : x - (laneCount * bundles - 1), bundles);
      stepTo(a + laneCount * bundles, end);
      if (half.side < 0 && k <= strip.last) stepPixel<Step::column>(ox_ + half.turn * k, y);
    }
  }

  // Rows of a strip go in bundles of as many as there are lanes.
  void walkColumns(const Strip& strip, Span rings) const {
    const HalfSide& half = *strip.half;
    const std::int32_t end = strip.last + 1;
    const std::int32_t alone = std::min(end, strip.first + aloneIn(strip));
    stepRows(half, strip.first, alone, rings);
    std::int32_t a = alone;
    for (; a + laneCount <= end; a += laneCount) {
      // The rings whose corners are in these rows, then those which cross all of them.
      const std::int32_t next = a + laneCount;
      stepRows(half, a, next, {rings.first, std::min(rings.last, next - 1)});
      stepBundle(half, a, {std::max(rings.first, next), rings.last});
    }
    stepRows(half, a, end, rings);
  }

  // Pixels first to end - 1 of a left or right side, ring by ring.
  void stepRows(const HalfSide& half, std::int32_t first, std::int32_t end, Span rings) const {
    for (std::int32_t k = std::max(rings.first, first); k <= rings.last; ++k) {
      const std::int32_t ringEnd = half.turn > 0 ? k + 1 : k;
      for (std::int32_t a = first; a < std::min(end, ringEnd); ++a) {
        stepPixel<Step::column>(ox_ + half.side * k, oy_ + half.turn * a);
      }
    }
  }

  // As many neighbours along a side as there are lanes.
  using Samples = std::array<SingleLanes, channels>;

  struct Bundle {
    Samples samples;
    SingleLanes weight;
  };

  static Samples samplesAt(const float* pixel, std::ptrdiff_t stride) {
    Samples samples;
    for (int c = 0; c < channels; ++c) {
      for (int lane = 0; lane < laneCount; ++lane) samples[c][lane] = pixel[lane * stride + c];
    }
    return samples;
  }

  static void write(const Samples& samples, float* pixel, std::ptrdiff_t stride) {
    for (int lane = 0; lane < laneCount; ++lane) {
      for (int c = 0; c < channels; ++c) pixel[lane * stride + c] = samples[c][lane];
    }
  }

  // Steps bundles of pixels of a top or bottom side, from column x on. All shares come first: their
  // divisions would fill the processor's queues, so that few mixes run at the same time.
  void stepBundlesOfRow(const HalfSide& half, std::int32_t k, std::int32_t x,
                        std::int32_t bundles) const {
    std::array<Shares, columnsInStrip / laneCount> shares;
    const Lanes toLane = eachLane([](int lane) { return lane; });
    for (std::int32_t i = 0; i < bundles; ++i) {
      const Lanes position = allLanes(x + i * laneCount) + toLane;
      shares[i] = sharesOf(ox_ - position, k, position, half.turn);
    }
    const std::int32_t y = oy_ + half.side * k;
    const auto readNearer = [&](std::int32_t first) {
      Bundle bundle;
      bundle.samples = samplesAt(image.at(first, y - half.side), channels);
      std::memcpy(&bundle.weight, weightAt(first, y - half.side), sizeof bundle.weight);
      return bundle;
    };
    for (std::int32_t i = 0; i < bundles; ++i, x += laneCount) {
      Bundle bundle;
      bundle.samples = samplesAt(image.at(x, y), channels);
      mix(bundle, readNearer(x), readNearer(x - half.turn), shares[i]);
      write(bundle.samples, image.at(x, y), channels);
      std::memcpy(weightAt(x, y), &bundle.weight, sizeof bundle.weight);
    }
  }

  // Steps a bundle of rows, from pixel a on, along the rings. What one ring writes the next one
  // reads, and it stays in registers. Shares come first here too.
  void stepBundle(const HalfSide& half, std::int32_t a, Span rings) const {
    if (rings.first > rings.last) return;
    const std::int32_t y = oy_ + half.turn * a;
    const std::ptrdiff_t weightStride = static_cast<std::ptrdiff_t>(half.turn) * image.width;
    const std::ptrdiff_t stride = weightStride * channels;
    const Lanes position = eachLane([&](int lane) { return y + half.turn * lane; });
    const Lanes distance = oy_ - position;

    std::int32_t x = ox_ + half.side * (rings.first - 1);
    Bundle nearer;
    nearer.samples = samplesAt(image.at(x, y), stride);
    for (int lane = 0; lane < laneCount; ++lane) {
      nearer.weight[lane] = weightAt(x, y)[lane * weightStride];
    }
    std::array<Shares, ringsInChunk> shares;
    for (std::int32_t k = rings.first; k <= rings.last; ++k) {
      shares[k - rings.first] = sharesOf(distance, k, position, half.turn);
    }
    for (std::int32_t k = rings.first; k <= rings.last; ++k) {
      const float* const samplesBefore = image.at(x, y - half.turn);
      Bundle before;
      for (int c = 0; c < channels; ++c) {
        before.samples[c] = shifted(nearer.samples[c], samplesBefore[c]);
      }
      before.weight = shifted(nearer.weight, *weightAt(x, y - half.turn));

      x += half.side;
      Bundle bundle;
      bundle.samples = samplesAt(image.at(x, y), stride);
      mix(bundle, nearer, before, shares[k - rings.first]);
      write(bundle.samples, image.at(x, y), stride);
      for (int lane = 0; lane < laneCount; ++lane) {
        weightAt(x, y)[lane * weightStride] = bundle.weight[lane];
      }
      nearer = bundle;
    }
  }

  // Shares of the pixel straight across the side and of the one before it, toward the axis.
  struct Shares {
    Lanes straight, before;
  };

  // As crossingAt gives them; without conversions to whole numbers, which take long.
  static Shares sharesOf(Lanes distance, std::int32_t k, Lanes position, std::int32_t turn) {
    const Lanes crossing = distance / allLanes(k) + position + 0.5;
    const LaneMask isStraight = turn < 0 ? crossing < position + 1.0 : crossing >= position;
    const Lanes nearest = choose(isStraight, position, position - allLanes(turn));
    const Lanes u = abs((crossing - nearest) - 0.5);
    const Lanes v = 1.0 - u;
    return {choose(isStraight, v, u), choose(isStraight, u, v)};
  }

  // As the mix of a single pixel.
  void mix(Bundle& bundle, const Bundle& straight, const Bundle& before, Shares shares) const {
    const Lanes gathered =
        toDouble(before.weight) * shares.before + toDouble(straight.weight) * shares.straight;
    bundle.weight = toSingle(gathered * decayFactor_) + 1.0F;
    const SingleLanes inverse = 1.0F / bundle.weight;
    for (int c = 0; c < channels; ++c) {
      const Lanes mixed = toDouble(before.samples[c]) * shares.before +
                          toDouble(straight.samples[c]) * shares.straight;
      const Lanes spread = c == 0 && channels > 1 ? decayFactor_ * mixed * gathered
                                                  : mixed * gathered * decayFactor_;
      bundle.samples[c] = toSingle(spread + toDouble(bundle.samples[c])) * inverse;
    }
  }

  std::int32_t report(std::int32_t threadIndex) {
    return host->Progress(stage_, stages_, threadIndex);
  }

  std::int32_t ox_ = 0;  // the origin in the image's own pixel grid; may lie outside
  std::int32_t oy_ = 0;
  double decayFactor_ = 0.0;
  float* weightPlane_ = nullptr;  // written with each pixel
  std::int32_t nearRings_ = 0;    // the last of them
  std::int32_t lastRing_ = 0;
  Strip* strips_ = nullptr;
  std::int32_t stripCount_ = 0;
  std::int32_t stage_ = 0;
  std::int32_t stages_ = 1;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
