// The preset row of the parameter dialog over a file, with its controls and prompts played.

#include "interface/model/preset_row.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "interface/model/preset_path.h"
#include "parameters/preset_file.h"
#include "tests/support/fake_interface.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

// A sorted combo box, and a user with answers.
struct FakePresetControls final : PresetControls {
  int selectedPreset() const override { return selected; }
  std::optional<std::string> presetName(int index) const override { return names.at(index); }
  std::string shownPreset() const override { return selected < 0 ? "" : names.at(selected); }
  void clearPresets() override { names.clear(), selected = -1; }
  void addPreset(const std::string& name) override {
    names.insert(std::upper_bound(names.begin(), names.end(), name), name);
  }
  int findPreset(const std::string& name) const override {
    const auto found = std::find_if(names.begin(), names.end(), [&name](const std::string& other) {
      return equalsIgnoringCase(name, other);
    });
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
  }
  void selectPreset(int index) override {
    selected = index < static_cast<int>(names.size()) ? index : -1;
  }
  void enablePresets(bool choosing, bool saving, bool deleting) override {
    enabled = std::string(choosing ? "c" : "") + (saving ? "s" : "") + (deleting ? "d" : "");
  }
  const void* presetWindow() const override { return this; }
  std::optional<std::string> choosePresetFile(const std::string&) override { return chosenPath; }
  std::string askPresetName(const std::string&) override { return typed; }
  bool confirm(const char*, const char*) override { return ++asked, confirms; }
  void showError(const std::string& text, const char*) override { complaint = text; }

  std::vector<std::string> names;
  int selected = -1, asked = 0;
  std::string enabled, typed, complaint;
  std::optional<std::string> chosenPath;
  bool confirms = true;
};

struct PresetRowTest : testing::Test, TestFolder {
  PresetRowTest() {
    filter.parameters.Add(&amount);
    filter.undoHistory.bEnabled = true;
    amount.SetName("Amount");
    row.open(&filter);
    write("p.cfg", "FileOwner fake name B Amount 2 name C Amount 3 name A Amount 1");
    choose("p.cfg");
  }
  void choose(const char* name) {
    controls.chosenPath = path(name);
    row.OnChangeSettingFile();
  }
  pfParameterFloat amount;
  FakeFilter filter;
  FakePresetControls controls;
  PresetRow row{controls};
};

TEST_F(PresetRowTest, AfterADeletionTheNeighbourIsSelectedAndLoaded) {
  EXPECT_EQ(controls.enabled, "csd");
  controls.selectPreset(1);
  row.OnSelectSetting();
  EXPECT_EQ(controls.shownPreset(), "B");  // the list is a new one
  EXPECT_EQ(amount.value(), 2.0);
  controls.confirms = false;
  row.OnDeleteSetting();
  EXPECT_EQ(controls.names.size(), 3U);
  controls.confirms = true;
  row.OnDeleteSetting();
  EXPECT_EQ(controls.shownPreset() + controls.names.at(1), "AC");
  EXPECT_EQ(amount.value(), 1.0);
  row.OnDeleteSetting();  // of the first one: the next
  EXPECT_EQ(controls.shownPreset(), "C");
  EXPECT_EQ(amount.value(), 3.0);
  EXPECT_EQ(filter.undoHistory.nGroup, 3);
  row.OnDeleteSetting();
  EXPECT_EQ(controls.enabled + controls.shownPreset(), "cs");
}

TEST_F(PresetRowTest, ASavedNameIsSelectedAndAnotherOnlyReplacedWhenTheUserAgrees) {
  amount.SetValue(7.0);
  controls.typed = "Bb";
  row.OnSaveSetting();
  EXPECT_EQ(controls.shownPreset(), "Bb");
  EXPECT_EQ(row.confirmName("new one"), "new_one");
  EXPECT_EQ(controls.asked, 0);
  controls.confirms = false;
  EXPECT_EQ(row.confirmName("BB"), std::nullopt);
  row.setPath(path("no folder/p.cfg"));
  row.OnSaveSetting();
  EXPECT_NE(controls.complaint.find("could not be saved"), std::string::npos);
}

TEST_F(PresetRowTest, AFileThatIsNotOursIsToldAndTheOldOneStays) {
  write("theirs.cfg", "FileOwner Them");
  write("text.cfg", "text");
  choose("theirs.cfg");
  EXPECT_NE(controls.complaint.find("belongs to the Filter: Them"), std::string::npos);
  choose("text.cfg");
  EXPECT_NE(controls.complaint.find("no valid"), std::string::npos);
  EXPECT_EQ(row.path(), path("p.cfg"));
  choose("new.cfg");
  EXPECT_EQ(controls.enabled, "cs");
}

TEST(PresetPath, IsKeptInAFormThatTheStoreHolds) {
  const std::string longest(255, 'x');
  EXPECT_EQ(presetPath("long name", "LONGNA~1").text, "long name");
  EXPECT_EQ(presetPath(longest, "X~1").text, longest);
  EXPECT_EQ(presetPath(std::nullopt, "LONGNA~1").text, "LONGNA~1");
  for (const auto& chosen : {std::optional(longest + 'x'), std::optional<std::string>()}) {
    const PresetPath refused = presetPath(chosen, chosen ? chosen : std::nullopt);
    EXPECT_EQ(refused.text, "");
    EXPECT_NE(std::string(refused.fault).find(chosen ? "too long" : "code page"),
              std::string::npos);
  }
}

}  // namespace
}  // namespace radiashafts::test
