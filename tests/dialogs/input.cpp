#include "tests/dialogs/input.h"

namespace radiashafts::test {
namespace {

void send(const INPUT& input) {
  INPUT copy = input;
  SendInput(1, &copy, sizeof copy);
}

void sendKey(WORD key, WORD character, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.wScan = character;
  input.ki.dwFlags = flags;
  send(input);
}

void sendMouse(DWORD flags, LONG x = 0, LONG y = 0) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dx = x;
  input.mi.dy = y;
  input.mi.dwFlags = flags;
  send(input);
}

bool isAt(POINT point) {
  POINT now{};
  GetCursorPos(&now);
  return now.x == point.x && now.y == point.y;
}

// The middle of a pixel in units of the whole screen.
LONG absolute(LONG position, int metric) {
  const LONG side = GetSystemMetrics(metric);
  return static_cast<LONG>((position * 65536LL + 32768) / side);
}

}  // namespace

// The display's own pointer follows, and its echo may lag behind: the place has to be held for a
// moment.
void moveMouse(POINT to) {
  eventually([to] {
    if (!isAt(to)) {
      sendMouse(MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE, absolute(to.x, SM_CXSCREEN),
                absolute(to.y, SM_CYSCREEN));
    }
    for (int i = 0; i < 3; ++i) {
      Sleep(5);
      if (!isAt(to)) return false;
    }
    return true;
  });
}

void nudgeMouse(int dx) {
  sendMouse(MOUSEEVENTF_MOVE, dx, 0);
}

void press(Button button) {
  sendMouse(button == Button::left ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_RIGHTDOWN);
}

void release(Button button) {
  sendMouse(button == Button::left ? MOUSEEVENTF_LEFTUP : MOUSEEVENTF_RIGHTUP);
}

void click(POINT at, Button button) {
  moveMouse(at);
  press(button);
  release(button);
}

void drag(POINT from, POINT to, Button button) {
  moveMouse(from);
  press(button);
  constexpr int steps = 4;
  for (int i = 1; i <= steps; ++i) {
    moveMouse({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
  }
  release(button);
}

void pressKey(WORD key, bool withShift) {
  // Cursor keys without this are those of the number block, which the shift key changes.
  const DWORD extended = key >= VK_PRIOR && key <= VK_DELETE ? KEYEVENTF_EXTENDEDKEY : 0;
  if (withShift) sendKey(VK_SHIFT, 0, 0);
  sendKey(key, 0, extended);
  sendKey(key, 0, extended | KEYEVENTF_KEYUP);
  if (withShift) sendKey(VK_SHIFT, 0, KEYEVENTF_KEYUP);
}

void closeActiveWindow() {
  sendKey(VK_MENU, 0, 0);
  pressKey(VK_F4);
  sendKey(VK_MENU, 0, KEYEVENTF_KEYUP);
}

void typeText(const std::string& text) {
  for (const char character : text) {
    const auto code = static_cast<WORD>(static_cast<unsigned char>(character));
    sendKey(0, code, KEYEVENTF_UNICODE);
    sendKey(0, code, KEYEVENTF_UNICODE | KEYEVENTF_KEYUP);
  }
}

}  // namespace radiashafts::test
