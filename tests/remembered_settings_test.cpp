// What is kept between runs, in the user's own store of the system.

#include "interface/model/remembered_settings.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "platform/user_store.h"
#include "tests/support/log_lines.h"
#include "tests/support/preset_set.h"
#include "tests/support/test_store.h"

namespace radiashafts::test {
namespace {

using platform::UserKey;

TEST(UserKey, GivesBackWhatWasWrittenAndNothingOfAnotherTypeOrSize) {
  const TestStore store;
  EXPECT_FALSE(UserKey::openForReading(store.key()));
  const std::string text = R"(C:\Presets\new = [old]\n"; umlaut )"
                           "\xfc\n";
  const char bytes[] = {'\0', '\n', '\x7f', '\xff'};
  {
    auto key = UserKey::createForWriting(store.key() + "\\Below");
    ASSERT_TRUE(key);
    key->writeNumber("a number", 1);
    key->writeNumber("a number", 0xFEDCBA98);
    key->writeText("Text", text);
    key->writeText("empty", "");
    key->writeText("longest", std::string(255, 'x'));
    key->writeText("too long", std::string(256, 'x'));
    key->writeBytes("Bytes", bytes, sizeof bytes);
  }
  UserKey::createForWriting(store.key() + "\\Below")->writeNumber("further", 7);
  EXPECT_TRUE(UserKey::openForReading(store.key()));
  EXPECT_FALSE(UserKey::openForReading(store.key() + "\\Bel"));
  auto first = UserKey::openForReading(store.key() + "\\Below");
  ASSERT_TRUE(first);
  const UserKey key = std::move(*first);
  EXPECT_EQ(key.readNumber("a number"), 0xFEDCBA98);
  EXPECT_EQ(key.readNumber("further"), 7U);
  EXPECT_EQ(key.readText("Text"), text);
  EXPECT_EQ(key.readText("empty"), "");
  EXPECT_EQ(key.readText("longest"), std::string(255, 'x'));
  EXPECT_EQ(key.readText("too long"), std::nullopt);
  char read[sizeof bytes] = "";
  EXPECT_TRUE(key.readBytes("Bytes", read, sizeof read));
  EXPECT_EQ(std::memcmp(read, bytes, sizeof bytes), 0);
  EXPECT_EQ(key.readAnyFourBytes("a number"), 0xFEDCBA98);
  EXPECT_EQ(key.readAnyFourBytes("Bytes"), 0xFF7F0A00);
  EXPECT_EQ(key.readAnyFourBytes("Text"), std::nullopt);

  for (const char* name : {"Text", "empty", "Bytes", "absent"}) {
    EXPECT_EQ(key.readNumber(name), std::nullopt) << name;
  }
  for (const char* name : {"a number", "Bytes", "absent"}) {
    EXPECT_EQ(key.readText(name), std::nullopt) << name;
  }
  for (const char* name : {"a number", "Text", "empty", "absent"}) {
    EXPECT_FALSE(key.readBytes(name, read, sizeof read)) << name;
  }
  EXPECT_FALSE(key.readBytes("Bytes", read, 3));
  char more[5] = "kept";
  EXPECT_FALSE(key.readBytes("Bytes", more, sizeof more));
  EXPECT_STREQ(more, "kept");
}

TEST(RememberedSettings, LastUsedValuesComeBackButNotThoseThatAreNotStored) {
  const TestStore store;
  PresetSet set;
  EXPECT_FALSE(ReadLastUsedSettings(set.parameters, store.key()));
  set.place.SetValue(-0.25, 1e100);
  set.flag.SetValue(true);
  set.whole.SetValue(-5);
  set.amount.SetValue(1000.0 / 3.0);  // beyond its limit
  set.tint.SetValue(0.1, 0.2, 0.3);
  set.choice.SetValue(3);
  set.hidden.SetValue(9.0);
  const std::string before = set.values();
  WriteLastUsedSettings(set.parameters, store.key());

  PresetSet other;
  EXPECT_TRUE(ReadLastUsedSettings(other.parameters, store.key()));
  EXPECT_EQ(other.amount.value(), set.amount.value());
  other.hidden.SetValue(9.0);
  EXPECT_EQ(other.values(), before);
}

TEST(RememberedSettings, WhatIsMissingMistypedOrNoNumberLeavesItsParameterAlone) {
  const TestStore store;
  PresetSet set;
  WriteLastUsedSettings(set.parameters, store.key());
  {
    auto key = UserKey::createForWriting(store.key() + lastUsedSubkey);
    ASSERT_TRUE(key);
    const double wrong[] = {std::nan(""), std::numeric_limits<double>::infinity(), 0.75};
    const std::int32_t choices[] = {0, 4};
    key->writeBytes("Place_X", &wrong[2], sizeof(double));
    key->writeBytes("Place_Y", &wrong[0], sizeof(double));
    key->writeBytes("Tint_red", &wrong[2], sizeof(double));
    key->writeText("Tint_blue", "0.75");
    key->writeBytes("Amount", &wrong[1], sizeof(double));
    key->writeNumber("Whole", 3);
    key->writeBytes("Flag", choices, sizeof(std::int32_t));
    key->writeBytes("Choice", &choices[0], sizeof(std::int32_t));
  }
  const std::string before = set.values();
  EXPECT_TRUE(ReadLastUsedSettings(set.parameters, store.key()));
  EXPECT_EQ(set.values(), before);
  const std::int32_t beyond = 4;
  UserKey::createForWriting(store.key() + lastUsedSubkey)
      ->writeBytes("Choice", &beyond, sizeof beyond);
  ReadLastUsedSettings(set.parameters, store.key());
  EXPECT_EQ(set.values(), before);
}

std::vector<std::int32_t> numbersOf(const PreviewPlacement& w) {
  return {w.x, w.y, w.width, w.height, w.state};
}

constexpr ScreenMetrics screen{3000, 2000, 1366, 745};

TEST(RememberedSettings, ThePreviewStartsAsASquareAndComesBackOntoTheScreen) {
  const TestStore store;
  using Numbers = std::vector<std::int32_t>;
  EXPECT_EQ(numbersOf(ReadPreviewPlacement(screen, store.key())), (Numbers{228, -82, 910, 910, 0}));
  const struct {
    PreviewPlacement stored;
    ScreenMetrics metrics;
    Numbers expected;
  } cases[] = {
      {{10, 20, 5000, 30, 1}, screen, {10, 20, 5000, 30, 1}},
      {{-1, -3000, 100, 100, 2}, screen, {0, 0, 100, 100, 2}},
      {{3000, 2000, 100, 100, 3}, screen, {3000, 2000, 100, 100, 3}},
      {{3001, 2001, 100, 100, 3}, screen, {2950, 1950, 100, 100, 3}},
      {{-1, 9999, 100, 100, 0}, {0, 2000, 9, 9}, {-1, 9999, 100, 100, 0}},
      {{-1, 9999, 100, 100, 0}, {3000, 0, 9, 9}, {-1, 9999, 100, 100, 0}},
  };
  for (const auto& c : cases) {
    WritePreviewPlacement(c.stored, store.key());
    EXPECT_EQ(numbersOf(ReadPreviewPlacement(c.metrics, store.key())), c.expected);
  }
  for (std::int32_t state = 0; state < 12; ++state) {
    EXPECT_EQ((PreviewPlacement{0, 0, 0, 0, state}.startsMaximized()), state % 4 == 3) << state;
  }
  // One value of four is missing: the others count, without limits.
  WritePreviewPlacement({-5, 9000, 1, 60, 0}, store.key());
  UserKey::createForWriting(store.key())->writeText("Preview Position Width", "wide");
  EXPECT_EQ(numbersOf(ReadPreviewPlacement(screen, store.key())), (Numbers{-5, 9000, 400, 60, 0}));
}

TEST(RememberedSettings, TheParameterWindowKeepsWhatIsNotRemembered) {
  const TestStore store;
  const ParameterPlacement start{7, 7, "old.cfg", false, true};
  ParameterPlacement window = start;
  EXPECT_FALSE(ReadParameterPlacement(window, screen, store.key()));
  EXPECT_EQ(window.x + window.y, 0);
  EXPECT_EQ(window.presetPath, "old.cfg");
  EXPECT_TRUE(!window.showHandle && window.livePreview);

  { UserKey::createForWriting(store.key()); }
  window = start;
  EXPECT_TRUE(ReadParameterPlacement(window, screen, store.key()));
  EXPECT_EQ(window.presetPath, "old.cfg");
  EXPECT_TRUE(!window.showHandle && window.livePreview);

  WriteParameterPlacement({3100, -4, R"(C:\new\p.cfg)", true, false}, store.key());
  EXPECT_TRUE(ReadParameterPlacement(window, screen, store.key()));
  EXPECT_EQ(window.x, 2950);
  EXPECT_EQ(window.y, 0);
  EXPECT_EQ(window.presetPath, R"(C:\new\p.cfg)");
  EXPECT_TRUE(window.showHandle && !window.livePreview);
  WriteParameterPlacement({0, 0, std::string(256, 'x'), true, false}, store.key());
  ReadParameterPlacement(window, screen, store.key());
  EXPECT_EQ(window.presetPath, R"(C:\new\p.cfg)");
}

TEST(RememberedSettings, AStoreThatRefusesIsBorneInSilence) {
  TestStore store;
  store.refuseWriting();
  EXPECT_FALSE(UserKey::createForWriting(store.key()));
  PresetSet set;
  WriteLastUsedSettings(set.parameters, store.key());
  WritePreviewPlacement({}, store.key());
  WriteParameterPlacement({}, store.key());
  EXPECT_FALSE(ReadLastUsedSettings(set.parameters, store.key()));
}

TEST(RememberedSettings, TheTraceGoesWhereTheUserWants) {
  const TestStore store;
  const TestFolder folder;
  ReadDebugSwitches(store.key());
  UserKey::createForWriting(store.key())->writeNumber("console", 0);
  ReadDebugSwitches(store.key());
  UserKey::createForWriting(store.key())->writeText("logfile", folder.path("log.txt"));
  {
    const LogLines log;
    ReadDebugSwitches(store.key());
    const std::string line = "writing to Logfile at: " + folder.path("log.txt") + "\n";
    EXPECT_EQ(log.text(), line);  // the file that is open stays
  }
}

}  // namespace
}  // namespace radiashafts::test
