#pragma once

namespace radiashafts::platform {

// Tells the user of an error, without an owner window; returns when the user has seen it where
// the system has windows.
void showErrorBox(const char* title, const char* text);

}  // namespace radiashafts::platform
