// The preset row, its prompts and its files.

#include <fstream>
#include <iterator>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"
#include "tests/dialogs/system_dialogs.h"
#include "tests/dialogs/user_registry.h"

namespace radiashafts::test {
namespace {

using Names = std::vector<std::string>;

constexpr int intensityEdit = 1013;

const Prompt overwritePrompt{
    "There already is a preset with that name.\nOverwrite it? ", {"Yes", "No"}, true};
const Prompt deletePrompt{"Really delete this preset?", {"Yes", "No"}, true};

// An entry with the program's own values but for the intensity.
std::string entry(const std::string& name, const std::string& intensity) {
  return "name " + name + "\r\nOrigin 0.500000 0.500000\r\nIntensity " + intensity +
         "\r\nRayLength 1.000000\r\nRadius 2.000000\r\nContrast 0.000000\r\n"
         "GammaCorrection 1.000000\r\nColorBalance 0.000000\r\nUseImageColor 1\r\n"
         "Hue 0.000000\r\nSaturation 0.000000\r\nLightness 0.000000\r\n"
         "SelectionLow 0.000000\r\nSelectionHigh 255.000000\r\nSelectionSoften 0.000000\r\n"
         "SelectionClimax 1.000000\r\nColorLow 1.000000 1.000000 1.000000\r\n"
         "ColorHigh 1.000000 1.000000 1.000000\r\nMode 1\r\nBlendMode 3\r\nSelectionShow 1\r\n";
}

class Presets : public DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    input_ = writePicture("in.png", picture_);
  }

  std::string write(const char* name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
  }

  static std::string read(const char* name) {
    std::ifstream stream(path(name), std::ios::binary);
    return stream ? std::string(std::istreambuf_iterator<char>(stream), {}) : "no file";
  }

  std::vector<std::string> withInterface(const char* output = "out.png") const {
    return {"--dialog", input_, path(output)};
  }

  // Which of combo, save, delete and open can be used.
  static std::string row(const DialogDriver& dialogs) {
    std::string enabled;
    for (const int id : {ID_PRESETS, ID_SAVE_PRESET, ID_DELETE_PRESET, ID_OPEN_PRESETS}) {
      enabled += IsWindowEnabled(dialogs.control(id)) != FALSE ? '1' : '0';
    }
    return enabled;
  }

  static Names names(const DialogDriver& dialogs) {
    Names names;
    const HWND combo = dialogs.control(ID_PRESETS);
    const LRESULT count = SendMessageA(combo, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
      wchar_t text[256] = L"";
      SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
      names.push_back(std::filesystem::path(text).string());
    }
    return names;
  }

  static bool shows(const DialogDriver& dialogs, const std::string& preset,
                    const std::string& intensity) {
    return eventually(
        [&] {
          return dialogs.text(ID_PRESETS) == preset && dialogs.text(intensityEdit) == intensity;
        },
        5000);
  }

  // The save as dialog, once its edit has all of the text selected.
  static DialogDriver askForName(const DialogDriver& dialogs) {
    const DialogDriver box = DialogDriver::over(awaitBox(dialogs, "save as", ID_SAVE_PRESET));
    EXPECT_TRUE(awaitSelectedName(box));
    return box;
  }

  static bool awaitSelectedName(const DialogDriver& box) {
    return eventually([&box] {
      const auto length = static_cast<LRESULT>(box.text(ID_SETTING_NAME).size());
      return SendMessageA(box.control(ID_SETTING_NAME), EM_GETSEL, 0, 0) ==
                 MAKELRESULT(0, length) &&
             box.focused() == box.control(ID_SETTING_NAME);
    });
  }

  static void type(const DialogDriver& box, const std::string& name) {
    typeText(name);
    EXPECT_TRUE(eventually([&] { return box.text(ID_SETTING_NAME) == name; }));
  }

  static bool closes(const DialogDriver& dialogs, const DialogDriver& box) {
    const bool closed = eventually([&box] { return box.isClosed(); });
    awaitPanel(dialogs);
    return closed;
  }

  static void saveAs(const DialogDriver& dialogs, const std::string& name) {
    const DialogDriver box = askForName(dialogs);
    type(box, name);
    pressKey(VK_RETURN);
    EXPECT_TRUE(closes(dialogs, box));
  }

  // Whether the preview shows the picture that went in, rays or none.
  bool showsNoRays(const DialogDriver& dialogs) const {
    const RECT frame = dialogs.frame();
    const LONG x = (frame.left + frame.right - picture_.width) / 2;
    const LONG y = (frame.top + frame.bottom - picture_.height) / 2;
    return screenPicture({x, y, x + picture_.width, y + picture_.height}).bytes == picture_.bytes;
  }
  bool comesToShowRays(const DialogDriver& dialogs, bool rays) const {
    return eventually([&] { return showsNoRays(dialogs) != rays; });
  }

  standin::Picture picture_ = forestPicture(96, 64);
  std::string input_;
};

TEST_F(Presets, LiveFromANewFileToTheLastDeletion) {
  HostProgram host(withInterface());
  const DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();
  EXPECT_EQ(row(dialogs), "0001");
  openPresets(dialogs, path("new.cfg"));
  ASSERT_TRUE(eventually([&] { return row(dialogs) == "1101"; })) << row(dialogs);
  EXPECT_EQ(read("new.cfg"), "no file");

  // A new name, first thought better of.
  dialogs.replaceText(intensityEdit, "3.5");
  DialogDriver box = askForName(dialogs);
  EXPECT_EQ(textsIn(box.panel(), "Static"), Names{"Enter a Setting Name:"});
  EXPECT_EQ(textsIn(box.panel(), "Button"), (Names{"OK", "Abbrechen"}));
  EXPECT_EQ(box.text(ID_SETTING_NAME), "");
  saveScreenshot("save-as");
  type(box, "a b");
  box.clickOn(IDCANCEL);
  EXPECT_TRUE(closes(dialogs, box));
  EXPECT_EQ(read("new.cfg"), "no file");
  saveAs(dialogs, "in the morning");
  EXPECT_TRUE(shows(dialogs, "in_the_morning", "3.5"));
  EXPECT_EQ(row(dialogs), "1111");
  const std::string header = "FileOwner Radiashafts\r\n";
  EXPECT_EQ(read("new.cfg"), header + "\r\n" + entry("in_the_morning", "3.500000"));

  // A second one, whose name comes first in the list, typed over the proposed one.
  dialogs.replaceText(intensityEdit, "0");
  box = askForName(dialogs);
  EXPECT_EQ(box.text(ID_SETTING_NAME), "in_the_morning");
  type(box, "Dark");
  pressKey(VK_RETURN);
  EXPECT_TRUE(closes(dialogs, box));
  EXPECT_TRUE(shows(dialogs, "Dark", "0"));
  EXPECT_EQ(names(dialogs), (Names{"Dark", "in_the_morning"}));

  // The name is taken: not that one, then yes. The old spelling stays.
  dialogs.replaceText(intensityEdit, "4");
  const std::string before = read("new.cfg");
  box = askForName(dialogs);
  type(box, "In The Morning");
  pressKey(VK_RETURN);
  EXPECT_EQ(answer(dialogs, "Overwrite Setting?", IDNO), overwritePrompt);
  EXPECT_EQ(IsWindowEnabled(dialogs.panel()), FALSE);
  EXPECT_TRUE(awaitSelectedName(box));
  EXPECT_EQ(box.text(ID_SETTING_NAME), "In_The_Morning");
  EXPECT_EQ(read("new.cfg"), before);
  box.clickOn(IDOK);
  EXPECT_EQ(answer(dialogs, "Overwrite Setting?", IDYES), overwritePrompt);
  EXPECT_TRUE(closes(dialogs, box));
  EXPECT_TRUE(shows(dialogs, "in_the_morning", "4"));
  EXPECT_EQ(names(dialogs), (Names{"Dark", "in_the_morning"}));
  EXPECT_EQ(read("new.cfg"),
            header + "\r\n" + entry("in_the_morning", "4.000000") + entry("Dark", "0.000000"));

  // Choosing loads, as one step, and renders.
  dialogs.chooseEntry(1035, 1);
  const auto ownState = dialogs.state();
  dialogs.hideHandle();
  EXPECT_TRUE(comesToShowRays(dialogs, true));
  dialogs.chooseEntry(ID_PRESETS, 0);
  EXPECT_TRUE(shows(dialogs, "Dark", "0"));
  EXPECT_TRUE(comesToShowRays(dialogs, false));
  EXPECT_EQ(dialogs.entry(1035), 0);
  dialogs.clickOn(ID_UNDO);
  EXPECT_TRUE(eventually([&] { return dialogs.state() == ownState; }));
  EXPECT_TRUE(comesToShowRays(dialogs, true));
  dialogs.clickOn(ID_REDO);
  EXPECT_TRUE(eventually([&] { return dialogs.text(intensityEdit) == "0"; }));
  EXPECT_TRUE(comesToShowRays(dialogs, false));

  // Deleting asks, and loads what came next in the list without a render.
  EXPECT_EQ(answer(dialogs, "Delete Preset?", IDNO, ID_DELETE_PRESET), deletePrompt);
  EXPECT_TRUE(shows(dialogs, "Dark", "0"));
  EXPECT_EQ(names(dialogs).size(), 2U);
  EXPECT_EQ(answer(dialogs, "Delete Preset?", IDYES, ID_DELETE_PRESET), deletePrompt);
  EXPECT_TRUE(shows(dialogs, "in_the_morning", "4"));
  EXPECT_EQ(names(dialogs), Names{"in_the_morning"});
  EXPECT_EQ(read("new.cfg"), header + "\r\n" + entry("in_the_morning", "4.000000"));
  EXPECT_FALSE(eventually([&] { return !showsNoRays(dialogs); }, 500));
  EXPECT_EQ(answer(dialogs, "Delete Preset?", IDYES, ID_DELETE_PRESET), deletePrompt);
  EXPECT_TRUE(eventually([&] { return row(dialogs) == "1101"; })) << row(dialogs);
  EXPECT_TRUE(shows(dialogs, "", "4"));
  EXPECT_EQ(read("new.cfg"), header);
  dialogs.clickOn(IDOK);
  EXPECT_EQ(host.exitCode(), 0) << host.messages();
  EXPECT_EQ(host.options()["--intensity"], "4");
}

TEST_F(Presets, WhatIsNotAFileOfOursIsToldAndTheOldOneStays) {
  write("ours.cfg", "FileOwner Radiashafts\r\n\r\nname Mine\r\nIntensity 1\r\n");
  write("theirs.cfg", "FileOwner Softblooms\r\n\r\nname Theirs\r\nIntensity 1\r\n");
  write("text.cfg", "name Nobodys\r\nIntensity 1\r\n");
  {
    HostProgram host(withInterface());
    const DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    openPresets(dialogs, path("ours.cfg"));
    EXPECT_TRUE(eventually([&] { return row(dialogs) == "1111"; })) << row(dialogs);
    openPresets(dialogs, path("theirs.cfg"));
    EXPECT_EQ(
        answer(dialogs, "Error", IDOK),
        (Prompt{"The selected settings file belongs to the Filter: Softblooms", {"OK"}, true}));
    openPresets(dialogs, path("text.cfg"));
    EXPECT_EQ(answer(dialogs, "Error", IDOK),
              (Prompt{"The file you selected is no valid Settingsfile.", {"OK"}, true}));
    EXPECT_EQ(names(dialogs), Names{"Mine"});
    EXPECT_EQ(dialogs.entry(ID_PRESETS), -1);
    dialogs.clickOn(IDCANCEL);
    EXPECT_EQ(host.exitCode(), 5);
    EXPECT_EQ(storedValue("Preset Path"), textValue(path("ours.cfg")));
  }
  // Meanwhile the remembered file goes, or another filter claims it.
  for (const bool claimed : {false, true}) {
    std::filesystem::remove(path("ours.cfg"));
    if (claimed) write("ours.cfg", "FileOwner Softblooms\r\n");
    HostProgram host(withInterface());
    const DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    EXPECT_EQ(row(dialogs), claimed ? "0001" : "1101");
    dialogs.clickOn(IDCANCEL);
    EXPECT_EQ(host.exitCode(), 5);
    EXPECT_EQ(storedValue("Preset Path"), textValue(claimed ? "" : path("ours.cfg")));
  }
}

TEST_F(Presets, TheInterfacesEndIsNoYesToAnyPrompt) {
  const std::string content =
      "FileOwner Radiashafts\r\n\r\nname Mine\r\nIntensity 1\r\n\r\nname Next\r\nIntensity 2\r\n";
  storeValue("Preset Path", textValue(write("ours.cfg", content)));
  for (const int button : {ID_SAVE_PRESET, ID_DELETE_PRESET}) {
    HostProgram host(withInterface());
    const DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    dialogs.chooseEntry(ID_PRESETS, 0);
    EXPECT_TRUE(shows(dialogs, "Mine", "1"));
    dialogs.replaceText(intensityEdit, "3");
    ASSERT_NE(awaitBox(dialogs, button == ID_SAVE_PRESET ? "save as" : "Delete Preset?", button),
              nullptr);
    click(dialogs.onScreen({3, 3}));
    EXPECT_TRUE(eventually([&] { return GetForegroundWindow() == dialogs.preview(); }));
    EXPECT_TRUE(pressKeyUntil(VK_ESCAPE, [&] { return dialogs.isClosed(); }));
    EXPECT_EQ(host.exitCode(), 5) << host.messages();
    EXPECT_EQ(read("ours.cfg"), content);
  }
}

TEST_F(Presets, AreTheSameForTheDialogsAndTheCommandLine) {
  storeValue("Preset Path", textValue(path("shared.cfg")));
  {
    HostProgram plain({"--save-preset", path("shared.cfg") + ":typed", "--intensity", "0.8",
                       "--mode", "smooth", "--color-high", "0.25,0.5,1"});
    EXPECT_EQ(plain.exitCode(), 0) << plain.messages();
  }
  {
    HostProgram host(withInterface("dialogs.png"));
    const DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    EXPECT_EQ(names(dialogs), Names{"typed"});
    EXPECT_EQ(dialogs.text(ID_PRESETS), "");
    dialogs.chooseEntry(ID_PRESETS, 0);
    EXPECT_TRUE(shows(dialogs, "typed", "0.8"));
    EXPECT_EQ(dialogs.entry(1035), 1);
    dialogs.replaceText(1031, "12");
    dialogs.replaceText(1030, "0.37");
    saveAs(dialogs, "from the dialogs");
    EXPECT_TRUE(shows(dialogs, "from_the_dialogs", "0.8"));
    dialogs.clickOn(IDOK);
    EXPECT_EQ(host.exitCode(), 0) << host.messages();
  }
  HostProgram plain(
      {"--preset", path("shared.cfg") + ":from_the_dialogs", input_, path("plain.png")});
  EXPECT_EQ(plain.exitCode(), 0) << plain.messages();
  const auto written = readPicture(path("dialogs.png")).bytes;
  EXPECT_EQ(readPicture(path("plain.png")).bytes, written);
  EXPECT_NE(readPicture(input_).bytes, written);
}

}  // namespace
}  // namespace radiashafts::test
