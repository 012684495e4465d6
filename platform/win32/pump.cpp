#include "platform/pump.h"
#include <windows.h>

namespace radiashafts::platform {

bool pumpPendingMessages() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE) != 0) {
    const BOOL got = GetMessageA(&message, nullptr, 0, 0);
    if (got == 0) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    if (got == -1) continue;
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
  return true;
}

}  // namespace radiashafts::platform
