// What is kept between runs, in a store in memory.

#include "interface/model/remembered_settings.h"

#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "platform/user_store.h"
#include "tests/support/preset_set.h"

namespace radiashafts::test {
namespace {

using platform::UserKey;

// A key of a test's own.
std::string newKey() {
  static int number = 0;
  return std::to_string(++number);
}

TEST(RememberedSettings, LastUsedValuesComeBackAndWhatIsNoValueLeavesItsParameterAlone) {
  const std::string key = newKey();
  PresetSet set, other;
  EXPECT_FALSE(ReadLastUsedSettings(set.parameters, key));
  set.place.SetValue(-0.25, 1e100);
  set.flag.SetValue(true);
  set.whole.SetValue(-5);
  set.amount.SetValue(1000.0 / 3.0);  // beyond its limit
  set.tint.SetValue(0.1, 0.2, 0.3);
  set.choice.SetValue(3);
  const std::string before = set.values();
  set.hidden.SetValue(9.0);
  WriteLastUsedSettings(set.parameters, key);
  double hidden = 0.0;
  EXPECT_FALSE(
      UserKey::openForReading(key + lastUsedSubkey)->readBytes("Hidden", &hidden, sizeof hidden));
  EXPECT_TRUE(ReadLastUsedSettings(other.parameters, key));
  EXPECT_EQ(other.values(), before);
  for (const std::int32_t beyond : {0, 4}) {
    const double wrong[] = {std::nan(""), HUGE_VAL, 0.75};
    auto stored = UserKey::createForWriting(key + lastUsedSubkey);
    stored->writeBytes("Place_X", &wrong[2], sizeof(double));
    stored->writeBytes("Place_Y", &wrong[0], sizeof(double));
    stored->writeBytes("Amount", &wrong[1], sizeof(double));
    stored->writeText("Tint_blue", "0.75");
    stored->writeNumber("Whole", 3);
    stored->writeBytes("Flag", &beyond, sizeof beyond);
    stored->writeBytes("Choice", &beyond, sizeof beyond);
    EXPECT_TRUE(ReadLastUsedSettings(other.parameters, key));
    EXPECT_EQ(other.values(), before);
  }
}

TEST(RememberedSettings, WindowsComeBackOntoTheScreenAndKeepWhatIsNotRemembered) {
  const std::string key = newKey();
  constexpr ScreenMetrics screen{3000, 2000, 1366, 745};
  using Numbers = std::array<std::int32_t, 5>;
  const auto read = [&](const ScreenMetrics& metrics) {
    const PreviewPlacement w = ReadPreviewPlacement(metrics, key);
    return Numbers{w.x, w.y, w.width, w.height, w.state};
  };
  ParameterPlacement window{7, 7, "old.cfg", false, true};
  EXPECT_FALSE(ReadParameterPlacement(window, screen, key));
  EXPECT_EQ(window.presetPath, "old.cfg");
  EXPECT_TRUE(window.x + window.y == 0 && !window.showHandle && window.livePreview);

  EXPECT_EQ(read(screen), (Numbers{228, -82, 910, 910, 0}));
  const std::pair<PreviewPlacement, Numbers> cases[] = {
      {{-1, -3000, 100, 90, 2}, {0, 0, 100, 90, 2}},
      {{3000, 2000, 100, 90, 3}, {3000, 2000, 100, 90, 3}},
      {{3001, 2001, 100, 90, 3}, {2950, 1950, 100, 90, 3}}};
  for (const auto& [stored, expected] : cases) {
    WritePreviewPlacement(stored, key);
    EXPECT_EQ(read(screen), expected);
    EXPECT_EQ(stored.startsMaximized(), stored.state == 3);
  }
  EXPECT_EQ(read({0, 2000, 9, 9}), (Numbers{3001, 2001, 100, 90, 3}));
  // One value of four is missing: the others count, without limits.
  UserKey::createForWriting(key)->writeText("Preview Position Width", "wide");
  EXPECT_EQ(read(screen), (Numbers{3001, 2001, 400, 90, 3}));

  WriteParameterPlacement({3100, -4, R"(C:\new\p.cfg)", true, false}, key);
  EXPECT_TRUE(ReadParameterPlacement(window, screen, key));
  EXPECT_TRUE(window.x == 2950 && window.y == 0 && window.showHandle && !window.livePreview);
  EXPECT_EQ(window.presetPath, R"(C:\new\p.cfg)");
}

}  // namespace
}  // namespace radiashafts::test
