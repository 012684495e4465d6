#include "tests/dialogs/system_dialogs.h"

#include <algorithm>
#include <ostream>

#include "interface/win32/dialog_ids.h"

namespace radiashafts::test {
namespace {

// Of the system's chooser of files: an edit, or a list with one in it.
constexpr int fileNameEdit = 0x480;
constexpr int fileNameList = 0x47c;

DWORD processOf(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  return process;
}

std::string textOf(HWND window) {
  char text[512] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

HWND editOf(HWND control) {
  HWND edit = control;
  const auto take = [](HWND child, LPARAM found) {
    char name[16] = "";
    GetClassNameA(child, name, sizeof name);
    if (std::string(name) != "Edit") return TRUE;
    *reinterpret_cast<HWND*>(found) = child;
    return FALSE;
  };
  EnumChildWindows(control, take, reinterpret_cast<LPARAM>(&edit));
  return edit;
}

bool isGone(HWND window, unsigned milliseconds) {
  return eventually([window] { return IsWindow(window) == FALSE; }, milliseconds);
}

}  // namespace

std::vector<std::string> textsIn(HWND dialog, const char* windowClass) {
  std::vector<std::string> texts;
  for (HWND child = nullptr;
       (child = FindWindowExA(dialog, child, windowClass, nullptr)) != nullptr;) {
    std::string text = textOf(child);
    std::erase(text, '&');
    if (IsWindowVisible(child) != FALSE && !text.empty()) texts.push_back(text);
  }
  return texts;
}

std::ostream& operator<<(std::ostream& stream, const Prompt& prompt) {
  stream << '"' << prompt.text << '"';
  for (const std::string& button : prompt.buttons) stream << " [" << button << ']';
  return stream << (prompt.isOverPanel ? " over the dialog" : " by itself");
}

HWND awaitBox(const DialogDriver& dialogs, const std::string& caption, int button) {
  HWND box = nullptr;
  const auto isThere = [&] {
    box = FindWindowA("#32770", caption.c_str());
    return box != nullptr && IsWindowVisible(box) != FALSE &&
           processOf(box) == processOf(dialogs.panel());
  };
  const bool found = eventually([&] {
    if (button != 0) dialogs.clickOn(button);
    return eventually(isThere, 2000);
  });
  if (!found) return nullptr;
  RECT last{};
  int steady = 0;
  eventually([&] {
    RECT now{};
    GetWindowRect(box, &now);
    steady = EqualRect(&now, &last) != FALSE ? steady + 1 : 0;
    last = now;
    return steady >= 20;
  });
  return box;
}

void awaitPanel(const DialogDriver& dialogs) {
  if (IsWindowEnabled(dialogs.panel()) == FALSE) return;
  eventually(
      [&] {
        if (GetForegroundWindow() != dialogs.panel()) SetForegroundWindow(dialogs.panel());
        Sleep(20);
        return GetForegroundWindow() == dialogs.panel();
      },
      2000);
}

Prompt answer(const DialogDriver& dialogs, const std::string& caption, int button, int pressed) {
  const HWND box = awaitBox(dialogs, caption, pressed);
  if (box == nullptr) return {"no prompt", {}};
  Prompt prompt;
  for (const std::string& text : textsIn(box, "Static")) prompt.text += text;
  prompt.buttons = textsIn(box, "Button");
  prompt.isOverPanel = GetWindow(box, GW_OWNER) == dialogs.panel() &&
                       IsWindowEnabled(dialogs.panel()) == FALSE && textOf(box) == caption;
  const bool gone = eventually([&] {
    DialogDriver::over(box).clickOn(button);
    return isGone(box, 1000);
  });
  if (!gone) prompt.text += " that stays";
  awaitPanel(dialogs);
  return prompt;
}

void openPresets(const DialogDriver& dialogs, const std::string& path) {
  const HWND box = awaitBox(dialogs, "Open Presets File", ID_OPEN_PRESETS);
  if (box == nullptr) return;
  const HWND list = GetDlgItem(box, fileNameList);
  const HWND edit = list == nullptr ? GetDlgItem(box, fileNameEdit) : editOf(list);
  eventually([&] {
    RECT area{};
    GetWindowRect(edit, &area);
    click({(area.left + area.right) / 2, (area.top + area.bottom) / 2});
    return eventually([&] { return DialogDriver::over(box).focused() == edit; }, 500);
  });
  pressKey(VK_END);
  pressKey(VK_HOME, true);
  typeText(path);
  eventually([&] { return textOf(edit) == path; });
  pressKeyUntil(VK_RETURN, [box] { return IsWindow(box) == FALSE; });
}

}  // namespace radiashafts::test
