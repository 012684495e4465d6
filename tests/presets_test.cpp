// Preset files: their bytes, what is read from any file, and that a change is whole or none.

#include <cfloat>
#include <cmath>
#include <locale>

#include <gtest/gtest.h>

#include "parameters/preset_file.h"
#include "parameters/undo.h"
#include "platform/whole_file.h"
#include "tests/support/preset_set.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

// With $ for the end of a line that the program wrote, and % for the values as it writes them.
std::string spelledOut(const std::string& text) {
  constexpr char values[] =
      "Place 0.500000 0.250000$Flag 0$Whole 0$Amount 2.000000$Tint 1.000000 0.500000 0.000000$"
      "Choice 2$";
  std::string result;
  for (const char c : text) {
    result += c == '%' ? spelledOut(values) : c == '$' ? platform::lineEnd : std::string(1, c);
  }
  return result;
}

TEST(Presets, AChangeReplacesAddsOrRemovesOneEntryInItsPlace) {
  const std::string longName(300, 'n');
  struct {
    std::string name;  // of the entry that is saved, or deleted where it begins with -
    std::string before, after;
  } const cases[] = {
      {"A", "absent", "FileOwner Us$$name A$%"},
      {"My new one", "FileOwner Us\n", "FileOwner Us\n$name My_new_one$%"},
      {"A", "FILEOWNER us\r\n\r\nNAME A\r\nAmount 1\r\n\r\nNAME B\r\nFlag 1",
       "FILEOWNER us\r\n\r\nNAME A$%name B\r\nFlag 1"},
      // A keyword without a name would take the next token for it.
      {"A", "FileOwner Us\nname B\nname\n", "FileOwner Us\nname B\n$name A$%"},
      {longName, "FileOwner Us\n", "FileOwner Us\n$name " + longName.substr(0, 255) + "$%"},
      {"-A", "FileOwner Us\r\n\r\nname B\r\nFlag 1\r\n\r\nNAME a\r\nAmount 1\r\nName C",
       "FileOwner Us\r\n\r\nname B\r\nFlag 1$$name C"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name + (" in " + c.before));
    const TestFolder folder;
    const std::string path = folder.path("p.cfg");
    PresetSet set;
    if (c.before != "absent") folder.write("p.cfg", c.before);
    folder.write("p.cfgtmp", "left over");
    EXPECT_TRUE(c.name[0] == '-' ? set.parameters.DeleteSettings(c.name.substr(1), path)
                                 : set.parameters.SaveSettings(c.name, path, "Us"));
    EXPECT_EQ(folder.read("p.cfg"), spelledOut(c.after));
    EXPECT_EQ(folder.fileCount(), 1);
  }
}

TEST(Presets, LoadingTakesWhatTheEntryHoldsAsOneStepOfUndo) {
  struct {
    const char* entry;
    const char* values;
    int records;
  } const cases[] = {
      {"Place 0.1 -3 Flag 1 Whole -7 Amount 1.5 Tint 0 0.2 1 Choice 3 Hidden 9",
       "0.1,-3 1 -7 1.5 0,0.2,1 3 0", 6},
      // What is unknown goes with one value, and pairs fall in step again on a known name.
      {"Foreign 1 Amount 3 Foreign 1 2 Amount 4 Flag 1", "0.5,0.25 0 0 3 1,0.5,0 2 0", 1},
      {"Choice 0 Choice 4 Choice -1 Amount", "0.5,0.25 0 0 2 1,0.5,0 2 0", 0},
      {"Amount 1e999 Tint 5 -1 0x.8 Whole 99999999999", "0.5,0.25 0 2147483647 300 1,0,0.5 2 0", 3},
      {"Amount nan Flag yes Whole -inf Place inf ,5", "1.79769e+308,0 0 0 0 1,0.5,0 2 0", 2},
      {"Flag 7 Amount 0,5 Place 0.75 1 NAME C Amount 9", "0.75,1 1 0 0 1,0.5,0 2 0", 3},
  };
  const TestFolder folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.entry);
    folder.write("p.cfg", std::string("FileOwner Us name B Amount 9 name A ") + c.entry);
    PresetSet set;
    const std::string before = set.values();
    UndoHistory history;
    history.bEnabled = true;
    EXPECT_TRUE(set.parameters.LoadSettings("a", folder.path("p.cfg"), &history));
    EXPECT_EQ(set.values(), c.values);
    EXPECT_EQ(history.nCurrent, c.records);
    EXPECT_EQ(history.nGroup, 1);
    EXPECT_EQ(history.Undo(), c.records > 0);
    EXPECT_EQ(set.values(), before);
    EXPECT_FALSE(history.CanUndo());
  }
}

struct CommaPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

TEST(Presets, NumbersAreThoseOfTheProgramInEveryLocale) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  for (const char* text : {"--1", "+-1", "", "1e-999"}) EXPECT_EQ(numberAt(text), 0.0) << text;
  EXPECT_EQ(numberAt("+.5e1x") + numberAt("-0x1p-1"), 4.5);
  EXPECT_EQ(presetNumber(-1234567.25) + presetNumber(std::nan("")), "-1234567.2500000.000000");
  EXPECT_EQ(numberAt(presetNumber(DBL_MAX)), 1e240);
  std::locale::global(before);
}

// Every step of a save and of a deletion fails in turn. What the file holds at a step is what a
// process leaves that ends there.
TEST(Presets, AChangeThatFailsLeavesTheOldFileAndSaysSo) {
  static int stepsToFault;
  static std::string contentAtFault;
  static const TestFolder folder;
  const std::string old = "FileOwner Us\n\nname A\n\nname B\n" +
                          std::string(platform::replaceBlock, '\n') + "name C\nFlag 1\n";
  const std::string path = folder.path("p.cfg");
  PresetSet set;
  std::string failure;
  platform::replaceFault = [](platform::ReplaceStep) {
    contentAtFault = folder.read("p.cfg");
    return stepsToFault-- == 0;
  };
  for (const bool deletes : {false, true}) {
    for (int step = 0; step < 5; ++step) {  // open, two blocks, flush, rename
      SCOPED_TRACE(step);
      folder.write("p.cfg", old);
      stepsToFault = step;
      failure.clear();
      const bool result = deletes ? set.parameters.DeleteSettings("A", path)
                                  : set.parameters.SaveSettings("A", path, "Us", &failure);
      EXPECT_EQ(result, !deletes || step > 0);
      EXPECT_EQ(failure.empty(), deletes);
      EXPECT_EQ(contentAtFault, old);
      EXPECT_EQ(folder.read("p.cfg"), old);
      EXPECT_EQ(folder.fileCount(), 1);
    }
  }
  platform::replaceFault = nullptr;
}

}  // namespace
}  // namespace radiashafts::test
