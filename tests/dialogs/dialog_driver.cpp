#include "tests/dialogs/dialog_driver.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include <commctrl.h>

#include "interface/win32/dialog_ids.h"
#include "parameters/effect_table.h"
#include "tests/dialogs/screen.h"

namespace radiashafts::test {
namespace {

constexpr int edge = 8;  // of an open list, and where to press in it

struct Search {
  DWORD process;
  std::string windowClass;
  std::string caption;
  HWND found = nullptr;
};

BOOL CALLBACK compare(HWND window, LPARAM parameter) {
  auto* search = reinterpret_cast<Search*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != search->process || IsWindowVisible(window) == FALSE) return TRUE;
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  if (name != search->windowClass) return TRUE;
  char caption[128] = "";
  GetWindowTextA(window, caption, sizeof caption);
  if (std::string(caption).rfind(search->caption, 0) != 0) return TRUE;
  search->found = window;
  return FALSE;
}

HWND awaitWindow(Search search) {
  eventually([&search] {
    EnumWindows(compare, reinterpret_cast<LPARAM>(&search));
    return search.found != nullptr;
  });
  return search.found;
}

RECT windowRect(HWND window) {
  RECT rect{};
  GetWindowRect(window, &rect);
  return rect;
}

// The window manager has the last word on the place, and says it late.
void place(HWND window, int x, int y, SIZE size) {
  const UINT resize = size.cx == 0 ? SWP_NOSIZE : 0;
  SetWindowPos(window, HWND_TOP, x, y, size.cx, size.cy, SWP_NOACTIVATE | resize);
  RECT last{};
  int steady = 0;
  eventually([&] {
    const RECT now = windowRect(window);
    steady = EqualRect(&now, &last) != FALSE ? steady + 1 : 0;
    last = now;
    return steady >= 20;
  });
}

// Memory of another process, to have its controls answer by rectangle.
RECT askForRect(HWND control, UINT message) {
  DWORD process = 0;
  GetWindowThreadProcessId(control, &process);
  const HANDLE handle = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ, FALSE, process);
  void* memory =
      VirtualAllocEx(handle, nullptr, sizeof(RECT), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  SendMessageA(control, message, 0, reinterpret_cast<LPARAM>(memory));
  RECT rect{};
  ReadProcessMemory(handle, memory, &rect, sizeof rect, nullptr);
  VirtualFreeEx(handle, memory, 0, MEM_RELEASE);
  CloseHandle(handle);
  return rect;
}

POINT middleOf(const RECT& rect) {
  return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

}  // namespace

HWND awaitDialog(DWORD process, const std::string& caption) {
  return awaitWindow({process, "#32770", caption});
}

DialogDriver::DialogDriver(DWORD process, SIZE previewSize) {
  const HWND panel = awaitDialog(process, "Radiashafts  V1.22");
  if (panel == nullptr) return;
  const HWND preview = GetWindow(panel, GW_OWNER);
  if (!eventually([preview] { return IsWindowVisible(preview) != FALSE; })) return;
  place(preview, 400, 40, previewSize);
  place(panel, 20, 40, {});
  panel_ = panel;
  preview_ = preview;
  activate();
}

DialogDriver DialogDriver::over(HWND dialog) {
  DialogDriver driver;
  driver.panel_ = dialog;
  return driver;
}

void DialogDriver::activate() const {
  eventually([this] {
    if (GetForegroundWindow() != panel_) SetForegroundWindow(panel_);
    Sleep(20);
    return GetForegroundWindow() == panel_;
  });
}

std::string DialogDriver::text(int id) const {
  char text[128] = "";
  SendMessageA(control(id), WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

double DialogDriver::number(int id) const {
  const std::string shown = text(id);
  char* end = nullptr;
  const double value = std::strtod(shown.c_str(), &end);
  return end == shown.c_str() || *end != '\0' ? std::numeric_limits<double>::quiet_NaN() : value;
}

int DialogDriver::sliderPosition(int id) const {
  return static_cast<int>(ask(id, TBM_GETPOS));
}

int DialogDriver::entry(int id) const {
  return static_cast<int>(ask(id, CB_GETCURSEL));
}

bool DialogDriver::isChecked(int id) const {
  return ask(id, BM_GETCHECK) == BST_CHECKED;
}

COLORREF DialogDriver::swatch(int id) const {
  return screenPixel(middleOf(id));
}

std::map<std::string, std::string> DialogDriver::state() const {
  std::map<std::string, std::string> state;
  for (const ParameterFacts& facts : effectTable) {
    std::string& shown = state[facts.name];
    const auto [first, second] = facts.controls;
    switch (facts.kind) {
      case ParameterKind::position:
        shown = text(first) + " " + text(second);
        break;
      case ParameterKind::number:
        shown = text(first) + " " + std::to_string(sliderPosition(second));
        break;
      case ParameterKind::boolean:
        shown = isChecked(first) ? "on" : "off";
        break;
      case ParameterKind::list:
        shown = std::to_string(entry(first));
        break;
      case ParameterKind::color:
        shown = std::to_string(swatch(first));
        break;
    }
  }
  return state;
}

POINT DialogDriver::middleOf(int id) const {
  return test::middleOf(windowRect(control(id)));
}

void DialogDriver::clickOn(int id, Button button) const {
  click(middleOf(id), button);
}

HWND DialogDriver::focused() const {
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  GetGUIThreadInfo(GetWindowThreadProcessId(panel_, nullptr), &info);
  return info.hwndFocus;
}

void DialogDriver::takeFocus(int id) const {
  for (const ParameterFacts& facts : effectTable) {
    if (facts.kind != ParameterKind::number || facts.controls[1] != id) continue;
    // The key goes to whoever has the focus, so it is pressed only once the edit has it.
    eventually([&] {
      takeFocus(facts.controls[0]);
      pressKey(VK_TAB, true);
      return eventually([&] { return focused() == control(id); }, 500);
    });
    return;
  }
  activate();
  if (focused() == control(id)) return;
  clickOn(id);
  eventually([&] { return focused() == control(id); });
  char name[16] = "";
  GetClassNameA(control(id), name, sizeof name);
  if (std::string(name) != "ComboBox") return;
  eventually([&] { return ask(id, CB_GETDROPPEDSTATE) != 0; });
  clickOn(id);
  eventually([&] { return ask(id, CB_GETDROPPEDSTATE) == 0; });
}

void DialogDriver::replaceText(int id, const std::string& text) const {
  takeFocus(id);
  pressKey(VK_END);
  pressKey(VK_HOME, true);
  typeText(text);
  eventually([&] { return this->text(id) == text; });
}

void DialogDriver::dragThumb(int id, int position) const {
  const HWND slider = control(id);
  const RECT area = windowRect(slider);
  const RECT channel = askForRect(slider, TBM_GETCHANNELRECT);
  const RECT thumb = askForRect(slider, TBM_GETTHUMBRECT);
  const int lowest = static_cast<int>(ask(id, TBM_GETRANGEMIN));
  const int highest = static_cast<int>(ask(id, TBM_GETRANGEMAX));
  const int thumbWidth = thumb.right - thumb.left;
  const int way = channel.right - channel.left - thumbWidth;
  const POINT from = test::middleOf(thumb);
  const LONG x =
      channel.left + thumbWidth / 2 + MulDiv(position - lowest, way, std::max(highest - lowest, 1));
  drag({area.left + from.x, area.top + from.y}, {area.left + x, area.top + from.y});
}

void DialogDriver::chooseEntry(int id, int index) const {
  activate();
  clickOn(id);
  if (!eventually([&] { return ask(id, CB_GETDROPPEDSTATE) != 0; })) return;
  DWORD process = 0;
  GetWindowThreadProcessId(panel_, &process);
  const HWND list = awaitWindow({process, "ComboLBox", ""});
  const auto height = static_cast<int>(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0));
  const auto top = static_cast<int>(SendMessageA(list, LB_GETTOPINDEX, 0, 0));
  const RECT area = windowRect(list);
  click({area.left + edge, area.top + 1 + (index - top) * height + height / 2});
  eventually([&] { return ask(id, CB_GETDROPPEDSTATE) == 0; });
}

RECT DialogDriver::frame() const {
  return windowRect(GetDlgItem(preview_, ID_PREVIEW_FRAME));
}

POINT DialogDriver::onScreen(POINT point) const {
  const RECT area = frame();
  return {area.left + point.x, area.top + point.y};
}

bool DialogDriver::zoomTo(const std::string& percentage) const {
  const auto wanted = std::strtod(percentage.c_str(), nullptr);
  return eventually([&] {
    const std::string before = text(ID_PERCENTAGE);
    if (before == percentage) return true;
    clickOn(std::strtod(before.c_str(), nullptr) < wanted ? ID_ZOOM_IN : ID_ZOOM_OUT);
    eventually([&] { return text(ID_PERCENTAGE) != before; }, 5000);
    return false;
  });
}

void DialogDriver::hideHandle() const {
  if (!isChecked(ID_HIDE_HANDLE)) clickOn(ID_HIDE_HANDLE);
  eventually([this] { return isChecked(ID_HIDE_HANDLE); });
}

}  // namespace radiashafts::test
