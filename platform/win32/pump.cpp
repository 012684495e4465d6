#include "platform/pump.h"
#include <windows.h>

namespace radiashafts::platform {

// A window that never has enough of its own messages holds a render up, and does not stop it.
bool pumpPendingMessages() {
  constexpr DWORD longest = 50;  // milliseconds
  const DWORD start = GetTickCount();
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    TranslateMessage(&message);
    DispatchMessageA(&message);
    if (GetTickCount() - start > longest) break;
  }
  return true;
}

}  // namespace radiashafts::platform
