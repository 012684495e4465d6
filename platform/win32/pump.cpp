#include "platform/pump.h"
#include <windows.h>

#include "platform/win32/message_filter.h"

namespace radiashafts::platform {
namespace {

MessageFilter* messageFilter = nullptr;

}  // namespace

void setMessageFilter(MessageFilter* filter) {
  messageFilter = filter;
}

// The time limit keeps a window that posts messages to itself endlessly from blocking the render.
bool pumpPendingMessages() {
  constexpr DWORD timeLimit = 50;  // milliseconds
  const DWORD start = GetTickCount();
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return false;
    }
    if (messageFilter == nullptr || !messageFilter->take(message)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    if (GetTickCount() - start > timeLimit) break;
  }
  return true;
}

}  // namespace radiashafts::platform
