// The system's dialog for choosing a preset file.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace radiashafts {

// The path of a file that need not exist; none on Cancel. The dialog starts with this path. In a
// thread whose kind of COM apartment the dialog cannot use it runs on a thread of its own, while
// this one dispatches its messages.
std::optional<std::wstring> choosePresetFile(HWND owner, const std::wstring& path);

}  // namespace radiashafts
