#include "interface/win32/dialog_scaling.h"

#include <bit>

#include "interface/model/window_layout.h"
#include "interface/win32/dialog_controls.h"

namespace radiashafts {

// Windows has had the functions only since 2017.
bool isScaledBySystem(HWND dialog) {
  const HMODULE library = GetModuleHandleA("user32.dll");
  const auto contextOf = std::bit_cast<decltype(&GetWindowDpiAwarenessContext)>(
      GetProcAddress(library, "GetWindowDpiAwarenessContext"));
  const auto areEqual = std::bit_cast<decltype(&AreDpiAwarenessContextsEqual)>(
      GetProcAddress(library, "AreDpiAwarenessContextsEqual"));
  return contextOf != nullptr && areEqual != nullptr &&
         areEqual(contextOf(dialog), DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2) != FALSE;
}

void scaleControls(HWND dialog, Extent from, Extent to) {
  for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    RECT rect = rectInDialog(dialog, child);
    RECT dropped{};  // a combo box is as high as with its list open
    if (SendMessageA(child, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped)) != 0) {
      rect.bottom = rect.top + (dropped.bottom - dropped.top);
    }
    const Box box = scaled({rect.left, rect.top, rect.right, rect.bottom}, from, to);
    SetWindowPos(child, nullptr, box.left, box.top, box.width(), box.height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
  }
}

}  // namespace radiashafts
