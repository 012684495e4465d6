// What a user does and sees: mouse and keyboard through the system, windows, pixels of the screen.
#pragma once

#include <windows.h>

#include <filesystem>
#include <map>
#include <string>

#include "standin/picture_file.h"

namespace radiashafts::test {

// Asks again and again; false when it has not held within the limit.
template <class Condition>
bool eventually(const Condition& condition, unsigned seconds = 120) {
  for (const ULONGLONG end = GetTickCount64() + seconds * 1000ULL; !condition(); Sleep(5)) {
    if (GetTickCount64() > end) return false;
  }
  return true;
}

inline void sendMouse(DWORD flags, POINT point = {}) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi = {point.x, point.y, 0, flags, 0, 0};
  SendInput(1, &input, sizeof input);
}

// Points are the screen's. The display's own pointer follows late: it has to stay for a moment.
inline void moveMouse(POINT to) {
  const auto absolute = [](LONG position, int metric) {
    return static_cast<LONG>((position * 65536LL + 32768) / GetSystemMetrics(metric));
  };
  int steady = 0;
  eventually([&] {
    POINT now{};
    GetCursorPos(&now);
    steady = now.x == to.x && now.y == to.y ? steady + 1 : 0;
    if (steady == 0) {
      sendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE,
                {absolute(to.x, SM_CXSCREEN), absolute(to.y, SM_CYSCREEN)});
    }
    return steady == 4;
  });
}

// A click where both are the same place.
inline void drag(POINT from, POINT to, bool right = false) {
  moveMouse(from);
  sendMouse(right ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_LEFTDOWN);
  constexpr int steps = 4;
  for (int i = 1; i <= steps && (from.x != to.x || from.y != to.y); ++i) {
    moveMouse({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
  }
  sendMouse(right ? MOUSEEVENTF_RIGHTUP : MOUSEEVENTF_LEFTUP);
}

inline void sendKey(WORD key, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  const bool isCharacter = (flags & KEYEVENTF_UNICODE) != 0;
  // Cursor keys without this are those of the number block, which the shift key changes.
  if (!isCharacter && key >= VK_PRIOR && key <= VK_DELETE) flags |= KEYEVENTF_EXTENDEDKEY;
  input.ki = {isCharacter ? WORD{0} : key, isCharacter ? key : WORD{0}, flags, 0, 0};
  SendInput(1, &input, sizeof input);
}

// By its name, perhaps with another held down: "Tab", "Shift+Tab".
inline void pressKey(const std::string& name) {
  static const std::map<std::string, WORD> keys{
      {"Alt", VK_MENU},    {"Down", VK_DOWN},     {"End", VK_END},     {"Enter", VK_RETURN},
      {"F4", VK_F4},       {"Home", VK_HOME},     {"Left", VK_LEFT},   {"PageDown", VK_NEXT},
      {"Space", VK_SPACE}, {"Escape", VK_ESCAPE}, {"Right", VK_RIGHT}, {"Shift", VK_SHIFT},
      {"Tab", VK_TAB},     {"Up", VK_UP}};
  const std::size_t plus = name.find('+');
  const WORD held = plus == std::string::npos ? WORD{0} : keys.at(name.substr(0, plus));
  const WORD key = keys.at(name.substr(plus + 1));
  if (held != 0) sendKey(held, 0);
  sendKey(key, 0);
  sendKey(key, KEYEVENTF_KEYUP);
  if (held != 0) sendKey(held, KEYEVENTF_KEYUP);
}

inline void typeText(const std::string& text) {
  for (const char character : text) {
    sendKey(static_cast<unsigned char>(character), KEYEVENTF_UNICODE);
    sendKey(static_cast<unsigned char>(character), KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
  }
}

inline std::string textOf(HWND window) {
  char text[512] = "";
  SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

inline std::string classOf(HWND window) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  return name;
}

inline RECT rectOf(HWND window) {
  RECT rect{};
  GetWindowRect(window, &rect);
  return rect;
}

// Once the window stays where it is: the window manager may move it late.
inline RECT settledRect(HWND window) {
  RECT last = rectOf(window);
  int steady = 0;
  eventually([&] {
    const RECT now = rectOf(window);
    steady = EqualRect(&now, &last) != FALSE ? steady + 1 : 0;
    last = now;
    return steady >= 30;
  });
  return last;
}

// The visible dialog whose caption begins with the text; null where there is none.
inline HWND findDialog(const std::string& caption) {
  HWND window = nullptr;
  while ((window = FindWindowExA(nullptr, window, "#32770", nullptr)) != nullptr) {
    char text[128] = "";
    GetWindowTextA(window, text, sizeof text);
    if (IsWindowVisible(window) != FALSE && std::string(text).starts_with(caption)) break;
  }
  return window;
}

inline void bringToFront(HWND window) {
  eventually([window] {
    if (GetForegroundWindow() != window) SetForegroundWindow(window);
    Sleep(20);
    return GetForegroundWindow() == window || IsWindow(window) == FALSE;
  });
}

// An 8-bit RGB picture of a rectangle of the screen.
inline standin::Picture screenPicture(const RECT& rect) {
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  standin::Picture picture{width, height, 3, 3, false, 8, {}};
  const HDC screen = GetDC(nullptr);
  const HDC context = CreateCompatibleDC(screen);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ previous = SelectObject(context, bitmap);
  BitBlt(context, 0, 0, width, height, screen, rect.left, rect.top, SRCCOPY);
  GdiFlush();
  const auto* from = static_cast<const std::uint8_t*>(bits);
  for (int i = 0; i < width * height; ++i, from += 4) {
    picture.bytes.insert(picture.bytes.end(), {from[2], from[1], from[0]});
  }
  DeleteObject(SelectObject(context, previous));
  DeleteDC(context);
  ReleaseDC(nullptr, screen);
  return picture;
}

}  // namespace radiashafts::test
