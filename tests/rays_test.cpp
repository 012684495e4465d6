// Whole renders at several thread counts, and ends of the smears.

#include <gtest/gtest.h>

#include "filters/smooth_rays.h"
#include "filters/straight_rays.h"
#include "parameters/effect_parameters.h"
#include "parameters/parameters.h"
#include "render/configurations.h"
#include "render/render_record.h"
#include "standin/descriptors.h"
#include "tests/support/long_test.h"
#include "tests/support/test_pictures.h"
#include "tests/support/threaded_host.h"

namespace radiashafts::test {
namespace {

using WorkingImage = Configuration<18>::WorkingImage;

// Whichever thread meets the abort, and whenever, every thread comes back and the status goes up.
template <class Filter>
void expectAbortsToEndTheWalk(std::initializer_list<int> calls) {
  std::vector<float> samples(std::size_t{200} * 180 * 3 + 1, 90.0F);
  for (const int threads : {1, 2, 3, 7}) {
    for (const int abortOn : {-1, 0, threads - 1}) {
      for (const int abortAt : calls) {
        ThreadedHost host(threads);
        host.abortAt = abortAt;
        host.abortOn = abortOn;
        Filter filter(host);
        filter.image = tightView<decltype(filter.image)>(200, 180, samples.data());
        filter.originX = 90;
        filter.originY = 70;
        filter.length = 1.0;
        const std::int32_t status = filter.run(2, 5);
        if (abortOn < 0) {  // one thread alone may have nothing left to report
          EXPECT_EQ(status, ThreadedHost::abortStatus) << threads << " threads at " << abortAt;
        }
      }
    }
  }
}

TEST(StraightRays, AnAbortOnAnyThreadEndsTheWalk) {  // behind the clear's 180 rows
  expectAbortsToEndTheWalk<RadiashaftsStraightFilter<WorkingImage>>({181, 250, 400, 700});
}

TEST(SmoothRays, AnAbortOnAnyThreadEndsTheWalk) {  // in the first of 109 rings and behind it
  expectAbortsToEndTheWalk<RadiashaftsSmoothFilter<WorkingImage>>({1, 2, 50, 109});
}

// Whole renders of every configuration, as drafts of a view too: bands, rows, strips and chunks are
// shared out differently at each count, and the bytes are those of the judge. The light stands
// inside, on borders and corners and outside; far outside products of distances wrap. The records
// of pictures without alpha tell of one that has no room in their planes.
TEST(ThreadCounts, GiveIdenticalBytes) {
  const std::pair<int, int> sizes[] = {{161, 143}, {143, 161}, {300, 40}, {1, 90}, {90, 1}, {2, 3}};
  const std::pair<double, double> places[] = {
      {0.5, 0.5}, {0.0, 0.0}, {1.0, 0.4}, {0.4, 0.999}, {-0.3, 0.4}, {0.4, -2.0}, {-700.0, 650.0}};
  Random random(testSeed(14));
  for (int round = 0; round < 2 * configurationCount; ++round) {
    const int configuration = round % configurationCount + 1;
    const auto [width, height] = sizes[round % 2 == 0 ? round / 2 % 6 : 0];
    const standin::Picture input = randomPicture(random, configuration, width, height);
    const standin::Mask mask = randomMask(random, input.width, input.height);
    const int draft = configuration % 3;
    judge::Values values;
    std::tie(values.originX, values.originY) = places[round % 7];
    values.mode = (configuration + round / configurationCount) % 2 + 1;
    if (round % 7 == 6) values.mode = 1;
    values.rayLength = round % 3 == 0 ? 0.3 : 1.0;
    values.selectionSoften = 0.8;

    EffectParameters effect;
    pfParameters parameters;
    for (pfParameter* parameter : effect.all) parameters.Add(parameter);
    hostapi::PIDescriptorParameters script{0,
                                           0,
                                           0,
                                           standin::makeDescriptor(scriptOf(values)),
                                           standin::writeDescriptorProcs(),
                                           standin::readDescriptorProcs()};
    hostapi::FilterRecord record{};
    record.descriptorParameters = &script;
    record.handleProcs = standin::handleProcs();
    parameters.ReadScriptParams(&record);
    const auto w = static_cast<std::int16_t>(width), h = static_cast<std::int16_t>(height);
    record.imageSize = {static_cast<std::int16_t>(2 * h), static_cast<std::int16_t>(2 * w)};
    record.inRect = record.outRect = record.maskRect = {0, 0, h, w};
    record.planes = static_cast<std::int16_t>(input.planes);
    record.depth = input.depth;
    record.imageMode = standin::imageModeOf(input);
    record.inLayerPlanes = static_cast<std::int16_t>(input.colorPlanes);
    record.inTransparencyMask = 1;
    record.inRowBytes = record.outRowBytes = static_cast<std::int32_t>(input.rowBytes());
    record.inData = const_cast<std::uint8_t*>(input.bytes.data());
    record.maskData = const_cast<std::uint8_t*>(mask.bytes.data());
    record.maskRowBytes = mask.width;

    const standin::Picture expected =
        judge::render(input, mask.bytes.data(), values, 2.0 + draft, 2.0 + draft);
    for (const int threads : {1, 2, 3, 7}) {
      ThreadedHost host(threads);
      standin::Picture output = input;
      record.outData = output.bytes.data();
      ASSERT_EQ(renderRecord(host, effect, draft, &record), 0);
      EXPECT_TRUE(output.bytes == expected.bytes)
          << configuration << " round " << round << " at " << threads << " threads";
    }
  }
}

}  // namespace
}  // namespace radiashafts::test
