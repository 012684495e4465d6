// The two smears alone, and whole renders at several thread counts.

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "filters/smooth_rays.h"
#include "filters/straight_rays.h"
#include "parameters/effect_parameters.h"
#include "render/configurations.h"
#include "render/render_record.h"
#include "tests/judge/serial_judge.h"
#include "tests/support/test_pictures.h"
#include "tests/support/threaded_host.h"

namespace radiashafts::test {
namespace {

using WorkingRgb = Configuration<18>::WorkingImage;
using WorkingGray = Configuration<16>::WorkingImage;

std::vector<float> randomSamples(Random& random, int width, int height, int channels) {
  std::vector<float> samples(static_cast<std::size_t>(width * height * channels));
  std::uniform_real_distribution<float> uniform(0.0F, 255.0F);
  for (float& sample : samples) sample = uniform(random);
  return samples;
}

template <class Filter, class Image>
std::int32_t runFilter(HalvorsundHost& host, std::vector<float>& samples, int width, int height,
                       int originX, int originY, double length) {
  Filter filter(host);
  filter.image = tightView<Image>(width, height, samples.data());
  filter.originX = originX;
  filter.originY = originY;
  filter.length = length;
  return filter.run(2, 5);
}

struct Case {
  int width, height, originX, originY;
  double length;
};

// Inside, on borders and corners, outside on every side, far outside; thin and tiny pictures.
std::vector<Case> smearCases() {
  return {{300, 260, 150, 130, 1.0},  {300, 260, 20, 13, 0.7},   {261, 307, 0, 0, 1.0},
          {150, 150, 149, 70, 0.5},   {150, 149, 75, 148, 0.02}, {200, 130, -40, 60, 0.9},
          {200, 130, 60, -300, 1.0},  {131, 200, 131, 260, 0.6}, {130, 200, 400, 90, 1.0},
          {97, 61, -9000, 7000, 1.0}, {1, 1, 0, 0, 1.0},         {1, 90, 0, 30, 1.0},
          {90, 1, 40, 5, 1.0},        {2, 2, 1, 1, 0.3},         {3, 2, -1, 0, 1.0}};
}

std::string describe(const Case& c) {
  return std::to_string(c.width) + "x" + std::to_string(c.height) + " origin " +
         std::to_string(c.originX) + "," + std::to_string(c.originY);
}

TEST(StraightRays, EqualOneThreadWalkingRayAfterRayAtAnyThreadCount) {
  Random random(11);
  for (const Case& c : smearCases()) {
    const auto input = randomSamples(random, c.width, c.height, 3);
    auto expected = input;
    judge::straightRays(expected, c.width, c.height, 3, c.originX, c.originY, c.length);
    for (const int threads : {1, 2, 3, 7}) {
      ThreadedHost host(threads);
      auto result = input;
      ASSERT_EQ((runFilter<RadiashaftsStraightFilter<WorkingRgb>, WorkingRgb>(
                    host, result, c.width, c.height, c.originX, c.originY, c.length)),
                0);
      EXPECT_TRUE(result == expected) << describe(c) << " at " << threads << " threads";
    }
  }
}

TEST(SmoothRays, EqualTheirStatedOrder) {
  Random random(12);
  ThreadedHost host(2);
  for (const Case& c : smearCases()) {
    for (const int channels : {1, 3}) {
      const auto input = randomSamples(random, c.width, c.height, channels);
      auto expected = input;
      judge::smoothRays(expected, c.width, c.height, channels, c.originX, c.originY, c.length);
      auto result = input;
      const std::int32_t status =
          channels == 1 ? runFilter<RadiashaftsSmoothFilter<WorkingGray>, WorkingGray>(
                              host, result, c.width, c.height, c.originX, c.originY, c.length)
                        : runFilter<RadiashaftsSmoothFilter<WorkingRgb>, WorkingRgb>(
                              host, result, c.width, c.height, c.originX, c.originY, c.length);
      ASSERT_EQ(status, 0);
      EXPECT_TRUE(result == expected) << describe(c) << " channels " << channels;
    }
  }
}

// Whichever thread meets the abort, and whenever, every thread comes back and the status goes up.
TEST(StraightRays, AnAbortOnAnyThreadEndsTheWalk) {
  Random random(13);
  const auto input = randomSamples(random, 200, 180, 3);
  for (const int threads : {1, 2, 3, 7}) {
    for (const int abortOn : {-1, 0, threads - 1}) {
      for (const int abortAt : {181, 250, 400, 700}) {  // behind the clear's 180 rows
        ThreadedHost host(threads);
        host.abortAt = abortAt;
        host.abortOn = abortOn;
        auto result = input;
        const std::int32_t status = runFilter<RadiashaftsStraightFilter<WorkingRgb>, WorkingRgb>(
            host, result, 200, 180, 90, 70, 1.0);
        if (abortOn < 0) {  // one thread alone may have no row or ray left to report
          EXPECT_EQ(status, ThreadedHost::abortStatus)
              << threads << " threads, on " << abortOn << " at " << abortAt;
        }
      }
    }
  }
}

TEST(Rays, AlreadyTooLargeForThirtyTwoBitsIsOutOfMemory) {
  ThreadedHost host(1);
  float none = 0.0F;
  Configuration<3>::WorkingImage image = tightView<Configuration<3>::WorkingImage>(1, 1, &none);
  image.width = image.height = 32767;
  RadiashaftsStraightFilter<Configuration<3>::WorkingImage> straight(host);
  straight.image = image;
  EXPECT_EQ(straight.run(2, 5), host.OutOfMemoryCode());
}

// Whole renders of every configuration: bands, rows, strips and chunks are shared out differently
// at each count, and the bytes are the same.
TEST(ThreadCounts, GiveIdenticalBytes) {
  Random random(14);
  for (int configuration = 1; configuration <= configurationCount; ++configuration) {
    const standin::Picture input = randomPicture(random, configuration, 161, 143);
    const standin::Mask mask = randomMask(random, input.width, input.height);
    EffectParameters parameters;
    parameters.Mode.SetValue(configuration % 2 + 1);
    parameters.SelectionSoften.SetValue(0.8);
    hostapi::FilterRecord record{};
    record.imageSize = {143, 161};
    record.inRect = record.outRect = record.maskRect = {0, 0, 143, 161};
    record.planes = static_cast<std::int16_t>(input.planes);
    record.depth = input.depth;
    record.imageMode = standin::imageModeOf(input);
    record.inLayerPlanes = static_cast<std::int16_t>(input.colorPlanes);
    record.inTransparencyMask = input.hasAlpha ? 1 : 0;
    record.inRowBytes = record.outRowBytes = static_cast<std::int32_t>(input.rowBytes());
    record.inData = const_cast<std::uint8_t*>(input.bytes.data());
    record.maskData = const_cast<std::uint8_t*>(mask.bytes.data());
    record.maskRowBytes = mask.width;

    std::vector<std::uint8_t> first;
    for (const int threads : {1, 2, 3, 7}) {
      ThreadedHost host(threads);
      std::vector<std::uint8_t> output(input.bytes.size());
      record.outData = output.data();
      ASSERT_EQ(renderRecord(host, parameters, 0, &record), 0);
      if (first.empty()) first = output;
      EXPECT_TRUE(output == first) << configuration << " at " << threads << " threads";
    }
  }
}

}  // namespace
}  // namespace radiashafts::test
