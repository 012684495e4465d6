#pragma once

#include <windows.h>

namespace radiashafts::platform {

// The dialog whose keys, such as Tab, Enter and Escape, pumpPendingMessages handles; null for none.
void setPumpedDialog(HWND dialog);

}  // namespace radiashafts::platform
