// The smear of the mode "straight": one ray from the origin to every pixel of the border.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

#include "filters/clear.h"
#include "filters/ray_decay.h"
#include "image/halvorsund_filter.h"
#include "image/instruction_set.h"
#include "image/lanes.h"
#include "image/pixel.h"
#include "image/pixel_array.h"
#include "threads/pipeline.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// Each ray walks outward and keeps a sum of the pixels that it has passed, which decays at every
// step. At every step it adds the sum and its weight to an accumulation image. At the end sums are
// divided by weights: every pixel becomes a weighted mean of the pixels between it and the origin,
// along the rays that cross it.
//
// The result is bit for bit that of one thread walking the sides top, right, bottom and left, ray
// by ray. Rays that step in the same direction meet in a pixel only at the same step, so blocks of
// their steps are the stages of a pipeline through which chunks of rays go: a thread has a strip of
// the picture to itself, and the rays pass through it in their order.
template <class Image>
class RadiashaftsStraightFilter final : public HalvorsundFilter {
 public:
  using HalvorsundFilter::HalvorsundFilter;

  Image image;               // one more sample behind its last pixel can be read
  double length = 0.0;       // 0 to 1
  std::int32_t originX = 0;  // in frame coordinates, at most 1e9 from 0
  std::int32_t originY = 0;

  // Walks the rays; resolveRow gives the rows of the result.
  std::int32_t run(std::int32_t stage, std::int32_t stages) override {
    stage_ = stage;
    stages_ = stages;
    ox_ = originX - image.frameX;
    oy_ = originY - image.frameY;

    buffer_.allocate(image.width, image.height, AccumulationPixel::bytes);
    if (!buffer_) return host->OutOfMemoryCode();
    accumulationImage_ = tightView<AccumulationImage>(image.width, image.height, buffer_.data());
    progressCounter_ = 0;
    progressTotal_ = 2 * image.height + 2 * image.width;

    const std::int32_t status = clearAccumulation();
    return status == host->NoErrorCode() ? walkRays() : status;
  }

  // Row y of the smeared image, without gaps. A pixel that no ray touched is 0.
  void resolveRow(std::int32_t y, float* pixel) const {
    const float* sum = accumulationImage_.at(0, y);
    for (std::int32_t x = 0; x < image.width; ++x) {
      const double weight = sum[channels];
      const double inverse = weight != 0.0 ? 1.0 / weight : 0.0;
      for (int c = 0; c < channels; ++c) pixel[c] = static_cast<float>(sum[c] * inverse);
      sum += AccumulationPixel::samples;
      pixel += Pixel::samples;
    }
  }

 private:
  using Pixel = typename Image::Pixel;
  using AccumulationPixel = typename Pixel::WithWeight;
  using AccumulationImage = PixelArray<AccumulationPixel, 0, 0>;
  static constexpr int channels = Pixel::channels;

  static constexpr std::int32_t raysInChunk = 64;
  static constexpr std::int32_t stepsInBlock = 32;
  static constexpr std::int32_t pixelsAhead = 6;

  struct Border {
    std::int32_t x, y;
  };

  // Rays that step along the same axis in the same direction, all from the clamped origin.
  struct Direction {
    bool byColumns;
    std::int32_t sign;
    bool operator==(const Direction&) const = default;
  };

  // The channels of one pixel, then its weight.
  static constexpr int groups = (AccumulationPixel::samples + laneCount - 1) / laneCount;
  using PixelLanes = std::array<Lanes, groups>;
  using WrappingLanes [[gnu::vector_size(sizeof(WholeLanes))]] = std::uint32_t;

  struct Ray {
    Border border;
    double sums[groups * laneCount];  // of the steps walked so far; not Lanes, because the host's
                                      // memory is not aligned for them
  };

  // Reports its own third of the progress, so the bar steps back when the walk begins.
  std::int32_t clearAccumulation() {
    ClearImageFilter<AccumulationImage> clear(*host);
    clear.image = accumulationImage_;
    return clear.run(3 * stage_, 3 * stages_);
  }

  // Number of rays to a side; sides are walked in the order top, right, bottom, left. None when the
  // origin is beyond the side. Each border pixel belongs to one side, a corner to the one that ends
  // there.
  std::int32_t sideRays(int side) const {
    const bool runs[4] = {oy_ >= 0, ox_ < image.width, oy_ < image.height, ox_ >= 0};
    if (!runs[side]) return 0;
    return (side % 2 == 0 ? image.width : image.height) - 1;
  }

  Border borderOf(int side, std::int32_t i) const {
    const std::int32_t right = image.width - 1;
    const std::int32_t bottom = image.height - 1;
    switch (side) {
      case 0:
        return {i, 0};
      case 1:
        return {right, i};
      case 2:
        return {right - i, bottom};
      default:
        return {0, bottom - i};
    }
  }

  Direction directionTo(Border border) const {
    const std::int32_t dx = border.x - ox_;
    const std::int32_t dy = border.y - oy_;
    const bool byColumns = std::abs(dx) > std::abs(dy);
    return {byColumns, (byColumns ? dx : dy) >= 1 ? 1 : -1};
  }

  std::int32_t walkRays() {
    const std::int32_t count = sideRays(0) + sideRays(1) + sideRays(2) + sideRays(3);
    if (count == 0) return host->NoErrorCode();
    const HostBuffer buffer(*host, count, 1, sizeof(Ray));
    if (!buffer) return host->OutOfMemoryCode();
    const std::span rays(static_cast<Ray*>(buffer.data()), static_cast<std::size_t>(count));
    auto next = rays.begin();
    for (int side = 0; side < 4; ++side) {
      for (std::int32_t i = 1; i <= sideRays(side); ++i) *next++ = {borderOf(side, i), {}};
    }

    const double decayFactor = decayFactorFor(raySteps(image.width, image.height, length * length));
    for (auto first = rays.begin(); first != rays.end();) {
      const Direction direction = directionTo(first->border);
      const auto end = std::find_if(
          first, rays.end(), [&](const Ray& ray) { return directionTo(ray.border) != direction; });
      const std::span group(first, end);
      const std::int32_t status = direction.byColumns
                                      ? walkGroup<true>(group, direction.sign, decayFactor)
                                      : walkGroup<false>(group, direction.sign, decayFactor);
      if (status != host->NoErrorCode()) return status;
      first = end;
    }
    return host->NoErrorCode();
  }

  // All rays of a group, which share a direction.
  template <bool byColumns>
  std::int32_t walkGroup(std::span<Ray> group, std::int32_t sign, double decayFactor) {
    const std::int32_t extent = byColumns ? image.width : image.height;
    const std::int32_t start = std::clamp(byColumns ? ox_ : oy_, 0, extent - 1);
    const std::int32_t longest = sign > 0 ? extent - start : start + 1;
    const auto count = static_cast<std::int32_t>(group.size());
    const std::int32_t chunks = (count + raysInChunk - 1) / raysInChunk;
    const std::int32_t blocks = (longest + stepsInBlock - 1) / stepsInBlock;

    auto work = [&](std::int32_t block, std::int32_t chunk, std::int32_t threadIndex) {
      const std::int32_t firstStep = block * stepsInBlock;
      const std::int32_t firstRay = chunk * raysInChunk;
      const std::int32_t rays = std::min(raysInChunk, count - firstRay);
      for (Ray& ray :
           group.subspan(static_cast<std::size_t>(firstRay), static_cast<std::size_t>(rays))) {
        const std::int32_t last = byColumns ? ray.border.x : ray.border.y;
        const std::int32_t steps = std::abs(last - start) + 1;
        const std::int32_t stepsHere = std::min(stepsInBlock, steps - firstStep);
        walkSteps<byColumns>(ray, start + sign * firstStep, stepsHere, sign, decayFactor);
      }
      // Each block reports its share of the rays.
      for (std::int32_t ray = rays * block / blocks; ray < rays * (block + 1) / blocks; ++ray) {
        const std::int32_t status = report(threadIndex);
        if (status != host->NoErrorCode()) return status;
      }
      return host->NoErrorCode();
    };
    const auto callWork = [](void* context, std::int32_t block, std::int32_t chunk,
                             std::int32_t threadIndex) {
      return (*static_cast<decltype(work)*>(context))(block, chunk, threadIndex);
    };
    Pipeline pipeline(blocks, chunks, {&work, callWork});
    const std::int32_t status = host->RunIterations(blocks, pipeline.stageCallback());
    return status != host->NoErrorCode() ? status : pipeline.status();
  }

  // For each step of a ray the two pixels, across the walking axis, between which it passes, the
  // bilinear share of each, and the shares in single precision, which are the pixels' weights.
  struct Crossings {
    template <class Number>
    using Steps = std::array<Number, stepsInBlock>;
    Steps<std::int32_t> first, second;  // numbers of the pixels in the image
    Steps<double> shareOfFirst, shareOfSecond;
    Steps<double> weightOfFirst, weightOfSecond;
  };
  static constexpr std::int32_t outside = -1;

  // Distance times rise is a product in 32 bits, which wraps for origins very far outside. This is
  // intended: the picture of such origins depends on it.
  template <bool byColumns>
  void findCrossings(Border border, std::int32_t position, std::int32_t count, std::int32_t sign,
                     Crossings& crossings) const {
    const std::int32_t dx = border.x - ox_;
    const std::int32_t dy = border.y - oy_;
    // The column walk measures from the origin, the row walk from the border pixel.
    const Lanes run = allLanes(byColumns ? dx : dy);
    const Lanes base = allLanes(byColumns ? oy_ : border.x);
    const auto rise = static_cast<std::uint32_t>(byColumns ? dy : dx);
    const std::int32_t distance = position - (byColumns ? ox_ : border.y);
    const std::int32_t extent = byColumns ? image.height : image.width;
    const std::int32_t along = byColumns ? 1 : image.width;
    const std::int32_t across = byColumns ? image.width : 1;

    WholeLanes step;
    for (int lane = 0; lane < laneCount; ++lane) step[lane] = lane * sign;
    for (std::int32_t i = 0; i * laneCount < count; ++i, step += laneCount * sign) {
      const auto climbed =
          reinterpret_cast<WholeLanes>(reinterpret_cast<WrappingLanes>(distance + step) * rise);
      const Lanes t = toDouble(climbed) / run + base;
      // False also for a NaN, which a ray of no length has.
      const LaneMask inside = (t >= 0.0) & (t < extent);
      const WholeLanes whole = toWhole(choose(inside, t, Lanes{}));
      const WholeLanes pixel = (position + step) * along + whole * across;
      const Lanes shareOfSecond = t - toDouble(whole);
      const Lanes shareOfFirst = 1.0 - shareOfSecond;
      const auto store = [&](auto& steps, const auto& lanes) {
        std::memcpy(&steps[i * laneCount], &lanes, sizeof lanes);
      };
      store(crossings.first, __builtin_convertvector(inside, WholeLanes) ? pixel : outside);
      store(crossings.second, whole == extent - 1 ? pixel : pixel + across);
      store(crossings.shareOfFirst, shareOfFirst);
      store(crossings.shareOfSecond, shareOfSecond);
      store(crossings.weightOfFirst, narrowed(shareOfFirst));
      store(crossings.weightOfSecond, narrowed(shareOfSecond));
    }
  }

  // Walks count steps of one ray from position on along the walking axis; count may be 0 or less. A
  // step outside the image across the axis adds nothing, but the sum decays.
  template <bool byColumns>
  void walkSteps(Ray& ray, std::int32_t position, std::int32_t count, std::int32_t sign,
                 double decayFactor) const {
    Crossings crossings;
    findCrossings<byColumns>(ray.border, position, count, sign, crossings);
    // Both images are without gaps.
    const float* const pixels = image.at(0, 0);
    float* const accumulated = accumulationImage_.at(0, 0);
    const auto pixelAt = [=](std::ptrdiff_t number) { return pixels + number * Pixel::samples; };
    const auto sumAt = [=](std::ptrdiff_t number) {
      return accumulated + number * AccumulationPixel::samples;
    };
    const std::int32_t ahead = pixelsAhead * (byColumns ? sign * image.width : -sign);
    PixelLanes sums;
    std::memcpy(&sums, ray.sums, sizeof sums);
    for (std::int32_t n = 0; n < count; ++n) {
      for (Lanes& sum : sums) sum *= decayFactor;
      const std::int32_t first = crossings.first[n];
      if (first == outside) continue;
      const std::int32_t second = crossings.second[n];
      // Prefetches what the next rays will touch; they turn clockwise. Hardware prefetchers do not
      // recognise slanted walks. Neighbouring steps of a column walk share cache lines.
      if (!byColumns || n % 4 == 0) {
        __builtin_prefetch(pixelAt(first + ahead));
        __builtin_prefetch(sumAt(first + ahead), 1);
      }
      // The sample is read by linear interpolation between the two pixels, and the sum is given to
      // the same two with the same shares.
      const Lanes shareOfFirst = allLanes(crossings.shareOfFirst[n]);
      const Lanes shareOfSecond = allLanes(crossings.shareOfSecond[n]);
      addSample(pixelAt(first), shareOfFirst, allLanes(crossings.weightOfFirst[n]), sums);
      addSample(pixelAt(second), shareOfSecond, allLanes(crossings.weightOfSecond[n]), sums);
      addShare(sumAt(first), shareOfFirst, sums);
      addShare(sumAt(second), shareOfSecond, sums);
    }
    std::memcpy(ray.sums, &sums, sizeof sums);
  }

  // The weight of a sample is 1; its share is rounded to single precision.
  static void addSample(const float* sample, Lanes share, Lanes weight, PixelLanes& sums) {
    eachGroup([&](auto group) {
      if constexpr (holdsWeightAlone<group>) {
        sums[group] += weight;
      } else {
        const Lanes samples = toDouble(samplesOf<group>(sample));
        sums[group] += choose(weightIn<LaneMask>(group), weight, samples * share);
      }
    });
  }

  // The lane of the weight holds anything: where it is the only one that is no channel, it is read
  // from behind the pixel.
  template <int group>
  static SingleLanes samplesOf(const float* sample) {
    constexpr int remaining = channels - group * laneCount;
    constexpr int count = remaining >= laneCount - 1 ? laneCount : remaining;
    constexpr std::ptrdiff_t first = std::ptrdiff_t{group} * laneCount;
    return loadSingles<count>(sample + first);
  }

  // Channels are added in double precision, the weight in single.
  static void addShare(float* sum, Lanes share, const PixelLanes& sums) {
    eachGroup([&](auto group) {
      constexpr int samples = std::min(laneCount, AccumulationPixel::samples - group * laneCount);
      float* const sumOfGroup = sum + std::ptrdiff_t{group} * laneCount;
      const Lanes product = share * sums[group];
      const SingleLanes total = loadSingles<samples>(sumOfGroup);
      if constexpr (holdsWeightAlone<group>) {
        storeSingles<samples>(sumOfGroup, total + toSingle(product));
      } else {
        storeSingles<samples>(sumOfGroup, weightIn<WholeLanes>(group)
                                              ? total + toSingle(product)
                                              : toSingle(toDouble(total) + product));
      }
    });
  }

  // Calls step with each group's number as a constant.
  template <class Step>
  static void eachGroup(const Step& step) {
    [&]<int... group>(std::integer_sequence<int, group...>) {
      (step(std::integral_constant<int, group>()), ...);
    }
    (std::make_integer_sequence<int, groups>());
  }

  // The weight of pixels whose channels fill whole groups needs no product with the samples.
  template <int group>
  static constexpr bool holdsWeightAlone = group* laneCount == channels;

  // All bits set in the lane that holds the weight.
  template <class Mask>
  static Mask weightIn(int group) {
    Mask mask{};
    if (group == channels / laneCount) mask[channels % laneCount] = -1;
    return mask;
  }

  // Reports one more ray.
  std::int32_t report(std::int32_t threadIndex) {
    return host->Progress(stage_ * progressTotal_ + progressCounter_++, stages_ * progressTotal_,
                          threadIndex);
  }

  HostBuffer buffer_{*host};
  AccumulationImage accumulationImage_;
  std::int32_t ox_ = 0;  // the origin in the image's own pixel grid; may lie outside
  std::int32_t oy_ = 0;
  std::int32_t stage_ = 0;
  std::int32_t stages_ = 1;
  std::int32_t progressTotal_ = 0;
  std::atomic<std::int32_t> progressCounter_{0};
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
