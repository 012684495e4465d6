// Whole runs through the module's entry against the plain serial judge.

#include <gtest/gtest.h>

#include "parameters/effect_table.h"
#include "render/configurations.h"
#include "tests/support/module_under_test.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

class WholeRun : public testing::TestWithParam<int> {};

std::string describe(const judge::Values& v, unsigned seed) {
  return "seed " + std::to_string(seed) + " mode " + std::to_string(v.mode) + " show " +
         std::to_string(v.selectionShow) + " blend " + std::to_string(v.blendMode);
}

int differingSamples(const standin::Picture& a, const standin::Picture& b) {
  int count = 0;
  for (std::size_t i = 0; i < a.bytes.size(); i += a.sampleBytes()) {
    if (!std::equal(&a.bytes[i], &a.bytes[i] + a.sampleBytes(), &b.bytes[i])) ++count;
  }
  return count;
}

// Every mode, show mode and blend, each on a picture and with values of its own.
TEST_P(WholeRun, EqualsTheSerialJudge) {
  for (int mode = 1; mode <= 2; ++mode) {
    for (int show = 1; show <= 3; ++show) {
      for (int blend = 1; blend <= static_cast<int>(blendModeNames.size()); ++blend) {
        const auto seed = static_cast<unsigned>(((GetParam() * 2 + mode) * 3 + show) * 23 + blend);
        Random random(seed);
        const auto side = [&random] { return std::uniform_int_distribution<int>(1, 19)(random); };
        // A multichannel picture of more planes is a picture of more channels.
        const bool extended = blend % 3 == 0 && (GetParam() - 1) % 6 != 4;
        const standin::Picture input =
            randomPicture(random, GetParam(), side(), side(), extended ? 2 : 0);
        const standin::Mask mask = randomMask(random, input.width, input.height);
        const bool masked = blend % 2 == 0;
        judge::Values values = randomValues(random);
        values.mode = mode;
        values.selectionShow = show;
        values.blendMode = blend;
        standin::HostTraits traits;
        traits.inputPadding = blend % 4;  // rows and samples at any address
        traits.outputPadding = blend % 5;
        traits.maskPadding = blend % 7;
        traits.guardBytes = 32 + blend % 3;

        const ModuleRun run = runModule(input, masked ? &mask : nullptr, scriptOf(values), traits);
        const judge::Picture expected =
            judge::render(judgePicture(input), masked ? mask.bytes.data() : nullptr, values);
        ASSERT_EQ(run.result.status, 0);
        EXPECT_TRUE(run.result.guardsIntact) << describe(values, seed);
        EXPECT_EQ(run.result.leaked, 0);
        EXPECT_EQ(differingSamples(storedPicture(expected, input), run.output), 0)
            << describe(values, seed) << ' ' << input.width << 'x' << input.height;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Configurations, WholeRun, testing::Range(1, configurationCount + 1));

}  // namespace
}  // namespace radiashafts::test
