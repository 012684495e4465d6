// The parameter dialog at every text scaling of the system. A process learns its scaling when it
// starts, so that each is looked at by a process of its own.

#include <windows.h>

#include <cstring>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

constexpr char desktopKey[] = "Control Panel\\Desktop";
constexpr char scalingValue[] = "LogPixels";

void setScaling(DWORD pixelsPerInch) {
  RegSetKeyValueA(HKEY_CURRENT_USER, desktopKey, scalingValue, REG_DWORD, &pixelsPerInch,
                  sizeof pixelsPerInch);
}

// Runs one of this program's tests; its exit code.
DWORD runTest(const char* name) {
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, sizeof program);
  std::string line = '"' + std::string(program) +
                     "\" --gtest_also_run_disabled_tests --gtest_brief=1 --gtest_filter=" + name;
  STARTUPINFOA start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                     &process) == FALSE) {
    return 1;
  }
  WaitForSingleObject(process.hProcess, 60000);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code;
}

SIZE textSize(HWND control, const char* text) {
  const HDC context = GetDC(control);
  const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(control, WM_GETFONT, 0, 0));
  const HGDIOBJ previous = SelectObject(context, font);
  SIZE size{};
  GetTextExtentPoint32A(context, text, static_cast<int>(std::strlen(text)), &size);
  SelectObject(context, previous);
  ReleaseDC(control, context);
  return size;
}

// What a control needs beside its text: a frame, or the box that is checked.
SIZE surround(HWND control, const std::string& windowClass) {
  const LONG style = GetWindowLongA(control, GWL_STYLE);
  const SIZE frame{2 * GetSystemMetrics(SM_CXEDGE), 2 * GetSystemMetrics(SM_CYEDGE)};
  if (windowClass != "Button") return windowClass == "Static" ? SIZE{0, 0} : frame;
  const bool isBox = (style & BS_TYPEMASK) == BS_AUTOCHECKBOX;
  return isBox ? SIZE{GetSystemMetrics(SM_CXMENUCHECK), 0} : frame;
}

void expectWhole(HWND dialog, HWND control) {
  char text[64] = "";
  char windowClass[64] = "";
  GetWindowTextA(control, text, sizeof text);
  GetClassNameA(control, windowClass, sizeof windowClass);
  RECT rect{};
  GetWindowRect(control, &rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
  RECT client{};
  GetClientRect(dialog, &client);
  const std::string name =
      std::string(windowClass) + ' ' + std::to_string(GetDlgCtrlID(control)) + ' ' + text;
  EXPECT_TRUE(rect.left >= 0 && rect.top >= 0 && rect.right <= client.right &&
              rect.bottom <= client.bottom)
      << name;
  if (text[0] == '\0') return;
  const SIZE needed = textSize(control, text);
  const SIZE around = surround(control, windowClass);
  EXPECT_LE(needed.cx + around.cx, rect.right - rect.left) << name;
  EXPECT_LE(needed.cy + around.cy, rect.bottom - rect.top) << name;
}

class Scaling : public DialogTest {
 protected:
  void TearDown() override {
    setScaling(USER_DEFAULT_SCREEN_DPI);
    DialogTest::TearDown();
  }
};

TEST_F(Scaling, LeavesEveryControlWhole) {
  for (const DWORD percent : {100, 125, 150, 200}) {
    setScaling(USER_DEFAULT_SCREEN_DPI * percent / 100);
    EXPECT_EQ(runTest("OneScaling.DISABLED_LeavesEveryControlWhole"), 0U) << percent << " %";
  }
}

class OneScaling : public DialogTest {};

TEST_F(OneScaling, DISABLED_LeavesEveryControlWhole) {
  const standin::Picture picture = forestPicture(600, 400);
  HostThread host(picture, scriptOf(judge::Values()));
  const DialogDriver dialogs(GetCurrentProcessId());
  ASSERT_TRUE(dialogs.isOpen());
  const HDC screen = GetDC(nullptr);
  const int scaling = GetDeviceCaps(screen, LOGPIXELSX) * 100 / USER_DEFAULT_SCREEN_DPI;
  ReleaseDC(nullptr, screen);
  DWORD wanted = 0;
  DWORD size = sizeof wanted;
  RegGetValueA(HKEY_CURRENT_USER, desktopKey, scalingValue, RRF_RT_REG_DWORD, nullptr, &wanted,
               &size);
  EXPECT_EQ(scaling, static_cast<int>(wanted * 100 / USER_DEFAULT_SCREEN_DPI));
  for (HWND control = GetWindow(dialogs.panel(), GW_CHILD); control != nullptr;
       control = GetWindow(control, GW_HWNDNEXT)) {
    expectWhole(dialogs.panel(), control);
  }
  saveScreenshot("scaling-" + std::to_string(scaling));
  dialogs.clickOn(IDCANCEL);
}

}  // namespace
}  // namespace radiashafts::test
