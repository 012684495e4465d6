// The undo ring.

#include "parameters/undo.h"

#include <string>

#include <gtest/gtest.h>

namespace radiashafts {
namespace {

// Notes that it was applied, and counts itself.
struct Note final : pfUndo {
  Note(int n, std::string& log) : number(n), applied(log) { ++live; }
  ~Note() override { --live; }
  void Apply() override { applied += std::to_string(number); }
  int number;
  std::string& applied;
  static inline int live = 0;
};

struct History {
  void step(int records) {
    while (records-- > 0) ring.Push(std::make_unique<Note>(next++, applied));
    ++ring.nGroup;
  }
  // A digit pushes a step of so many records, u undoes and r redoes; returns the numbers that were
  // applied, and - where the ring says that there was nothing.
  std::string play(const std::string& moves) {
    applied.clear();
    for (const char move : moves) {
      if (move <= '9') step(move - '0');
      if (move == 'u') applied += ring.Undo() ? " " : "- ";
      if (move == 'r') applied += ring.Redo() ? " " : "- ";
    }
    return applied;
  }
  explicit History(bool enabled = true) { ring.bEnabled = enabled; }
  std::string applied;
  int next = 0;
  UndoHistory ring;
};

TEST(UndoHistory, StepsRunNewestFirstOnUndoAndOldestFirstOnRedo) {
  EXPECT_EQ(History().play("ur213uuruuurrrr"), "- - 543 2 2 2 10 - 01 2 345 - ");
  EXPECT_EQ(History(false).play("2ur"), "- - ");
}

TEST(UndoHistory, ANewChangeCutsOffWhatCouldBeRedone) {
  EXPECT_EQ(History().play("13u1rurruur"), "321 - 4 4 - 4 0 0 ");
}

TEST(UndoHistory, AFullRingForgetsItsOldestGroupWhole) {
  History h;
  for (int i = 0; i < 166; ++i) h.play("3");
  h.play("2");
  EXPECT_EQ(h.ring.nOldest, 0);
  h.play("12");  // one record too many takes three, the next two find room
  EXPECT_EQ(h.ring.nOldest, 3);
  h.play("1");
  EXPECT_EQ(Note::live, 500);
  while (h.ring.nCurrent > 9) h.ring.Undo();
  EXPECT_EQ(h.play("uur"), "876 - 678 ");
}

TEST(UndoHistory, AGroupThatFillsTheRingLeavesOnlyTheNewRecord) {
  for (const bool sameGroup : {false, true}) {
    History h;
    h.ring.Push(nullptr);
    h.step(500);
    if (sameGroup) --h.ring.nGroup;
    EXPECT_EQ(h.play("1uurr"), "500 - 500 - ");
  }
}

}  // namespace
}  // namespace radiashafts
