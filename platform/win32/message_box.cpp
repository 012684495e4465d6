#include "platform/message_box.h"
#include <windows.h>

namespace radiashafts::platform {

void showErrorBox(const char* title, const char* text) {
  MessageBoxA(nullptr, text, title, MB_ICONERROR);
}

}  // namespace radiashafts::platform
