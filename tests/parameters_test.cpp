// Parameters: the names of blend modes, folded numbers and the undo ring.

#include <cmath>

#include <gtest/gtest.h>

#include "parameters/effect_parameters.h"
#include "parameters/undo.h"

namespace radiashafts {
namespace {

TEST(ReflectInto, FoldsAsATriangleWaveThatNeverReachesItsTop) {
  for (const double top : {1.0, -1.0, 3.0, -7.0}) EXPECT_EQ(ReflectInto(top * 5, 5), 4.9999) << top;
  for (int i = -3000; i < 3000; ++i) {
    const int n = 1 + std::abs(i) % 7;
    const double t = i * 0.0213;
    const double distance = std::abs(t - 2.0 * n * std::round(t / (2.0 * n)));  // to the next foot
    ASSERT_NEAR(ReflectInto(t, n), distance, 1e-9) << t << ' ' << n;
  }
}

// The numbers are those that scripts hold.
TEST(EffectTable, BlendModesHaveTheirNamesByTheirNumbers) {
  const char* const names[] = {
      "normal",    "max weight", "screen",     "overlay",       "addition",      "subtraction",
      "multiply",  "divide",     "difference", "exclusion",     "lighten",       "darken",
      "maximum",   "minimum",    "hue",        "saturation",    "color",         "luminosity",
      "alpha add", "alpha sub",  "alpha mult", "alpha replace", "(none) replace"};
  EffectParameters effect;
  for (std::size_t number = 1; number <= std::size(names); ++number) {
    EXPECT_EQ(effect.BlendMode.GetEntry(number - 1), names[number - 1]) << number;
  }
  EXPECT_EQ(static_cast<int>(BlendMode::addition), 5);
  EXPECT_EQ(static_cast<int>(BlendMode::subtraction), 6);
  EXPECT_FALSE(effect.BlendMode.SetValue(static_cast<int>(std::size(names)) + 1));
  effect.BlendMode.SetValue(0);
  effect.BlendMode.Validate();
  EXPECT_EQ(effect.BlendMode.value(), 1);
}

// Notes that it was applied.
struct Note final : pfUndo {
  Note(int n, std::string& log) : number(n), applied(log) {}
  void Apply() override { applied += std::to_string(number); }
  int number;
  std::string& applied;
};

// A digit pushes a step of so many records, u undoes and r redoes; returns the numbers that were
// applied, and - where the ring says that there was nothing.
struct History {
  std::string play(const std::string& moves) {
    applied.clear();
    for (const char move : moves) {
      if (move == 'u') applied += ring.Undo() ? " " : "- ";
      if (move == 'r') applied += ring.Redo() ? " " : "- ";
      if (move <= '9') push(move - '0');
    }
    return applied;
  }
  void push(int records) {
    while (records-- > 0) ring.Push(std::make_unique<Note>(next++, applied));
    ++ring.nGroup;
  }
  explicit History(bool enabled = true) { ring.bEnabled = enabled; }
  std::string applied;
  int next = 0;
  UndoHistory ring;
};

TEST(UndoHistory, StepsRunBackAndForthAndANewOneCutsOffTheRest) {
  EXPECT_EQ(History().play("ur213uuruuurrrr"), "- - 543 2 2 2 10 - 01 2 345 - ");
  EXPECT_EQ(History().play("13u1rurruur"), "321 - 4 4 - 4 0 0 ");
  EXPECT_EQ(History(false).play("2ur"), "- - ");
}

TEST(UndoHistory, AFullRingForgetsItsOldestGroupWhole) {
  History h;
  for (int i = 0; i < 166; ++i) h.play("3");
  h.play("2");
  EXPECT_EQ(h.ring.nOldest, 0);
  h.play("12");  // one record too many takes three, the next two find room
  EXPECT_EQ(h.ring.nOldest, 3);
  h.play("1");
  while (h.ring.nCurrent > 9) h.ring.Undo();
  EXPECT_EQ(h.play("uur"), "876 - 678 ");
  History whole;  // a group that fills the ring makes room for the one behind it
  whole.push(500);
  EXPECT_EQ(whole.play("1uurr"), "500 - 500 - ");
}

}  // namespace
}  // namespace radiashafts
