// Preset files: their bytes, what is read from any file, and that a change is whole or none.

#include <cfloat>
#include <climits>
#include <cmath>
#include <functional>
#include <locale>

#include <gtest/gtest.h>

#include "parameters/preset_file.h"
#include "parameters/undo.h"
#include "platform/whole_file.h"
#include "tests/support/log_lines.h"
#include "tests/support/preset_set.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

using Names = std::vector<std::string>;
using platform::ReplaceStep;

// With $ for the end of a line that the program wrote.
std::string spelledOut(std::string text) {
  for (std::size_t at = 0; (at = text.find('$', at)) != std::string::npos;) {
    text.replace(at, 1, platform::lineEnd);
  }
  return text;
}

constexpr char values[] =
    "Place 0.500000 0.250000$Flag 0$Whole 0$Amount 2.000000$Tint 1.000000 0.500000 0.000000$"
    "Choice 2$";

TEST(Presets, SavingAddsAnEntryOrReplacesItInItsPlace) {
  const std::string v = values;
  const std::string longName(300, 'n');
  struct {
    const char* name;
    std::string before;
    std::string after;
  } const cases[] = {
      {"A", "absent", "FileOwner Us$$name A$" + v},
      {"My new one", "FileOwner Us\n", "FileOwner Us\n$name My_new_one$" + v},
      {"B", "FileOwner Us\n\nname A\nAmount 1\n", "FileOwner Us\n\nname A\nAmount 1\n$name B$" + v},
      {"B", "FileOwner Us name A Amount 1", "FileOwner Us name A Amount 1$name B$" + v},
      {"a", "FileOwner Us\n\nname A\nAmount 1\nOld 3\n\nname B\nFlag 1\n",
       "FileOwner Us\n\nname A$" + v + "name B\nFlag 1\n"},
      {"A", "FILEOWNER us\r\n\r\nNAME A\r\nAmount 1\r\n\r\nNAME B\r\nFlag 1",
       "FILEOWNER us\r\n\r\nNAME A$" + v + "name B\r\nFlag 1"},
      {"B", "FileOwner Us\rname A\rname B\rFlag 1", "FileOwner Us\rname A\rname B$" + v},
      {"A", "FileOwner Us\nname A\nname A\nFlag 1", "FileOwner Us\nname A$" + v + "name A\nFlag 1"},
      {"name", "FileOwner Us\nname name\nFlag 1\nname B",
       "FileOwner Us\nname name$" + v + "name B"},
      // A keyword without a name would take the next token for it.
      {"A", "FileOwner Us\nname B\nname\n", "FileOwner Us\nname B\n$name A$" + v},
      {"A", "name A\nFlag 1\nFileOwner Us\nname B", "name A$" + v + "FileOwner Us\nname B"},
      {longName.c_str(), "FileOwner Us\n",
       "FileOwner Us\n$name " + longName.substr(0, 255) + "$" + v},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name + (" in " + c.before));
    const TestFolder folder;
    PresetSet set;
    if (c.before != "absent") folder.write("p.cfg", c.before);
    folder.write("p.cfgtmp", "left over");
    EXPECT_TRUE(set.parameters.SaveSettings(c.name, folder.path("p.cfg"), "Us"));
    EXPECT_EQ(folder.read("p.cfg"), spelledOut(c.after));
    EXPECT_EQ(folder.fileCount(), 1);
  }
}

TEST(Presets, DeletingClosesTheGap) {
  struct {
    const char* before;
    const char* after;
  } const cases[] = {
      {"FileOwner Us\n\nname A\nAmount 1\n", "FileOwner Us$"},
      {"FileOwner Us\n\nname A\nAmount 1\n\nname B\nFlag 1\n", "FileOwner Us$$name B\nFlag 1\n"},
      {"FileOwner Us\r\n\r\nname B\r\nFlag 1\r\n\r\nNAME a\r\nAmount 1\r\nName C",
       "FileOwner Us\r\n\r\nname B\r\nFlag 1$$name C"},
      {"FileOwner Us name A name A", "FileOwner Us$$name A"},
      {"name A Flag 1 FileOwner Us", "$FileOwner Us"},
  };
  for (const auto& c : cases) {
    const TestFolder folder;
    folder.write("p.cfg", c.before);
    EXPECT_TRUE(PresetSet().parameters.DeleteSettings("A", folder.path("p.cfg")));
    EXPECT_EQ(folder.read("p.cfg"), spelledOut(c.after)) << c.before;
    EXPECT_EQ(folder.fileCount(), 1);
  }
}

// The owner after asking; whether the file is ours; its names.
TEST(Presets, AnyFileIsLookedAtAndOnlyOurOwnIsTouched) {
  const std::string longToken(10000, 'x');
  const std::string noise = std::string("\0\x1a\xff\xfe\n\r name \x80\0", 14) + longToken;
  struct {
    std::string content;
    bool ours;
    const char* owner;
    Names names;
  } const cases[] = {
      {"absent", true, "Us", {}},
      {"", false, "Us", {}},
      {"\r\n \t\v\f", false, "Us", {}},
      {"name A\nFlag 1\n", false, "Us", {}},
      {"FileOwner", false, "Us", {}},
      {"name FileOwner Us", false, "Us", {}},
      {"FileOwner Them\nname A\n", false, "Them", {}},
      {"FileOwner Them FileOwner Us", false, "Them", {}},
      {"#!text\nfileowner US\nNAME b\nname A Flag 1 name B\nname", true, "Us", {"b", "A", "B"}},
      {noise, false, "Us", {}},
      {"FileOwner Us " + noise + " name A", true, "Us", {std::string("\x80", 1), "A"}},
      {"FileOwner Us name " + longToken + " name A", true, "Us", {longToken.substr(0, 255), "A"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.content.substr(0, 40));
    const TestFolder folder;
    const std::string path = folder.path("p.cfg");
    if (c.content != "absent") folder.write("p.cfg", c.content);
    PresetSet set;
    pfParameters& parameters = set.parameters;
    std::string owner = "Us";
    EXPECT_EQ(parameters.IsSettingFileValid(path, owner), c.ours);
    EXPECT_EQ(owner, c.owner);
    Names names{"kept"};
    EXPECT_EQ(parameters.GetSettingNames(path, names, "Us"), c.ours);
    names.erase(names.begin());
    EXPECT_EQ(names, c.names);
    if (c.ours) continue;
    EXPECT_FALSE(parameters.SaveSettings("A", path, "Us"));
    if (std::string(c.owner) == "Us") {
      EXPECT_FALSE(parameters.DeleteSettings("A", path));
    }
    EXPECT_EQ(folder.read("p.cfg"), c.content);
    EXPECT_EQ(folder.fileCount(), 1);
  }
}

TEST(Presets, WithoutANameOrAPathOrAPlainFileNothingHappens) {
  const TestFolder folder;
  PresetSet set;
  std::string owner = "Us";
  Names names;
  std::filesystem::create_directory(folder.path("folder"));
  const std::string path = folder.path("p.cfg");
  for (const std::string& place : {std::string(), folder.path("folder")}) {
    EXPECT_FALSE(set.parameters.IsSettingFileValid(place, owner));
    EXPECT_FALSE(set.parameters.GetSettingNames(place, names, "Us"));
    EXPECT_FALSE(set.parameters.SaveSettings("A", place, "Us"));
    EXPECT_FALSE(set.parameters.LoadSettings("A", place, nullptr));
    EXPECT_FALSE(set.parameters.DeleteSettings("A", place));
  }
  EXPECT_FALSE(set.parameters.SaveSettings("", path, "Us"));
  EXPECT_TRUE(set.parameters.SaveSettings("A", path, "Us"));
  for (const char* name : {"", "B"}) {
    EXPECT_FALSE(set.parameters.LoadSettings(name, path, nullptr));
    EXPECT_FALSE(set.parameters.DeleteSettings(name, path));
  }
  EXPECT_EQ(folder.fileCount(), 2);
}

TEST(Presets, LoadingTakesWhatTheEntryHoldsAsOneStepOfUndo) {
  struct {
    const char* entry;
    const char* values;
    int records;
  } const cases[] = {
      {"Place 0.1 -3 Flag 1 Whole -7 Amount 1.5 Tint 0 0.2 1 Choice 3 Hidden 9",
       "0.1,-3 1 -7 1.5 0,0.2,1 3 0", 6},
      {"", "0.5,0.25 0 0 2 1,0.5,0 2 0", 0},
      {"AMOUNT 3 amount 4", "0.5,0.25 0 0 4 1,0.5,0 2 0", 2},
      {"Place 0.500000 0.250000 Amount 2 Choice 2", "0.5,0.25 0 0 2 1,0.5,0 2 0", 0},
      // What is unknown goes with one value, and pairs fall in step again on a known name.
      {"Foreign 1 Amount 3", "0.5,0.25 0 0 3 1,0.5,0 2 0", 1},
      {"Foreign 1 2 Amount 3 Flag 1", "0.5,0.25 0 0 2 1,0.5,0 2 0", 0},
      {"Choice 0 Choice 4 Choice -1", "0.5,0.25 0 0 2 1,0.5,0 2 0", 0},
      {"Amount 1e999 Tint 5 -1 0x.8 Whole 99999999999", "0.5,0.25 0 2147483647 300 1,0,0.5 2 0", 3},
      {"Amount nan Flag yes Whole -inf Place inf ,5", "1.79769e+308,0 0 0 0 1,0.5,0 2 0", 2},
      {"Flag 7 Amount 0,5 Place 0.75", "0.75,0.25 1 0 0 1,0.5,0 2 0", 3},
      {"Amount", "0.5,0.25 0 0 2 1,0.5,0 2 0", 0},
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
    EXPECT_TRUE(set.parameters.LoadSettings("A", folder.path("p.cfg"), nullptr));
    EXPECT_EQ(set.values(), c.values);
  }
  PresetSet set;
  folder.write("p.cfg", "FileOwner Us name A Amount 1 NAME B Amount 9");
  EXPECT_TRUE(set.parameters.LoadSettings("A", folder.path("p.cfg"), nullptr));
  EXPECT_EQ(set.amount.value(), 1.0);
}

struct CommaPunctuation : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Presets, NumbersAreThoseOfTheProgramInEveryLocale) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
  EXPECT_EQ(presetNumber(-1234567.25), "-1234567.250000");
  EXPECT_EQ(presetNumber(1e-7), "0.000000");
  EXPECT_EQ(numberAt(presetNumber(DBL_MAX)), 1e240);
  EXPECT_EQ(presetNumber(HUGE_VAL) + presetNumber(std::nan("")), "0.0000000.000000");
  const std::pair<const char*, double> numbers[] = {
      {"1.5", 1.5},    {"+.5e1x", 5.0},      {"-0x1p-1", -0.5},  {"1,5", 1.0},
      {"1e-999", 0.0}, {"-1e999", -DBL_MAX}, {"nan", 0.0},       {"-inf", -DBL_MAX},
      {"--1", 0.0},    {"+-1", 0.0},         {"0x-1", 0.0},      {"", 0.0},
      {"0.1", 0.1},    {"-", 0.0},           {"5e-324", 5e-324}, {"1e", 1.0}};
  for (const auto& [text, number] : numbers) EXPECT_EQ(numberAt(text), number) << text;
  const std::pair<const char*, int> integers[] = {
      {"12.9", 12}, {"+7", 7}, {"-8x", -8}, {"99999999999", INT_MAX}, {"-99999999999", INT_MIN},
      {"x", 0},     {"", 0},   {"+-1", 0}};
  for (const auto& [text, number] : integers) EXPECT_EQ(integerAt(text), number) << text;

  const TestFolder folder;
  PresetSet set;
  set.place.SetValue(0.1234567, 12345.0);
  set.amount.SetValue(0.1);  // in single precision: 0.100000001490116
  set.parameters.SaveSettings("A", folder.path("p.cfg"), "Us");
  std::locale::global(before);
  EXPECT_NE(folder.read("p.cfg").find("Place 0.123457 12345.000000"), std::string::npos);
  set.amount.SetValue(123.456789);
  set.parameters.SaveSettings("A", folder.path("p.cfg"), "Us");
  EXPECT_NE(folder.read("p.cfg").find("Amount 123.456787"), std::string::npos);
}

int stepsToFault = 0;

bool faultInTurn(ReplaceStep) {
  return stepsToFault-- == 0;
}

// Every step of every kind of change fails in turn.
TEST(Presets, AChangeThatFailsLeavesTheOldFileAndAWarning) {
  const std::string old = "FileOwner Us\n\nname A\n\nname B\n" +
                          std::string(platform::replaceBlock, '\n') + "name C\nFlag 1\n";
  const TestFolder folder;
  const std::string path = folder.path("p.cfg");
  PresetSet set;
  pfParameters& parameters = set.parameters;
  std::string failure;
  const std::function<bool()> changes[] = {
      [&] { return parameters.SaveSettings("A", path, "Us", &failure); },
      [&] { return parameters.SaveSettings("New", path, "Us", &failure); },
      [&] { return parameters.DeleteSettings("A", path); }};
  platform::replaceFault = faultInTurn;
  for (const auto& change : changes) {
    int step = 0;
    for (;; ++step) {
      folder.write("p.cfg", old);
      const LogLines log;
      stepsToFault = step;
      failure.clear();
      const bool result = change();
      if (stepsToFault >= 0) break;
      const bool opened = step > 0;
      EXPECT_EQ(result, opened || &change != &changes[2]) << step;
      EXPECT_EQ(failure.empty(), &change == &changes[2]);
      EXPECT_EQ(folder.read("p.cfg"), old) << step;
      EXPECT_EQ(folder.fileCount(), 1) << step;
      const std::string warning =
          std::string(warningMarker) +
          (opened ? "Could not write file: '" : "Could not open file for writing: '") + path + "'";
      EXPECT_NE(log.text().find(warning), std::string::npos) << step << log.text();
    }
    EXPECT_EQ(step, 5);  // open, two blocks, flush, rename
    EXPECT_NE(folder.read("p.cfg"), old);
  }
  // A new file is there when it is complete.
  for (int step = 0; step < 4; ++step) {
    std::filesystem::remove(path);
    stepsToFault = step;
    EXPECT_TRUE(parameters.SaveSettings("A", path, "Us"));
    EXPECT_EQ(folder.fileCount(), 0);
  }
  platform::replaceFault = nullptr;
}

TEST(Presets, TheTraceTellsEachCall) {
  const LogLines log;
  std::string owner = "Us";
  Names names;
  PresetSet set;
  pfParameters& parameters = set.parameters;
  parameters.GetSettingNames("no/file", names, owner);
  parameters.SaveSettings("", "no/file", "Us");
  parameters.SaveSettings("A", ".", "Us");
  parameters.LoadSettings("A", "no/file", nullptr);
  parameters.DeleteSettings("A", "no/file");
  EXPECT_EQ(log.text(),
            "pfParmeters::GetSettingNames( strPath(no/file), lstNames(), strFilterName(Us) )\n"
            "    pfParmeters::IsSettingFileValid( strPath(no/file), strFilterName(Us) )\n"
            "        pfParmeters::IsSettingFileValid( return(1) )\n"
            "    pfParmeters::GetSettingNames( return(1) )\n"
            "pfParmeters::SaveSettings( strName(), strPath(no/file) )\n"
            "    pfParmeters::SaveSettings( return(0) )\n"
            "pfParmeters::SaveSettings( strName(A), strPath(.) )\n"
            "    pfParmeters::IsSettingFileValid( strPath(.), strFilterName(Us) )\n"
            "        pfParmeters::IsSettingFileValid( return(0) )\n"
            "    pfParmeters::SaveSettings( return(0) )\n"
            "pfParmeters::LoadSettings( strName(A), strPath(no/file), pFilter(0) )\n"
            "    -**### WARNING ###**-: Could not open file for reading: 'no/file'\n"
            "    pfParmeters::LoadSettings( return(0) )\n"
            "pfParmeters::DeleteSettings( strName(A), strPath(no/file) )\n"
            "    -**### WARNING ###**-: Could not open file for reading: 'no/file'\n"
            "    pfParmeters::DeleteSettings( return(0) )\n");
}

}  // namespace
}  // namespace radiashafts::test
