// The user's hands: mouse and keyboard as the system takes them, and patience.
#pragma once

#include <windows.h>

#include <string>

namespace radiashafts::test {

// Asks again and again; false when it never held within the limit.
template <class Condition>
bool eventually(const Condition& condition, unsigned milliseconds = 30000) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  while (!condition()) {
    if (GetTickCount64() > end) return false;
    Sleep(5);
  }
  return true;
}

enum class Button { left, right };

// Points are the screen's.
void moveMouse(POINT to);
void nudgeMouse(int dx);  // without waiting
void press(Button button);
void release(Button button);
void click(POINT at, Button button = Button::left);
void drag(POINT from, POINT to, Button button = Button::left);

void pressKey(WORD key, bool withShift = false);
void closeActiveWindow();  // by its frame's menu
// For keys that a running preview lets pass: as a user does, again until it works.
template <class Condition>
bool pressKeyUntil(WORD key, const Condition& condition) {
  return eventually([&] {
    pressKey(key);
    return eventually(condition, 500);
  });
}
void typeText(const std::string& text);  // digits, signs and points

}  // namespace radiashafts::test
