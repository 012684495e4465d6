// What a run leaves behind when its dialogs close, and the keyboard's way through them.

#include <fstream>
#include <functional>
#include <iterator>
#include <set>

#include "hostapi/filter_record.h"
#include "interface/win32/dialog_ids.h"
#include "parameters/effect_table.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"

namespace radiashafts::test {
namespace {

constexpr int intensityEdit = 1013;

std::string contents(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

class Run : public DialogTest {};

TEST_F(Run, OkWritesWhatTheCommandLineWrites) {
  standin::Picture words = placesPicture(150, 100, 16);
  standin::Picture floats = placesPicture(150, 100, 32);
  const struct {
    const char* input;
    const char* output;
    standin::Picture picture;
  } kinds[] = {{"bytes.png", "bytes-out.png", forestPicture(600, 400)},
               {"words.tif", "words-out.tif", words},
               {"floats.pfm", "floats-out.pfm", floats}};
  for (const auto& kind : kinds) {
    const std::string input = writePicture(kind.input, kind.picture);
    HostProgram host({"--dialog", input, path(kind.output)});
    DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    if (kind.picture.width == 600) saveScreenshot("dialogs");
    dialogs.replaceText(intensityEdit, "1.5");
    const RECT frame = dialogs.frame();
    click({(frame.left + frame.right) / 2 + 13, (frame.top + frame.bottom) / 2 - 7});
    dialogs.chooseEntry(1035, 1);
    dialogs.clickOn(1040);  // randomize
    EXPECT_TRUE(eventually([&] { return dialogs.text(intensityEdit) != "1.5"; }));
    dialogs.clickOn(IDOK);
    ASSERT_EQ(host.exitCode(), 0) << host.messages();

    std::vector<std::string> arguments;
    for (const auto& [name, value] : host.options()) {
      arguments.insert(arguments.end(), {name, value});
    }
    EXPECT_EQ(arguments.size(), 2 * 20U);
    const std::string again = path((std::string("again-") + kind.output).c_str());
    arguments.insert(arguments.end(), {input, again});
    HostProgram plain(arguments);
    ASSERT_EQ(plain.exitCode(), 0) << plain.messages();
    const standin::Picture written = readPicture(path(kind.output));
    EXPECT_EQ(written.bytes, readPicture(again).bytes) << kind.input;
    EXPECT_NE(written.bytes, readPicture(input).bytes) << kind.input;
  }
}

// Brings the preview to the front; the light moves along.
void activatePreview(const DialogDriver& dialogs) {
  click(dialogs.onScreen({3, 3}));
  EXPECT_TRUE(eventually([&] { return GetForegroundWindow() == dialogs.preview(); }));
}

TEST_F(Run, CancelLeavesTheOutputAloneAndHandsTheValuesBack) {
  const std::string input = writePicture("in.png", placesPicture(96, 64));
  const struct {
    const char* name;
    std::function<void(const DialogDriver&)> close;
  } ways[] = {
      {"button", [](const DialogDriver& dialogs) { dialogs.clickOn(IDCANCEL); }},
      {"escape",
       [](const DialogDriver& dialogs) {
         EXPECT_TRUE(pressKeyUntil(VK_ESCAPE, [&] { return dialogs.isClosed(); }));
       }},
      {"escape in the preview",
       [](const DialogDriver& dialogs) {
         activatePreview(dialogs);
         EXPECT_TRUE(pressKeyUntil(VK_ESCAPE, [&] { return dialogs.isClosed(); }));
       }},
      {"close the preview",
       [](const DialogDriver& dialogs) {
         activatePreview(dialogs);
         closeActiveWindow();
       }},
      {"close the dialog", [](const DialogDriver&) { closeActiveWindow(); }},
  };
  for (const auto& way : ways) {
    std::ofstream(path("out.png")) << "not touched";
    HostProgram host({"--dialog", input, path("out.png")});
    DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    dialogs.replaceText(intensityEdit, "3.25");
    way.close(dialogs);
    EXPECT_EQ(host.exitCode(), 5) << way.name;
    EXPECT_NE(host.messages().find("status -128"), std::string::npos) << host.messages();
    EXPECT_EQ(host.options()["--intensity"], "3.25") << way.name;
    EXPECT_EQ(contents(path("out.png")), "not touched") << way.name;
  }
}

TEST_F(Run, TabReachesEveryControl) {
  const standin::Picture picture = placesPicture(96, 64);
  HostThread host(picture, withoutRays());
  DialogDriver dialogs(GetCurrentProcessId());
  ASSERT_TRUE(dialogs.isOpen());
  EXPECT_TRUE(eventually([&] { return dialogs.focused() == dialogs.control(IDOK); }));
  dialogs.replaceText(intensityEdit, "1");  // so that there is something to undo
  std::set<int> reached;
  for (int i = 0; i < 80; ++i) {
    const HWND before = dialogs.focused();
    pressKey(VK_TAB);
    eventually([&] { return dialogs.focused() != before; }, 2000);
    reached.insert(GetDlgCtrlID(dialogs.focused()));
  }
  // Without a file of presets there is none to choose, to delete or to save to.
  std::set<int> expected{IDOK,     IDCANCEL,        ID_UNDO,          ID_ZOOM_IN,    ID_ZOOM_OUT,
                         ID_RESET, ID_OPEN_PRESETS, ID_FIXED_PREVIEW, ID_HIDE_HANDLE};
  for (const ParameterFacts& facts : effectTable) {
    if (facts.kind == ParameterKind::color) continue;  // the mouse's alone
    for (const int id : facts.controls) {
      if (id != 0) expected.insert(id);
    }
  }
  EXPECT_EQ(reached, expected);
  EXPECT_TRUE(pressKeyUntil(VK_ESCAPE, [&] { return dialogs.isClosed(); }));
  EXPECT_EQ(host.result().result.status, hostapi::userCanceledError);
}

TEST_F(Run, AboutTellsTitleVersionAndDescription) {
  std::thread user([] {
    const HWND box = awaitDialog(GetCurrentProcessId(), "About");
    if (box == nullptr) return;
    const DialogDriver about = DialogDriver::over(box);
    const std::string text = about.text(ID_ABOUT_TEXT);
    for (const char* part : {"Radiashafts", " v1.2.2\r", "Copyright (c)", "\nfull version"}) {
      EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
    }
    saveScreenshot("about");
    about.clickOn(IDOK);
    EXPECT_TRUE(eventually([box] { return IsWindow(box) == FALSE; }));
  });
  hostapi::AboutRecord record{};
  std::intptr_t data = 0;
  std::int16_t result = 1;
  moduleEntry()(hostapi::selectorAbout, &record, &data, &result);
  user.join();
  EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace radiashafts::test
