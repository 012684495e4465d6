#pragma once

namespace radiashafts::platform {

// Shows an error to the user: on Windows a message box without an owner window, returning when it
// is closed; on Linux a line on standard error.
void showErrorBox(const char* title, const char* text);

}  // namespace radiashafts::platform
