// Whole runs through the module's entry against the plain serial judge.

#include <algorithm>

#include <gtest/gtest.h>

#include "parameters/effect_table.h"
#include "parameters/modes.h"
#include "render/configurations.h"
#include "tests/support/long_test.h"
#include "tests/support/module_under_test.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

class WholeRun : public testing::TestWithParam<int> {};

int differingSamples(const standin::Picture& a, const standin::Picture& b) {
  int count = 0;
  for (std::size_t i = 0; i < a.bytes.size(); i += a.sampleBytes()) {
    if (!std::equal(&a.bytes[i], &a.bytes[i] + a.sampleBytes(), &b.bytes[i])) ++count;
  }
  return count;
}

// Every mode, show mode and blend, each on a picture and with values of its
// own.
TEST_P(WholeRun, EqualsTheSerialJudge) {
  constexpr int rounds = 2 * 3 * static_cast<int>(blendModeNames.size());
  for (int round = 0; round < rounds; ++round) {
    const unsigned seed = testSeed(static_cast<unsigned>(GetParam() * rounds + round));
    Random random(seed);
    const auto side = [&random] { return std::uniform_int_distribution<int>(1, 19)(random); };
    judge::Values values = randomValues(random);
    values.mode = round % 2 + 1;
    values.selectionShow = round / 2 % 3 + 1;
    values.blendMode = round / 6 + 1;
    SCOPED_TRACE(testing::Message() << "seed " << seed << " mode " << values.mode << " show "
                                    << values.selectionShow << " blend " << values.blendMode);
    // A multichannel picture of more planes is a picture of more channels.
    const bool extended = values.blendMode % 3 == 0 && (GetParam() - 1) % 6 != 4;
    const standin::Picture input =
        randomPicture(random, GetParam(), side(), side(), extended ? 2 : 0);
    if (round % 7 == 0) values.gamma = 0.0;
    const standin::Mask mask = randomMask(random, input.width, input.height);
    const bool masked = values.blendMode % 2 == 0;
    standin::HostTraits traits;
    traits.inputPadding = values.blendMode % 4;  // rows and samples at any address
    traits.outputPadding = values.blendMode % 5;
    traits.maskPadding = values.blendMode % 7;
    traits.guardBytes = 32 + values.blendMode % 3;

    const ModuleRun run = runModule(input, masked ? &mask : nullptr, scriptOf(values), traits);
    const standin::Picture expected =
        judge::render(input, masked ? mask.bytes.data() : nullptr, values);
    ASSERT_EQ(run.result.status, 0);
    EXPECT_TRUE(run.result.guardsIntact);
    EXPECT_EQ(run.result.leaked, 0);
    EXPECT_EQ(differingSamples(expected, run.output), 0) << input.width << 'x' << input.height;
  }
}

INSTANTIATE_TEST_SUITE_P(Configurations, WholeRun, testing::Range(1, configurationCount + 1));

TEST(ScriptValues, BeyondALimitRenderAsTheLimit) {
  Random random(testSeed(5));
  const standin::Picture input = randomPicture(random, 15, 9, 7);
  const standin::Script usual = scriptOf(randomValues(random));
  std::size_t keys = 0;
  for (const ParameterFacts& facts : effectTable) {
    const bool isList = facts.kind == ParameterKind::list;
    for (const ScriptTerm& term : facts.keys) {
      if (term.code != nullptr) ++keys;
      if (term.code == nullptr || isList || facts.bound == Bound::none) continue;
      for (const auto& [beyond, limit] :
           {std::pair{-900.0, facts.minimum}, {900.0, facts.maximum}}) {
        if (beyond > 0.0 && facts.bound == Bound::lower) continue;
        const auto rendered = [&](double number) {
          standin::Script script = usual;
          script.emplace_back(scriptKey(term), number);
          return runModule(input, nullptr, script).output.bytes;
        };
        EXPECT_EQ(rendered(beyond), rendered(limit)) << term.code << ' ' << beyond;
      }
    }
  }
  EXPECT_EQ(usual.size(), keys) << "the judge's values leave some out";
}

}  // namespace
}  // namespace radiashafts::test
