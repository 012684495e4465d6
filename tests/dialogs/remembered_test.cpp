// What the dialogs find again at the next opening: windows, check boxes, values.

#include <optional>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/user_registry.h"

namespace radiashafts::test {
namespace {

constexpr int intensityEdit = 1013;
constexpr int modeList = 1035;
constexpr int imageColorBox = 1076;

struct Place {
  LONG x, y, width, height;

  bool operator==(const Place&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Place& place) {
  return stream << place.x << ", " << place.y << ", " << place.width << " x " << place.height;
}

Place placeOf(HWND window) {
  RECT rect{};
  GetWindowRect(window, &rect);
  return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

// The window manager has the last word, and says it late.
Place settledPlace(HWND window) {
  Place last = placeOf(window);
  int steady = 0;
  eventually([&] {
    const Place now = placeOf(window);
    steady = now == last ? steady + 1 : 0;
    last = now;
    return steady >= 30;
  });
  return last;
}

Place storedPreviewPlace() {
  const auto number = [](const char* name) {
    const RegistryValue value = storedValue(name);
    std::int32_t number = -12345;
    if (value.type == REG_DWORD) memcpy(&number, value.bytes.data(), sizeof number);
    return static_cast<LONG>(number);
  };
  return {number("Preview Position X"), number("Preview Position Y"),
          number("Preview Position Width"), number("Preview Position Height")};
}

void storePreviewPlace(const Place& place) {
  storeValue("Preview Position X", numberValue(place.x));
  storeValue("Preview Position Y", numberValue(place.y));
  storeValue("Preview Position Width", numberValue(place.width));
  storeValue("Preview Position Height", numberValue(place.height));
}

// A run whose windows stay where the program puts them.
class Opening {
 public:
  explicit Opening(const std::string& input, const std::vector<std::string>& more = {})
      : host_(arguments(input, more)),
        panel_(DialogDriver::over(awaitDialog(host_.id(), "Radiashafts  V1.22"))) {
    preview_ = GetWindow(panel_.panel(), GW_OWNER);
    eventually([this] { return IsWindowVisible(preview_) != FALSE; });
    settledPlace(preview_);
    settledPlace(panel_.panel());
  }

  const DialogDriver& panel() const { return panel_; }
  const DialogDriver& panelInFront() const {
    panel_.takeFocus(intensityEdit);
    return panel_;
  }
  HWND preview() const { return preview_; }

  void tick(int box, bool wanted) const {
    panel_.clickOn(box);
    EXPECT_TRUE(eventually([&] { return panel_.isChecked(box) == wanted; })) << box;
  }

  int close(int button) {
    PostMessageA(panel_.panel(), WM_COMMAND, static_cast<WPARAM>(button), 0);
    return host_.exitCode();
  }
  std::string option(const char* name) { return host_.options()[name]; }

 private:
  static std::vector<std::string> arguments(const std::string& input,
                                            std::vector<std::string> more) {
    more.insert(more.end(), {"--dialog", input, (workFolder() / "out.png").string()});
    return more;
  }

  HostProgram host_;
  DialogDriver panel_;
  HWND preview_;
};

class Remembered : public DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    input_ = writePicture("in.png", placesPicture(96, 64));
  }

  std::string input_;
};

TEST_F(Remembered, WindowsComeBackWhereTheyStood) {
  Place panelPlace{};
  Place previewPlace{};
  {
    Opening first(input_);
    const Place panel = settledPlace(first.panel().panel());
    EXPECT_EQ(panel.x, 0);
    EXPECT_EQ(panel.y, 0);
    const int width = GetSystemMetrics(SM_CXFULLSCREEN) * 2 / 3;
    EXPECT_EQ(settledPlace(first.preview()),
              (Place{(GetSystemMetrics(SM_CXFULLSCREEN) - width) / 2,
                     (GetSystemMetrics(SM_CYFULLSCREEN) - width) / 2, width, width}));
    constexpr UINT flags = SWP_NOZORDER | SWP_NOACTIVATE;
    SetWindowPos(first.panel().panel(), nullptr, 40, 60, 0, 0, flags | SWP_NOSIZE);
    SetWindowPos(first.preview(), nullptr, 400, 150, 500, 450, flags);
    panelPlace = settledPlace(first.panel().panel());
    previewPlace = settledPlace(first.preview());
    EXPECT_NE(panelPlace, panel);
    EXPECT_EQ(first.close(IDCANCEL), 5);
  }
  EXPECT_EQ(storedValue("Interface Position X"), numberValue(panelPlace.x));
  EXPECT_EQ(storedValue("Interface Position Y"), numberValue(panelPlace.y));
  EXPECT_EQ(storedPreviewPlace(), previewPlace);
  EXPECT_EQ(storedValue("Preview State"), numberValue(SW_SHOWNORMAL));
  Opening second(input_);
  EXPECT_EQ(settledPlace(second.panel().panel()), panelPlace);
  EXPECT_EQ(settledPlace(second.preview()), previewPlace);
  EXPECT_EQ(second.close(IDOK), 0);
  EXPECT_EQ(storedPreviewPlace(), previewPlace);
}

TEST_F(Remembered, WindowsComeBackOntoTheScreen) {
  const int width = GetSystemMetrics(SM_CXVIRTUALSCREEN);
  const int height = GetSystemMetrics(SM_CYVIRTUALSCREEN);
  const auto store = [](LONG x, LONG y) {
    storeValue("Interface Position X", numberValue(x));
    storeValue("Interface Position Y", numberValue(y));
    storePreviewPlace({x, y, 333, 222});
  };
  store(width + 1, height + 500);
  {
    Opening beyond(input_);
    const Place panel = settledPlace(beyond.panel().panel());
    EXPECT_EQ(panel.x, width - 50);
    // The window manager may bring a window further in, to show its caption or all of it.
    EXPECT_LE(panel.y, height - 50);
    EXPECT_GE(panel.y, height - 100);
    const Place preview = settledPlace(beyond.preview());
    EXPECT_LE(preview.x, width - 50);
    EXPECT_GE(preview.x, width - 50 - preview.width);
    EXPECT_LE(preview.y, height - 50);
    EXPECT_GE(preview.y, height - 50 - preview.height);
    EXPECT_EQ(beyond.close(IDCANCEL), 5);
  }
  store(-1, -700);
  Opening before(input_);
  const Place panel = settledPlace(before.panel().panel());
  EXPECT_EQ(panel.x, 0);
  EXPECT_EQ(panel.y, 0);
  EXPECT_EQ(settledPlace(before.preview()), (Place{0, 0, 333, 222}));
  EXPECT_EQ(before.close(IDCANCEL), 5);
}

TEST_F(Remembered, AMaximizedPreviewKeepsTheSizeItHadBefore) {
  const Place restored{420, 130, 460, 380};
  storePreviewPlace(restored);
  {
    Opening user(input_);
    PostMessageA(user.preview(), WM_SYSCOMMAND, SC_MAXIMIZE, 0);
    EXPECT_TRUE(eventually([&] { return IsZoomed(user.preview()) != FALSE; }));
    EXPECT_EQ(user.close(IDCANCEL), 5);
  }
  EXPECT_EQ(storedValue("Preview State"), numberValue(SW_SHOWMAXIMIZED));
  EXPECT_EQ(storedPreviewPlace(), restored);
  Opening next(input_);
  EXPECT_TRUE(eventually([&] { return IsZoomed(next.preview()) != FALSE; }));
  EXPECT_GT(settledPlace(next.preview()).width, 1000);
  PostMessageA(next.preview(), WM_SYSCOMMAND, SC_RESTORE, 0);
  EXPECT_TRUE(eventually([&] { return IsZoomed(next.preview()) == FALSE; }));
  EXPECT_EQ(settledPlace(next.preview()), restored);
  EXPECT_EQ(next.close(IDCANCEL), 5);
  EXPECT_EQ(storedValue("Preview State"), numberValue(SW_SHOWNORMAL));
}

// The values of flags mean the opposite of their names.
TEST_F(Remembered, OkKeepsValuesAndBothButtonsKeepTheRest) {
  {
    Opening cancelled(input_);
    const DialogDriver& panel = cancelled.panelInFront();
    cancelled.tick(ID_HIDE_HANDLE, true);
    panel.replaceText(intensityEdit, "3.25");
    EXPECT_EQ(cancelled.close(IDCANCEL), 5);
  }
  EXPECT_EQ(storedValue("Interface HideHandle"), binaryValue('\0'));
  EXPECT_EQ(storedValue("Interface FixedPreview"), binaryValue('\1'));
  EXPECT_EQ(lastUsedValue("Intensity"), RegistryValue{});
  {
    Opening confirmed(input_, {"--intensity", "1.5"});
    const DialogDriver& panel = confirmed.panelInFront();
    EXPECT_TRUE(panel.isChecked(ID_HIDE_HANDLE));
    EXPECT_FALSE(panel.isChecked(ID_FIXED_PREVIEW));
    EXPECT_EQ(panel.text(intensityEdit), "1.5");
    confirmed.tick(ID_HIDE_HANDLE, false);
    confirmed.tick(ID_FIXED_PREVIEW, true);
    confirmed.tick(imageColorBox, false);
    panel.chooseEntry(modeList, 1);
    panel.replaceText(1031, "12");
    EXPECT_EQ(confirmed.close(IDOK), 0);
  }
  EXPECT_EQ(storedValue("Interface HideHandle"), binaryValue('\1'));
  EXPECT_EQ(storedValue("Interface FixedPreview"), binaryValue('\0'));
  EXPECT_EQ(lastUsedValue("Intensity"), binaryValue(1.5));
  EXPECT_EQ(lastUsedValue("Origin_X"), binaryValue(0.125));
  EXPECT_EQ(lastUsedValue("ColorHigh_blue"), binaryValue(1.0));
  EXPECT_EQ(lastUsedValue("Mode"), binaryValue(std::int32_t{2}));
  EXPECT_EQ(lastUsedValue("UseImageColor"), binaryValue('\0'));
  EXPECT_EQ(lastUsedValue("Randomize"), RegistryValue{});
  {
    Opening changed(input_, {"--intensity", "0.25", "--mode", "straight"});
    EXPECT_EQ(changed.panel().text(intensityEdit), "1.5");
    EXPECT_EQ(changed.panel().entry(modeList), 1);
    EXPECT_FALSE(changed.panel().isChecked(ID_HIDE_HANDLE));
    EXPECT_TRUE(changed.panel().isChecked(ID_FIXED_PREVIEW));
    changed.panel().replaceText(intensityEdit, "4");
    EXPECT_EQ(changed.close(IDCANCEL), 5);
    EXPECT_EQ(changed.option("--intensity"), "4");
  }
  Opening last(input_, {"--intensity", "0.25"});
  EXPECT_EQ(last.panel().text(intensityEdit), "1.5");
  EXPECT_EQ(last.close(IDOK), 0);
  EXPECT_EQ(last.option("--intensity"), "1.5");
}

TEST_F(Remembered, WhatIsNoValueOfOursLeavesTheProgramsOwn) {
  for (const char* name :
       {"Interface Position X", "Interface Position Y", "Preview Position X", "Preview Position Y",
        "Preview Position Width", "Preview Position Height", "Preview State"}) {
    storeValue(name, textValue("77"));
  }
  storeValue("Preset Path", textValue(std::string(3000, 'p')));
  storeValue("Interface HideHandle", numberValue(0));
  storeValue("Interface FixedPreview", {REG_BINARY, std::string(2, '\0')});
  storeValue("console", binaryValue('\1'));
  storeValue("logfile", binaryValue('x'));
  storeLastUsedValue("Intensity", binaryValue(7));
  storeLastUsedValue("Radius", textValue("1234567"));
  storeLastUsedValue("Origin_X", binaryValue(0.25));
  storeLastUsedValue("Mode", binaryValue(std::int32_t{3}));
  storeLastUsedValue("BlendMode", binaryValue(std::int32_t{0}));
  storeLastUsedValue("UseImageColor", numberValue(0));
  storeLastUsedValue("RayLength", binaryValue(0.75));
  Opening opening(input_);
  const DialogDriver& panel = opening.panel();
  const Place place = settledPlace(panel.panel());
  EXPECT_EQ(place.x, 0);
  EXPECT_EQ(place.y, 0);
  EXPECT_EQ(settledPlace(opening.preview()), (Place{200, 200, 400, 400}));
  EXPECT_EQ(IsWindowEnabled(panel.control(ID_SAVE_PRESET)), FALSE);
  EXPECT_FALSE(panel.isChecked(ID_HIDE_HANDLE) || panel.isChecked(ID_FIXED_PREVIEW));
  EXPECT_EQ(opening.close(IDOK), 0);
  EXPECT_EQ(opening.option("--intensity"), "2");
  EXPECT_EQ(opening.option("--radius"), "2");
  EXPECT_EQ(opening.option("--origin"), "0.5,0.5");
  EXPECT_EQ(opening.option("--mode"), "straight");
  EXPECT_EQ(opening.option("--use-image-color"), "on");
  EXPECT_EQ(opening.option("--ray-length"), "0.75");
  // What was no value of ours is one now.
  EXPECT_EQ(storedValue("Preset Path"), textValue(""));
  EXPECT_EQ(storedPreviewPlace(), (Place{200, 200, 400, 400}));
  EXPECT_EQ(lastUsedValue("Intensity"), binaryValue(2.0));
  EXPECT_EQ(lastUsedValue("BlendMode"), binaryValue(std::int32_t{3}));
}

}  // namespace
}  // namespace radiashafts::test
