// The undo ring and what its records do to parameters.

#include "parameters/undo.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace radiashafts {
namespace {

// A record that notes that it was applied, and counts itself.
struct Note final : pfUndo {
  Note(int n, std::vector<int>& log) : number(n), applied(log) { ++live; }
  ~Note() override { --live; }
  void Apply() override { applied.push_back(number); }
  int number;
  std::vector<int>& applied;
  static inline int live = 0;
};

struct History {
  History() { ring.bEnabled = true; }
  // One step of the given count of records, numbered on.
  void step(int records) {
    for (int i = 0; i < records; ++i) ring.Push(std::make_unique<Note>(next++, applied));
    ++ring.nGroup;
  }
  std::vector<int> undo() { return apply(&UndoHistory::Undo); }
  std::vector<int> redo() { return apply(&UndoHistory::Redo); }
  std::vector<int> apply(bool (UndoHistory::*direction)()) {
    applied.clear();
    EXPECT_EQ((ring.*direction)(), !applied.empty());
    return applied;
  }
  std::vector<int> applied;
  int next = 0;
  UndoHistory ring;
};

using Numbers = std::vector<int>;

TEST(UndoHistory, StepsRunNewestFirstOnUndoAndOldestFirstOnRedo) {
  History h;
  EXPECT_EQ(h.undo(), Numbers{});
  EXPECT_EQ(h.redo(), Numbers{});
  h.step(2);
  h.step(1);
  h.step(3);
  EXPECT_EQ(h.undo(), (Numbers{5, 4, 3}));
  EXPECT_EQ(h.undo(), (Numbers{2}));
  EXPECT_EQ(h.redo(), (Numbers{2}));
  EXPECT_EQ(h.undo(), (Numbers{2}));
  EXPECT_EQ(h.undo(), (Numbers{1, 0}));
  EXPECT_EQ(h.ring.nCurrent, 0);
  EXPECT_EQ(h.undo(), Numbers{});
  EXPECT_EQ(h.redo(), (Numbers{0, 1}));
  EXPECT_EQ(h.redo(), (Numbers{2}));
  EXPECT_EQ(h.redo(), (Numbers{3, 4, 5}));
  EXPECT_EQ(h.redo(), Numbers{});
}

TEST(UndoHistory, ANewChangeCutsOffWhatCouldBeRedone) {
  History h;
  h.step(1);
  h.step(3);
  h.undo();
  h.step(1);
  EXPECT_FALSE(h.ring.CanRedo());
  EXPECT_EQ(h.redo(), Numbers{});
  EXPECT_EQ(h.undo(), (Numbers{4}));
  EXPECT_EQ(h.redo(), (Numbers{4}));  // and not the old step behind it
  EXPECT_EQ(h.redo(), Numbers{});
  EXPECT_EQ(h.undo(), (Numbers{4}));
  EXPECT_EQ(h.undo(), (Numbers{0}));
}

TEST(UndoHistory, AFullRingForgetsItsOldestGroupWhole) {
  {
    History h;
    for (int i = 0; i < 166; ++i) h.step(3);
    h.step(2);
    EXPECT_EQ(Note::live, 500);
    EXPECT_EQ(h.ring.nOldest, 0);
    h.step(1);  // one record too many takes three
    EXPECT_EQ(h.ring.nOldest, 3);
    EXPECT_EQ(Note::live, 500);
    h.step(2);
    EXPECT_EQ(h.ring.nOldest, 3);
    h.step(1);
    EXPECT_EQ(h.ring.nOldest, 6);
    int undone = 0;
    Numbers last;
    for (Numbers now = h.undo(); !now.empty(); now = h.undo()) {
      undone += static_cast<int>(now.size());
      last = now;
    }
    EXPECT_EQ(undone, 504 - 6);
    EXPECT_EQ(last, (Numbers{8, 7, 6}));
    EXPECT_EQ(h.redo(), (Numbers{6, 7, 8}));
  }
  EXPECT_EQ(Note::live, 0);
}

TEST(UndoHistory, AGroupThatFillsTheRingLeavesOnlyTheNewRecord) {
  for (const bool sameGroup : {false, true}) {
    History h;
    h.step(500);
    if (sameGroup) --h.ring.nGroup;
    h.step(1);
    EXPECT_EQ(h.ring.nOldest, 500);
    EXPECT_EQ(h.undo(), (Numbers{500}));
    EXPECT_EQ(h.undo(), Numbers{});
    EXPECT_EQ(h.redo(), (Numbers{500}));
    EXPECT_EQ(h.redo(), Numbers{});
  }
  EXPECT_EQ(Note::live, 0);
}

TEST(UndoHistory, KeepsNothingWhileDisabledAndIgnoresNull) {
  UndoHistory ring;
  std::vector<int> applied;
  ring.Push(std::make_unique<Note>(0, applied));
  EXPECT_EQ(Note::live, 0);
  ring.bEnabled = true;
  ring.Push(nullptr);
  EXPECT_FALSE(ring.CanUndo());
  EXPECT_EQ(ring.nCurrent, 0);
  EXPECT_EQ(ring.nNewest, -1);
}

struct Watch final : pfParameterUI {
  explicit Watch(pfParameter& watched) {
    AttachWidget(*this, watched);
    watched.onChange = [](pfParameter*, void* count) { ++*static_cast<int*>(count); };
    watched.onChangeContext = &changes;
  }
  void Update() override { ++updates; }
  int updates = 0;
  int changes = 0;
};

// Takes a parameter from one value to another through undo and redo.
template <class Parameter, class... Values>
void expectSwap(const char* name, Parameter& parameter, int updatesBesideChange, int callsBack,
                Values... changed) {
  SCOPED_TRACE(name);
  const typename Parameter::Value before = parameter.value();
  UndoHistory ring;
  ring.bEnabled = true;
  ring.Push(parameter.CreateUndo());
  parameter.SetValue(changed...);
  const typename Parameter::Value after = parameter.value();
  ASSERT_NE(before, after);
  Watch watch(parameter);
  for (int round = 1; round <= 2; ++round) {
    EXPECT_TRUE(ring.Undo());
    EXPECT_EQ(parameter.value(), before);
    EXPECT_TRUE(ring.Redo());
    EXPECT_EQ(parameter.value(), after);
    EXPECT_EQ(watch.updates, 2 * round * (1 + updatesBesideChange));
    EXPECT_EQ(watch.changes, 2 * round * callsBack);
  }
  watch.updates = watch.changes = 0;
  parameter.CreateUndo()->Apply();  // of the value that it has
  EXPECT_EQ(parameter.value(), after);
  EXPECT_EQ(watch.updates, updatesBesideChange);
  EXPECT_EQ(watch.changes, callsBack);
}

TEST(UndoRecord, SwapsTheValueAndTellsWidgetAndCallback) {
  pfParameterFloat number;
  expectSwap("float", number, 1, 1, 0.75);
  pfParameterInt whole;
  expectSwap("int", whole, 1, 0, 7);
  pfParameterBool flag;
  expectSwap("bool", flag, 1, 1, true);
  pfParameterList list;
  list.AddEntry("a");
  list.AddEntry("b");
  expectSwap("list", list, 1, 1, 2);
  pfParameterRGB color;
  expectSwap("color", color, 1, 0, 1.0, 0.5, 1.0);
  pfParameterPosition position;
  expectSwap("position", position, 0, 0, 0.0, 0.25);  // told by the change alone
}

TEST(UndoRecord, AListIndexOutOfRangeChangesNothingButSwaps) {
  pfParameterList list;
  list.AddEntry("a");
  list.AddEntry("b");
  list.SetValue(0);
  const std::unique_ptr<pfUndo> record = list.CreateUndo();
  list.SetValue(2);
  Watch watch(list);
  record->Apply();
  EXPECT_EQ(list.value(), 2);
  EXPECT_EQ(watch.changes, 0);
  EXPECT_EQ(watch.updates, 1);
  list.SetValue(1);
  record->Apply();
  EXPECT_EQ(list.value(), 2);  // what it kept the first time
}

}  // namespace
}  // namespace radiashafts
